// Large inputs of every kind. Each call runs in a process of its own, so that its peak of memory can be
// measured.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

// Drops the lines: those of a deep tree are indented by their depth, so that together they are quadratic in
// it.
extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int, const char*, ...) {}

namespace fi_test {
namespace {

struct SInput {
    std::string configuration = "encA##lun1;snap1";
    std::vector<std::string> files;
};

bool hasSelection(const SInput& input) {
    std::vector<const char*> files;
    for (const std::string& file : input.files) {
        files.push_back(file.c_str());
    }
    std::vector<std::int32_t> flags(files.size());
    char* result = nullptr;
    try {
        entryPoint()(files.data(), input.configuration.c_str(), flags.data(),
                     static_cast<std::int32_t>(files.size()), &result);
    } catch (...) {
        return false;
    }
    return result != nullptr;
}

class CExtremes : public CContractTest {
protected:
    // The peak of a process that makes the call, in kB. The child ends with 0 when there is a selection.
    static long peakOfCall(const SInput& input) {
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            _exit(hasSelection(input) ? 0 : 1);
        }
        int status = -1;
        rusage usage{};
        EXPECT_EQ(wait4(child, &status, 0, &usage), child);
        EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0);
        return usage.ru_maxrss;
    }

    void expectSelection(const char* what, const SInput& input) const {
        std::uintmax_t bytes = input.configuration.size();
        for (const std::string& name : input.files) {
            bytes += std::filesystem::file_size(name);
        }
        const long peak = peakOfCall(input);
        std::printf("| %s | a selection | %ju MB | %ld MB |\n", what, bytes / 1000000, peak / 1000);
        // A Node of thirteen bytes takes 600 bytes of memory, and nothing takes more for its size. The inputs
        // are thousands of times larger than usual ones, so that memory that grows faster than they do is
        // noticed.
        EXPECT_LT(static_cast<std::uintmax_t>(peak) * 1000, 64 * bytes + 32'000'000);
    }

    std::ofstream file(const std::string& name) const { return std::ofstream(path(name)); }
};

std::string device(std::size_t number) {
    return "<Node><objid>" + udid("encA##lun" + std::to_string(number)) + "</objid><altobjid>" +
           udid("encA##snap" + std::to_string(number)) + "</altobjid></Node>\n";
}

TEST_F(CExtremes, DocumentOf100MillionBytes) {
    const std::size_t size = 100'000'000;
    std::ofstream document = file("a.xml");
    document << "<Node>\n";
    for (std::size_t i = 0; document.tellp() < static_cast<std::streamoff>(size); ++i) {
        document << device(i);
    }
    document << "</Node>\n";
    document.close();
    expectSelection("one document", {"encA##lun1;snap1", {path("a.xml")}});
}

TEST_F(CExtremes, TextOf100MillionBytes) {
    const std::size_t size = 100'000'000;
    file("a.xml") << "<Node><objid>" << std::string(size, 'x') << "</objid></Node>";
    expectSelection("one text", {"encA##lun1;snap1", {path("a.xml")}});
}

#ifndef FI_ROTATION_HARDENED_XML
// A hardened library does not read the documents of the next two tests.
TEST_F(CExtremes, MillionNestedNodes) {
    const std::size_t size = 1'000'000;
    std::ofstream document = file("a.xml");
    for (std::size_t i = 0; i < size; ++i) {
        document << "<Node>";
    }
    for (std::size_t i = 0; i < size; ++i) {
        document << "</Node>";
    }
    document.close();
    expectSelection("1,000,000 nested Nodes", {"encA##lun1;snap1", {path("a.xml")}});
}

TEST_F(CExtremes, MillionAttributes) {
    const std::size_t size = 1'000'000;
    std::ofstream document = file("a.xml");
    document << "<Node";
    for (std::size_t i = 0; i < size; ++i) {
        document << " a" << i << "=''";
    }
    document << "/>";
    document.close();
    expectSelection("1,000,000 attributes", {"encA##lun1;snap1", {path("a.xml")}});
}
#endif

TEST_F(CExtremes, HundredThousandBackups) {
    const std::size_t size = 100'000;
    SInput input;
    for (std::size_t i = 0; i < size; ++i) {
        input.files.push_back(write(std::to_string(i), "<Node><timeStamp>" + std::to_string(i) +
                                                           "</timeStamp>" + device(1) + "</Node>"));
    }
    expectSelection("100,000 backups", input);
}

TEST_F(CExtremes, HundredThousandConfigurations) {
    const std::size_t size = 100'000;
    SInput input{"", {write("a.xml", "<Node>" + device(1) + "</Node>")}};
    for (std::size_t i = 0; i < size; ++i) {
        const std::string number = std::to_string(i);
        input.configuration += "encA##lun" + number + ";snap" + number + ";free" + number + '&';
    }
    expectSelection("100,000 configurations", input);
}

TEST_F(CExtremes, IdentifiersOfAMillionBytes) {
    const std::size_t size = 1'000'000;
    const std::string longName(size, 'x');
    file("a.xml") << "<Node><objid>" << udid("encA##" + longName) << "</objid><altobjid>"
                  << udid(longName + "##snap1") << "</altobjid></Node>";
    expectSelection("identifiers of 1 MB",
                    {"encA##" + longName + ";" + longName + "##snap1", {path("a.xml")}});
}

}  // namespace
}  // namespace fi_test
