// A call whose problems are permitted decides what fi_process_backups does.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

#include "tests/host_library/Fixture.h"

namespace fi_test {
namespace {

class CHostLibraryPermit : public CHostLibraryTest {
protected:
    // Expects that the call is refused while any of these problems is not permitted, and that it decides when
    // all are.
    static void expectDecision(fi_rotation_call* call, std::uint32_t problems, const std::string& selection) {
        for (std::uint32_t kind = 1; kind <= kEveryProblem; kind *= 2) {
            if ((problems & kind) != 0) {
                fi_rotation_call_permit(call, kEveryProblem & ~kind);
                EXPECT_EQ(fi_rotation_call_run(call), FI_ROTATION_REFUSED) << kind;
                expectNothingDecided(call);
            }
        }
        fi_rotation_call_permit(call, problems);
        EXPECT_EQ(fi_rotation_call_run(call), FI_ROTATION_SELECTED) << fi_rotation_call_message(call);
        const char* const selected = fi_rotation_call_selection(call);
        EXPECT_EQ(selected != nullptr ? selected : "none", selection);
        std::uint32_t named = 0;
        for (const SHostProblem& problem : problemsOf(call)) {
            named |= problem.kind;
        }
        EXPECT_EQ(named, problems);
    }

    static constexpr const char* kFirst = "[encA##lun1;encA##snap1]";
    static constexpr const char* kSecond = "[encA##lun1;encA##snap2]";
};

TEST_F(CHostLibraryPermit, AMissingFileHidesAllBehindIt) {
    const HostCall call = newCall("encA##lun1;snap1;snap2;snap3",
                                  {holder("a.xml", "snap1"), path("missing.xml"), holder("b.xml", "snap2")});
    expectDecision(call.get(), FI_ROTATION_CANNOT_OPEN, kSecond);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_KEPT);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 1), FI_ROTATION_NO_STATE);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 2), FI_ROTATION_NO_STATE);
    EXPECT_EQ(fi_rotation_call_backup_problems(call.get(), 2), std::uint32_t{FI_ROTATION_CANNOT_OPEN});
}

TEST_F(CHostLibraryPermit, AFolderCountsAsEmpty) {
    const HostCall call = newCall(kConfiguration, {folder.path(""), holder("a.xml", "snap1")});
    expectDecision(call.get(), FI_ROTATION_NOT_A_FILE | FI_ROTATION_NOT_WELL_FORMED | FI_ROTATION_NO_NODE,
                   kSecond);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_NO_STATE);
}

TEST_F(CHostLibraryPermit, APipeIsWaitedFor) {
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string text = documentOf("1", {{"encA##lun1", "encA##snap1"}});
    std::thread writer([&] {
        const int descriptor = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(descriptor);
    });
    const HostCall call = newCall(kConfiguration, {pipe});
    fi_rotation_call_permit(call.get(), FI_ROTATION_NOT_A_FILE);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), kSecond);
    writer.join();
}

TEST_F(CHostLibraryPermit, ALargeFileIsRead) {
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1")});
    fi_rotation_call_limit_document(call.get(), 1);
    expectDecision(call.get(), FI_ROTATION_TOO_LARGE, kSecond);
}

TEST_F(CHostLibraryPermit, ALargeFileIsStillRefusedForItsOtherProblems) {
    std::string text = documentOf("1", {{"encA##lun1", "encA##snap1"}});
    text.insert(text.find("<objid>"), 1, '\0');
    const HostCall call = newCall(kConfiguration, {write("a.xml", text)});
    fi_rotation_call_limit_document(call.get(), 1);
    fi_rotation_call_permit(call.get(), FI_ROTATION_TOO_LARGE);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_REFUSED);
    EXPECT_EQ(
        fi_rotation_call_backup_problems(call.get(), 0),
        static_cast<std::uint32_t>(FI_ROTATION_TOO_LARGE) | static_cast<std::uint32_t>(FI_ROTATION_NUL_BYTE));
}

TEST_F(CHostLibraryPermit, ALineEndsAtItsNulByte) {
    const std::string hidden =
        "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1"
        "</altobjid></Node>";
    const std::string text = std::string("<Node>\n") + std::string(1, '\0') + hidden + "\n</Node>\n";
    const HostCall call = newCall(kConfiguration, {write("a.xml", text)});
    expectDecision(call.get(), FI_ROTATION_NUL_BYTE, kFirst);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_KEPT);
}

TEST_F(CHostLibraryPermit, TheLastExclusionCountsForBoth) {
    const std::string file = holder("a.xml", "snap1");
    for (const bool isLastExcluded : {false, true}) {
        const HostCall call = newCall("encA##lun1;snap1");
        fi_rotation_call_add(call.get(), file.c_str(), isLastExcluded ? 0 : 1);
        fi_rotation_call_add(call.get(), file.c_str(), isLastExcluded ? 1 : 0);
        if (!isLastExcluded) {
            expectDecision(call.get(), FI_ROTATION_LISTED_TWICE, kFirst);
        } else {
            fi_rotation_call_permit(call.get(), FI_ROTATION_LISTED_TWICE);
            EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_NO_FREE_TARGET);
        }
    }
}

