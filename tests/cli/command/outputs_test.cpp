#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::contentOf;
using fi_test::CTemporaryFolder;
using fi_test::runFiRotate;
using testing::HasSubstr;

constexpr const char* kDocument =
    "<Node><timeStamp>1</timeStamp><objid>UDID##v##m##encA##lun1</objid>"
    "<altobjid>UDID##v##m##encA##snap1</altobjid></Node>";

// An option that names a file for output, and a command with it.
struct SOption {
    std::string name;
    std::function<std::vector<std::string>(const CTemporaryFolder&)> command;
};

std::vector<std::string> select(const CTemporaryFolder& folder) {
    return {"select", "--config-file", folder.path("conf"), folder.path("a.xml"), folder.path("b.xml")};
}

std::vector<std::string> selectRequest(const CTemporaryFolder& folder) {
    return {"select", "--request", folder.path("call.json")};
}

std::vector<std::string> simulate(const CTemporaryFolder& folder) {
    return {"simulate", "--config-file", folder.path("conf"), "--rounds",  "3",
            "--every",  "24h",           "--start",           "2026-10-01"};
}

std::vector<SOption> options() {
    return {{"--svg", select},
            {"--trace-file", select},
            {"--save-request", select},
            {"--svg", selectRequest},
            {"--trace-file", selectRequest},
            {"--save-request", selectRequest},
            {"--csv", simulate},
            {"--svg", simulate}};
}

void writeInputs(const CTemporaryFolder& folder) {
    folder.write("conf", "encA##lun1;snap1;snap2");
    folder.write("a.xml", kDocument);
    folder.write("b.xml", "<Node/>");
    folder.write("call.json", "{\"configuration\": \"encA##lun1;snap1;snap2\", \"backups\": [{\"file\": \"" +
                                  folder.path("a.xml") + "\", \"flag_word\": 0}]}");
}

std::map<std::string, std::string> contentsOf(const CTemporaryFolder& folder) {
    std::map<std::string, std::string> contents;
    for (const std::string& name : folder.entries()) {
        contents[name] = contentOf(folder.path(name));
    }
    return contents;
}

// With each option in turn, in a folder of its own with the inputs of the commands: the command exits with 2,
// says `message`, shows nothing, and leaves all files as they are. `prepare` gives the name for the output.
void expectRefusal(const std::function<std::string(const CTemporaryFolder&, const SOption&)>& prepare,
                   const std::string& message, const std::vector<std::string>& more = {}) {
    for (const SOption& option : options()) {
        const CTemporaryFolder folder;
        writeInputs(folder);
        auto arguments = option.command(folder);
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + " " + option.name);
        const std::string output = prepare(folder, option);
        const auto before = contentsOf(folder);
        arguments.insert(arguments.end(), {option.name, output});
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto result = runFiRotate(arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.error, HasSubstr("fi-rotate: " + option.name + ": \"" + output + "\" " + message));
        EXPECT_EQ(contentsOf(folder), before);
    }
}

// A file that the command reads.
std::string inputOf(const SOption& option, const CTemporaryFolder& folder) {
    return folder.path(option.command(folder).front() == "simulate" ? "conf" : "a.xml");
}

constexpr const char* kIsInput = "is an input of this command";
constexpr const char* kIsForeign = "exists and this option did not write it";

TEST(FiRotateOutputs, RefuseAnInput) {
    const auto input = [](const CTemporaryFolder& folder, const SOption& option) {
        return inputOf(option, folder);
    };
    expectRefusal(input, kIsInput);
    expectRefusal(input, kIsInput, {"--force"});
}

TEST(FiRotateOutputs, RefuseAnInputUnderAnotherName) {
    expectRefusal(
        [](const CTemporaryFolder& folder, const SOption& option) {
            std::filesystem::create_directory(folder.path("folder"));
            const std::filesystem::path input = inputOf(option, folder);
            return (input.parent_path() / "folder" / ".." / input.filename()).string();
        },
        kIsInput, {"--force"});
}

TEST(FiRotateOutputs, RefuseLinksThatLeadNowhere) {
    const auto toItself = [](const CTemporaryFolder& folder, const SOption&) {
        std::filesystem::create_symlink("link", folder.path("link"));
        return folder.path("link");
    };
    const auto toEachOther = [](const CTemporaryFolder& folder, const SOption&) {
        std::filesystem::create_symlink("other", folder.path("link"));
        std::filesystem::create_symlink("link", folder.path("other"));
        return folder.path("link");
    };
    for (const std::vector<std::string>& more : {std::vector<std::string>(), {"--force"}}) {
        expectRefusal(toItself, "cannot be written: Too many levels of symbolic links", more);
        expectRefusal(toEachOther, "cannot be written: Too many levels of symbolic links", more);
    }
}

TEST(FiRotateOutputs, RefuseAHardLinkToAnInput) {
    expectRefusal(
        [](const CTemporaryFolder& folder, const SOption& option) {
            std::filesystem::create_hard_link(inputOf(option, folder), folder.path("link"));
            return folder.path("link");
        },
        kIsInput, {"--force"});
}

TEST(FiRotateOutputs, RefuseASymbolicLinkToAnInput) {
    expectRefusal(
        [](const CTemporaryFolder& folder, const SOption& option) {
            std::filesystem::create_symlink(inputOf(option, folder), folder.path("link"));
            return folder.path("link");
        },
        kIsInput, {"--force"});
}

TEST(FiRotateOutputs, RefuseAConfigurationFile) {
    const CTemporaryFolder folder;
    writeInputs(folder);
    auto arguments = select(folder);
    arguments.insert(arguments.end(), {"--svg", folder.path("conf"), "--force"});
    EXPECT_EQ(runFiRotate(arguments).exitStatus, 2);
    EXPECT_EQ(contentOf(folder.path("conf")), "encA##lun1;snap1;snap2");
}

