// When a document changes while the call runs, nothing is decided.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "tests/host_library/Fixture.h"

namespace fi_test {
namespace {

struct SOnce {
    // The action runs at the first line with this text; when it is empty, at the very first line.
    std::string line;
    std::function<void()> action;
    bool isDone = false;
};

void actOnce(void* user, std::int32_t /*level*/, const char* text) {
    SOnce& once = *static_cast<SOnce*>(user);
    if (!once.isDone && (once.line.empty() || once.line == text)) {
        once.isDone = true;
        once.action();
    }
}

// This line is traced when a document has been read and parsing begins.
const char* const kParsing = "Entering CFiFiidParser::parse";

class CHostLibraryChanged : public CHostLibraryTest {
protected:
    CHostLibraryChanged() : file(holder("a.xml", "snap1")), other(holder("b.xml", "snap2")) {
        // File systems store times in steps of some milliseconds. After this pause a change has a later time.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }

    // Makes the change before the document is read, and in another call after it.
    void expectNoticed(const std::function<void()>& change) const {
        for (const std::string line : {"", kParsing}) {
            SCOPED_TRACE(line);
            holder("a.xml", "snap1");
            holder("b.xml", "snap2");
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            SOnce once{line, change};
            const HostCall call = newCall(kConfiguration, {file});
            fi_rotation_call_set_trace(call.get(), 4, actOnce, &once);
            expectRefused(call.get(), {{FI_ROTATION_CHANGED, 0}});
            EXPECT_TRUE(once.isDone);
        }
    }

    const std::string file;
    const std::string other;
};

TEST_F(CHostLibraryChanged, RewritingWithTheSameSizeAndTimeIsNoticed) {
    expectNoticed([this] {
        struct stat before {};
        ASSERT_EQ(stat(file.c_str(), &before), 0);
        holder("a.xml", "snap2");
        const timespec times[] = {before.st_atim, before.st_mtim};
        ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
        struct stat after {};
        ASSERT_EQ(stat(file.c_str(), &after), 0);
        ASSERT_EQ(after.st_size, before.st_size);
    });
}

TEST_F(CHostLibraryChanged, ReplacingByAFileOfTheSameSizeAndTimeIsNoticed) {
    expectNoticed([this] {
        std::filesystem::last_write_time(other, std::filesystem::last_write_time(file));
        std::filesystem::rename(other, file);
    });
}

TEST_F(CHostLibraryChanged, ReplacingByALinkToAnotherFileIsNoticed) {
    expectNoticed([this] {
        std::filesystem::remove(file);
        std::filesystem::create_hard_link(other, file);
    });
}

TEST_F(CHostLibraryChanged, AppendingBytesIsNoticed) {
    expectNoticed([this] {
        const int descriptor = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        EXPECT_EQ(::write(descriptor, "\n", 1), 1);
        close(descriptor);
    });
}

TEST_F(CHostLibraryChanged, RemovingAfterItWasReadIsNoticed) {
    SOnce once{kParsing, [this] { std::filesystem::remove(file); }};
    const HostCall call = newCall(kConfiguration, {file});
    fi_rotation_call_set_trace(call.get(), 4, actOnce, &once);
    expectRefused(call.get(), {{FI_ROTATION_CHANGED, 0}});
}

TEST_F(CHostLibraryChanged, RemovingBeforeItIsReadIsAFileThatCannotBeOpened) {
    SOnce once{"", [this] { std::filesystem::remove(file); }};
    const HostCall call = newCall(kConfiguration, {file});
    fi_rotation_call_set_trace(call.get(), 4, actOnce, &once);
    expectRefused(call.get(), {{FI_ROTATION_CANNOT_OPEN, 0}});
}

TEST_F(CHostLibraryChanged, ChangingAfterAllDocumentsWereReadIsNoticed) {
    SOnce once{"fi_process_backups : [RESERVE GOOD] " + other + " - T: 1",
               [this] { holder("a.xml", "snap2"); }};
    const HostCall call = newCall(kConfiguration, {file, other});
    fi_rotation_call_set_trace(call.get(), 4, actOnce, &once);
    expectRefused(call.get(), {{FI_ROTATION_CHANGED, 0}});
    EXPECT_TRUE(once.isDone);
}

TEST_F(CHostLibraryChanged, ReadingByOthersIsNoChange) {
    SOnce once{"", [this] {
                   struct stat before {};
                   ASSERT_EQ(stat(file.c_str(), &before), 0);
                   char byte = 0;
                   const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
                   EXPECT_EQ(read(descriptor, &byte, 1), 1);
                   close(descriptor);
               }};
    const HostCall call = newCall(kConfiguration, {file});
    fi_rotation_call_set_trace(call.get(), 4, actOnce, &once);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_TRUE(once.isDone);
}

TEST_F(CHostLibraryChanged, WhatWasReadIsUsedWhenAChangeIsPermitted) {
    const struct {
        const char* line;
        const char* selection;
    } kCases[] = {{"", "[encA##lun1;encA##snap1]"}, {kParsing, "[encA##lun1;encA##snap2]"}};
    for (const auto& one : kCases) {
        holder("a.xml", "snap1");
        SOnce once{one.line, [this] { holder("a.xml", "snap2"); }};
        const HostCall call = newCall(kConfiguration, {file});
        fi_rotation_call_set_trace(call.get(), 4, actOnce, &once);
        fi_rotation_call_permit(call.get(), FI_ROTATION_CHANGED);
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
        EXPECT_STREQ(fi_rotation_call_selection(call.get()), one.selection);
    }
}

// A name that stands for another file only while that is read.
TEST_F(CHostLibraryChanged, ReplacingByAnotherFileAndBackIsNoticed) {
    const std::string link = path("link.xml");
    const auto pointTo = [&link](const std::string& target) {
        std::filesystem::remove(link);
        std::filesystem::create_symlink(target, link);
    };
    pointTo(file);
    struct SState {
        std::function<void()> away, back;
        int lines = 0;
    } state{[&] { pointTo(other); }, [&] { pointTo(file); }};
    const auto swap = [](void* user, std::int32_t /*level*/, const char* text) {
        SState& own = *static_cast<SState*>(user);
        if (own.lines++ == 0) {
            own.away();
        } else if (std::string(text) == kParsing) {
            own.back();
        }
    };
    const HostCall call = newCall(kConfiguration, {link});
    fi_rotation_call_set_trace(call.get(), 4, swap, &state);
    expectRefused(call.get(), {{FI_ROTATION_CHANGED, 0}});
}

}  // namespace
}  // namespace fi_test
