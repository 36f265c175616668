// Documents that cannot be read, or not to their end. The library finds this program's fgets before the C
// library's, so that something can happen to a file between two of its lines.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

namespace {

// `interruption` runs before the line of this number is read, counted from 1, and returns whether it can be
// read.
int interruptedLine = 0;
std::function<bool()> interruption;
int lines = 0;

using Fgets = char* (*)(char*, int, std::FILE*);

}  // namespace

extern "C" __attribute__((visibility("default"))) char* fgets(char* buffer, int size, std::FILE* stream) {
    static const auto next = reinterpret_cast<Fgets>(dlsym(RTLD_NEXT, "fgets"));
    if (++lines == interruptedLine && !interruption()) {
        return nullptr;
    }
    return next(buffer, size, stream);
}

namespace fi_test {
namespace {

using Flags = std::vector<std::int32_t>;

constexpr std::int32_t kFlagWord = 8;
const char* const kConfiguration = "encA##lun1;snap1;snap2";

class CFile : public CContractTest {
protected:
    // Loads the library now, because some tests use up all descriptors.
    CFile() : process(entryPoint()) {}
    ~CFile() override { interruptedLine = 0; }

    void interruptBeforeLine(int line, std::function<bool()> what) {
        lines = 0;
        interruptedLine = line;
        interruption = std::move(what);
    }

    // Writes the document of a backup that holds snap1. Each part is longer than the C library's buffer, so
    // that what happens to the file between two lines has an effect.
    std::string writeHolder(const std::string& name) const {
        const std::string filling = "<!-- " + std::string(10000, '.') + " -->\n";
        return write(name, "<Node>\n<objid>outer</objid>\n" + filling + "<Node><objid>" + udid("encA##lun1") +
                               "</objid><altobjid>" + udid("encA##snap1") + "</altobjid></Node>\n" + filling +
                               "</Node>\n");
    }

    SObserved callWith(const std::string& file) { return call(kConfiguration, {{file, kFlagWord}}); }

    const EntryPoint process;

    static void expectMissing(const SObserved& observed, const std::string& file) {
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
        EXPECT_EQ(observed.flags, Flags{kFlagWord});
        EXPECT_EQ(observed.standardOutput, "ERROR: failed to load FIID file [" + file + "]\n");
    }

    static bool hasFatalError(const SObserved& observed) {
        for (const auto& line : observed.trace) {
            if (line.text == "Entering CFiFiidHandler::fatalError\n") {
                return true;
            }
        }
        return false;
    }
};

TEST_F(CFile, OfEveryLengthIsReadWhole) {
    const SObserved observed = callWith(writeHolder("a.xml"));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap2]");
    EXPECT_FALSE(hasFatalError(observed));
}

TEST_F(CFile, ThatMayNotBeReadIsMissing) {
    const std::string file = writeHolder("a.xml");
    std::filesystem::permissions(file, std::filesystem::perms::none);
    // Permissions do not keep root from reading.
    constexpr uid_t kNobody = 65534;
    const uid_t user = geteuid();
    ASSERT_TRUE(user != 0 || seteuid(kNobody) == 0);
    const SObserved observed = callWith(file);
    ASSERT_TRUE(user != 0 || seteuid(0) == 0);
    expectMissing(observed, file);
}

TEST_F(CFile, DirectoryReadsAsEmpty) {
    const std::string directory = path("directory");
    std::filesystem::create_directory(directory);
    const SObserved observed = callWith(directory);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{kFlagWord});
    EXPECT_EQ(observed.standardOutput, "");
    EXPECT_TRUE(hasFatalError(observed));
}

// Only the first part is read, which names no device.
TEST_F(CFile, TruncatedWhileItIsReadIsReadAsFarAsItGoes) {
    const std::string file = writeHolder("a.xml");
    interruptBeforeLine(3, [&] { return truncate(file.c_str(), 0) == 0; });
    const SObserved observed = callWith(file);
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{0});
    EXPECT_TRUE(hasFatalError(observed));
}

TEST_F(CFile, ReplacedWhileItIsReadIsReadAsItWas) {
    const std::string file = writeHolder("a.xml");
    const std::string other = write("b.xml", "<Node/>");
    interruptBeforeLine(3, [&] { return std::rename(other.c_str(), file.c_str()) == 0; });
    const SObserved observed = callWith(file);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap2]");
    EXPECT_FALSE(hasFatalError(observed));
}

TEST_F(CFile, ReadErrorEndsTheDocument) {
    const std::string file = writeHolder("a.xml");
    interruptBeforeLine(3, [] { return false; });
    const SObserved observed = callWith(file);
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{0});
    EXPECT_TRUE(hasFatalError(observed));
}

TEST_F(CFile, NameThatIsTooLongIsMissingAndNamedWhole) {
    const std::string file = "/" + std::string(4095, 'n');
    const SObserved observed = callWith(file);
    expectMissing(observed, file);
    EXPECT_THAT(observed.trace, testing::Contains(STraceLine{3, "fi_process_backups :  Fiid [" + file +
                                                                    "] exclude rotation flag [8] "}));
}

// Takes all descriptors that the process may have, except `left`.
class CDescriptors {
public:
    CDescriptors(rlim_t limit, int left) {
        getrlimit(RLIMIT_NOFILE, &former);
        rlimit raised = former;
        raised.rlim_cur = std::min(limit, former.rlim_max);
        setrlimit(RLIMIT_NOFILE, &raised);
        for (int descriptor = 0; (descriptor = open("/dev/null", O_RDONLY)) >= 0;) {
            held.push_back(descriptor);
        }
        for (int i = 0; i < left; ++i) {
            close(held.back());
            held.pop_back();
        }
    }
    ~CDescriptors() {
        for (const int descriptor : held) {
            close(descriptor);
        }
        setrlimit(RLIMIT_NOFILE, &former);
    }
    CDescriptors(const CDescriptors&) = delete;
    CDescriptors& operator=(const CDescriptors&) = delete;

    std::size_t count() const { return held.size(); }

private:
    rlimit former{};
    std::vector<int> held;
};

// The number of the host's own open files does not matter. Three descriptors are left, because the test
// itself needs two to read standard output.
TEST_F(CFile, IsReadAlthoughTenThousandDescriptorsAreInUse) {
    const std::string file = writeHolder("a.xml");
    const CDescriptors descriptors(10010, 3);
    if (descriptors.count() < 9000) {
        GTEST_SKIP() << "no more than " << descriptors.count() << " descriptors are allowed";
    }
    EXPECT_EQ(callWith(file).selection, "[encA##lun1;encA##snap2]");
}

TEST_F(CFile, IsMissingWhenNoDescriptorIsLeft) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers need a descriptor to look at an object's type";
#endif
    const std::string file = writeHolder("a.xml");
    const char* const files[] = {file.c_str()};
    std::int32_t flag = kFlagWord;
    char* result = nullptr;
    std::int32_t status = -1;
    testing::internal::CaptureStdout();
    {
        const CDescriptors descriptors(1000, 0);
        status = process(files, kConfiguration, &flag, 1, &result);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ERROR: failed to load FIID file [" + file + "]\n");
    EXPECT_EQ(status, 0);
    EXPECT_STREQ(result, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(flag, kFlagWord);
    std::free(result);
}

}  // namespace
}  // namespace fi_test
