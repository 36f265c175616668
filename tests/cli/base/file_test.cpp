#include "cli/base/file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::COutputFile;
using fi_rotate::readFile;
using testing::ElementsAre;

// Writes the whole of it, as commands do.
void write(const std::string& file, const std::string& content) {
    COutputFile output(file);
    output.write(content);
    output.commit();
}

int refusalOf(const std::string& file, const std::string& content = "new") {
    try {
        write(file, content);
    } catch (const std::system_error& error) {
        return error.code().value();
    }
    return 0;
}

class OutputFile : public testing::Test {
protected:
    fi_test::CTemporaryFolder folder;
};

TEST_F(OutputFile, ExistsCompletelyAfterCommit) {
    const std::string file = folder.write("file", "old");
    COutputFile output(file);
    std::fputs("new", output.stream());
    std::fflush(output.stream());
    EXPECT_EQ(readFile(file), "old");
    output.commit();
    EXPECT_EQ(readFile(file), "new");
    EXPECT_THAT(folder.entries(), ElementsAre("file"));
}

TEST_F(OutputFile, LeavesNoFileWithoutCommit) {
    const std::string file = folder.write("file", "old");
    std::fputs("new", COutputFile(file).stream());
    std::fputs("new", COutputFile(folder.path("other")).stream());
    EXPECT_EQ(readFile(file), "old");
    EXPECT_THAT(folder.entries(), ElementsAre("file"));
}

TEST_F(OutputFile, KeepsTheRightsOfTheFileItReplaces) {
    using std::filesystem::perms;
    const std::string file = folder.write("file", "");
    std::filesystem::permissions(file, perms::owner_read | perms::owner_write);
    write(file, "new");
    EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
}

TEST_F(OutputFile, IsWrittenToTheTargetOfALink) {
    folder.write("there", "old");
    for (const std::string target : {"there", "not-there"}) {
        const std::string link = folder.path("link-to-" + target);
        std::filesystem::create_symlink(target, link);
        write(link, "new");
        EXPECT_TRUE(std::filesystem::is_symlink(link)) << target;
        EXPECT_EQ(readFile(folder.path(target)), "new");
    }
}

TEST_F(OutputFile, IsRefusedBeforeItIsFilledWhereNoneCanBe) {
    EXPECT_EQ(refusalOf(""), ENOENT);
    EXPECT_EQ(refusalOf(folder.path("missing/file")), ENOENT);
    EXPECT_EQ(refusalOf(folder.path("")), EISDIR);
    std::filesystem::create_symlink("loop", folder.path("loop"));
    EXPECT_EQ(refusalOf(folder.path("loop/file")), ELOOP);
}

TEST_F(OutputFile, ReportsThatNotAllCouldBeWritten) {
    EXPECT_EQ(refusalOf("/dev/full"), ENOSPC);
    EXPECT_EQ(refusalOf("/dev/full", std::string(1000000, 'x')), ENOSPC);
    EXPECT_EQ(refusalOf("/dev/null"), 0);
}

TEST_F(OutputFile, ReportsThatAnEarlierPartCouldNotBeWritten) {
    COutputFile output("/dev/full");
    std::fputs("lost", output.stream());
    std::fflush(output.stream());
    EXPECT_THROW(output.commit(), std::system_error);
}

}  // namespace