// Under another name a file is another backup.
TEST_F(CHostLibraryPermit, AFileUnderTwoNamesIsTwoBackups) {
    const std::string file = holder("a.xml", "snap1");
    const HostCall call = newCall(kConfiguration, {file, folder.path("") + "./a.xml"});
    fi_rotation_call_ask_reasons(call.get(), 1);
    expectDecision(call.get(), FI_ROTATION_LISTED_TWICE, kSecond);
    const fi_rotation_state first = fi_rotation_call_backup_state(call.get(), 0);
    const fi_rotation_state second = fi_rotation_call_backup_state(call.get(), 1);
    EXPECT_EQ(first + second, FI_ROTATION_KEPT + FI_ROTATION_INVALID);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 0), first == FI_ROTATION_KEPT ? 0 : 1);
}

TEST_F(CHostLibraryPermit, WhatStandsBeforeTheDamageCounts) {
    const HostCall call = newCall(
        kConfiguration, {write("a.xml",
                               "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1"
                               "</altobjid></wrong>")});
    expectDecision(call.get(), FI_ROTATION_NOT_WELL_FORMED, kSecond);
}

TEST_F(CHostLibraryPermit, ADocumentWithoutANodeIsIgnored) {
    const HostCall call = newCall(kConfiguration, {write("a.xml", "<x/>"), holder("b.xml", "snap1")});
    expectDecision(call.get(), FI_ROTATION_NO_NODE, kSecond);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_NO_STATE);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 1), FI_ROTATION_KEPT);
}

TEST_F(CHostLibraryPermit, OnlyTheLastOfSeveralNodesCounts) {
    const std::string text = "<x>" + documentOf("1", {{"encA##lun1", "encA##snap1"}}) +
                             documentOf("1", {{"encA##lun1", "encA##snap2"}}) + "</x>";
    const HostCall call = newCall(kConfiguration, {write("a.xml", text)});
    expectDecision(call.get(), FI_ROTATION_SEVERAL_ROOTS, kFirst);
}

TEST_F(CHostLibraryPermit, OnlyTheLastOfManyNodesCounts) {
    const std::string other = documentOf("1", {{"encA##lun1", "encA##snap1"}});
    const std::string last = documentOf("1", {{"encA##lun1", "encA##snap2"}});
    const std::string text = "<x>" + other + other + other + other + last + "</x>";
    const HostCall call = newCall(kConfiguration, {write("a.xml", text), write("b.xml", text)});
    expectDecision(call.get(), FI_ROTATION_SEVERAL_ROOTS, kFirst);
}

TEST_F(CHostLibraryPermit, ConfigurationsBeforeTheMalformedOneAreUsed) {
    const HostCall call = newCall("encA##lun1;snap1&encB##&encC##lun3;snap3");
    expectDecision(call.get(), FI_ROTATION_CONFIGURATION_REJECTED, kFirst);
    EXPECT_EQ(fi_rotation_call_configuration_count(call.get()), 1);
    const HostCall none = newCall("");
    expectDecision(none.get(), FI_ROTATION_CONFIGURATION_REJECTED, "");
}

TEST_F(CHostLibraryPermit, ALongEnclosureIsUsedAsItIs) {
    const std::string enclosure(257, 'e');
    const HostCall call = newCall(enclosure + "##lun1;snap1");
    expectDecision(call.get(), FI_ROTATION_CONFIGURATION_REJECTED,
                   "[" + enclosure + "##lun1;" + enclosure + "##snap1]");
    const HostCall longest = newCall(enclosure.substr(1) + "##lun1;snap1");
    EXPECT_EQ(fi_rotation_call_run(longest.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryPermit, AMalformedIdentifierIsRefusedNevertheless) {
    const HostCall call = newCall(kConfiguration, {write("a.xml", "<Node><objid>UDID##v</objid></Node>")});
    fi_rotation_call_permit(call.get(), 0xFFFFFFFFU);
    expectRefused(call.get(), {{FI_ROTATION_MALFORMED_IDENTIFIER, 0}});
}

// A name that is listed twice stands for one backup when its document has no Node at the first reading and
// has one at the second.
TEST_F(CHostLibraryPermit, ADocumentThatChangesBetweenItsTwoReadingsIsSafe) {
    const std::string file = write("a.xml", "<x/>");
    struct SChange {
        std::function<void()> action;
        int readings = 0;
    } change{[this] { holder("a.xml", "snap1"); }};
    const auto swap = [](void* user, std::int32_t /*level*/, const char* text) {
        SChange& own = *static_cast<SChange*>(user);
        if (std::string(text) == "Entering CFiFiidParser::parse") {
            ++own.readings;
            own.action();
        }
    };
    const HostCall call = newCall(kConfiguration, {file, file});
    fi_rotation_call_set_trace(call.get(), 4, swap, &change);
    fi_rotation_call_permit(call.get(), kEveryProblem);
    fi_rotation_call_ask_reasons(call.get(), 1);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), kSecond);
    EXPECT_EQ(change.readings, 2);
}

}  // namespace
}  // namespace fi_test