TEST(FiRotateOutputs, RefuseARequest) {
    const CTemporaryFolder folder;
    writeInputs(folder);
    const std::string before = contentOf(folder.path("call.json"));
    auto arguments = selectRequest(folder);
    arguments.insert(arguments.end(), {"--save-request", folder.path("call.json"), "--force"});
    EXPECT_EQ(runFiRotate(arguments).exitStatus, 2);
    EXPECT_EQ(contentOf(folder.path("call.json")), before);
}

// The shell puts the first document where the name of the output is missing.
TEST(FiRotateOutputs, RefuseADocumentThatWasMeantToBeAnInput) {
    for (const std::string option : {"--svg", "--trace-file", "--save-request"}) {
        SCOPED_TRACE(option);
        const CTemporaryFolder folder;
        writeInputs(folder);
        const auto before = contentsOf(folder);
        const auto result = runFiRotate({"select", "--config-file", folder.path("conf"), option,
                                         folder.path("a.xml"), folder.path("b.xml")});
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_THAT(result.error, HasSubstr(option + ": \"" + folder.path("a.xml") + "\" " + kIsForeign));
        EXPECT_EQ(contentsOf(folder), before);
    }
}

TEST(FiRotateOutputs, RefuseAFileThatTheyDidNotWrite) {
    expectRefusal(
        [](const CTemporaryFolder& folder, const SOption& /*option*/) {
            return folder.write("foreign", "<svg>of somebody else</svg>");
        },
        kIsForeign);
}

TEST(FiRotateOutputs, RefuseAFileThatAnotherOptionWrote) {
    const CTemporaryFolder folder;
    writeInputs(folder);
    const std::string file = folder.path("picture.svg");
    auto drawn = select(folder);
    drawn.insert(drawn.end(), {"--svg", file});
    ASSERT_EQ(runFiRotate(drawn).exitStatus, 0);
    const std::string before = contentOf(file);
    auto traced = select(folder);
    traced.insert(traced.end(), {"--trace-file", file});
    EXPECT_EQ(runFiRotate(traced).exitStatus, 2);
    EXPECT_EQ(contentOf(file), before);
}

TEST(FiRotateOutputs, RefuseAMissingDocument) {
    const CTemporaryFolder folder;
    const std::string file = folder.path("missing.xml");
    const auto result = runFiRotate(
        {"select", "--config", "encA##lun1;snap1", "--svg", file, folder.path(".") + "/missing.xml"});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_THAT(result.error, HasSubstr(kIsInput));
    EXPECT_THAT(folder.entries(), testing::IsEmpty());
}

TEST(FiRotateOutputs, RefuseTheNameOfStandardOutput) {
    expectRefusal([](const CTemporaryFolder&, const SOption&) { return std::string("-"); },
                  "is not a file name");
}

TEST(FiRotateOutputs, RefuseOneFileForTwoOfThem) {
    const CTemporaryFolder folder;
    writeInputs(folder);
    for (const bool exists : {false, true}) {
        SCOPED_TRACE(exists);
        const std::string file = exists ? folder.write("file", "") : folder.path("file");
        auto arguments = select(folder);
        arguments.insert(arguments.end(), {"--svg", file, "--trace-file", folder.path(".") + "/file"});
        const auto result = runFiRotate(arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_THAT(result.error, HasSubstr("is already the output of --"));
        EXPECT_EQ(contentOf(file), "");
    }
}

TEST(FiRotateOutputs, RefuseTheFileThatStandardOutputGoesTo) {
    const CTemporaryFolder folder;
    const std::string file = folder.write("file", "");
    EXPECT_EQ(
        fi_test::runFiRotateTo(file, {"select", "--config", "encA##lun1;snap1", "--svg", file}).exitStatus,
        2);
    EXPECT_EQ(contentOf(file), "");
}

// Each run writes something else, so that it shows whether the file was replaced.
TEST(FiRotateOutputs, ReplaceWhatTheyWroteBefore) {
    for (const SOption& option : options()) {
        const CTemporaryFolder folder;
        writeInputs(folder);
        const std::string file = folder.path("output");
        auto arguments = option.command(folder);
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + " " + option.name);
        arguments.insert(arguments.end(), {option.name, file});
        ASSERT_EQ(runFiRotate(arguments).exitStatus, 0);
        const std::string before = contentOf(file);
        ASSERT_NE(before, "");
        folder.write("conf", "encA##lun2;snap1;snap2");
        folder.write("call.json", "{\"configuration\": \"encA##lun2;snap1\", \"backups\": []}");
        EXPECT_EQ(runFiRotate(arguments).error, "");
        EXPECT_NE(contentOf(file), before);
    }
}

TEST(FiRotateOutputs, FillAnEmptyFile) {
    for (const SOption& option : options()) {
        const CTemporaryFolder folder;
        writeInputs(folder);
        auto arguments = option.command(folder);
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + " " + option.name);
        const std::string file = folder.write("output", "");
        arguments.insert(arguments.end(), {option.name, file});
        EXPECT_EQ(runFiRotate(arguments).exitStatus, 0);
        EXPECT_NE(contentOf(file), "");
    }
}

TEST(FiRotateOutputs, ReplaceAForeignFileWhenForced) {
    for (const SOption& option : options()) {
        const CTemporaryFolder folder;
        writeInputs(folder);
        auto arguments = option.command(folder);
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + " " + option.name);
        const std::string file = folder.write("output", "of somebody else");
        arguments.insert(arguments.end(), {option.name, file, "--force"});
        EXPECT_EQ(runFiRotate(arguments).exitStatus, 0);
        EXPECT_NE(contentOf(file), "of somebody else");
    }
}

}  // namespace
