#include "cli/explain/log.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/file.h"
#include "host/library_call.h"
#include "tests/cli/explain/Traced.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::CLogReader;
using fi_rotate::SCall;
using fi_rotate::SLoggedCall;
using fi_rotate::SOutcome;
using fi_test::callsOf;
using fi_test::CRandomCall;
using fi_test::document;
using fi_test::kRandomCalls;
using fi_test::told;
using fi_test::traced;
using testing::ElementsAre;
using testing::IsEmpty;

// Where the line stands that tells the state of the backup in the document `name`.
std::ptrdiff_t lineOfState(const std::string& name, const std::vector<std::string>& lines) {
    const auto line = std::find_if(lines.begin(), lines.end(), [&name](const std::string& candidate) {
        return candidate.find(name + "] state=[") != std::string::npos;
    });
    if (line == lines.end()) {
        throw std::invalid_argument("no line tells the state of " + name);
    }
    return line - lines.begin();
}

class FiRotateLog : public testing::Test {
protected:
    // Three backups of one configuration with two targets: the newest holds one, the one before lost its
    // claim to it, and the oldest has to go.
    SCall rotation() {
        SCall call;
        call.configuration = "A##x;1;2";
        call.backups.resize(3);
        call.backups[0].file = folder.write("old", document("1", {{"A##x", "A##1"}}));
        call.backups[1].file = folder.write("lost", document("2", {{"A##x", "A##2"}}));
        call.backups[2].file = folder.write("new", document("3", {{"A##x", "A##2"}}));
        return call;
    }

    fi_test::CTemporaryFolder folder;
};

TEST_F(FiRotateLog, ReadsTheOutcomesOfRandomCalls) {
    std::vector<std::string> lines;
    std::vector<SOutcome> outcomes;
    for (unsigned seed = 5000; seed < 5000 + kRandomCalls; ++seed) {
        outcomes.push_back(traced(CRandomCall(seed, folder).make(), lines));
    }
    const std::vector<SLoggedCall> calls = callsOf(lines);
    ASSERT_EQ(calls.size(), outcomes.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(told(calls[i].outcome), told(outcomes[i]));
        EXPECT_THAT(calls[i].missing, IsEmpty());
        EXPECT_EQ(calls[i].number, i + 1);
    }
}

// The library's lines as a host writes them, with lines of the host's in between.
std::vector<std::string> asHostLog(const std::vector<std::string>& lines, std::mt19937& random) {
    std::vector<std::string> log;
    for (const std::string& line : lines) {
        if (random() % 4 == 0) {
            log.emplace_back("Nov 21 07:00:00 host backupd[17]: INFO volume [A:x] mounted {1 of 2}");
        }
        if (random() % 16 == 0) {
            log.emplace_back();
        }
        log.push_back("Nov 21 07:00:" + std::to_string(random() % 60) + " host backupd[" +
                      std::to_string(random() % 100000) + "]: " + (line[0] == '3' ? "ERROR" : "INFO") + "  " +
                      line.substr(2));
    }
    return log;
}

TEST_F(FiRotateLog, SeparatesThreeCallsInALogOfTheHost) {
    std::vector<std::string> lines;
    std::vector<SOutcome> outcomes;
    for (const unsigned seed : {1U, 2U, 3U}) {
        outcomes.push_back(traced(CRandomCall(seed, folder).make(), lines));
    }
    std::mt19937 random(4);
    const std::vector<SLoggedCall> calls = callsOf(asHostLog(lines, random));
    ASSERT_EQ(calls.size(), 3U);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(told(calls[i].outcome), told(outcomes[i]));
        EXPECT_THAT(calls[i].missing, IsEmpty());
    }
}

TEST_F(FiRotateLog, GivesThePositionOfACall) {
    std::vector<std::string> lines{"noise"};
    traced(rotation(), lines);
    const std::size_t end = lines.size();
    lines.insert(lines.end(), {"noise", "noise"});
    traced(rotation(), lines);
    const std::vector<SLoggedCall> calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].first.line, 2U);
    EXPECT_EQ(calls[0].last.line, end);
    EXPECT_EQ(calls[1].first.line, end + 3);
    EXPECT_EQ(calls[1].last.line, lines.size());
}

TEST_F(FiRotateLog, GivesTheTimeStampsThatTheTraceContains) {
    std::vector<std::string> lines;
    SCall call = rotation();
    call.backups[1].file = folder.write("lost", document("2", {{"A##y", "A##2"}}));
    traced(call, lines);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].outcome.backups[0].timeStamp, "1");
    EXPECT_EQ(calls[0].outcome.backups[1].timeStamp, "");
    EXPECT_EQ(calls[0].outcome.backups[2].timeStamp, "3");
}

TEST_F(FiRotateLog, RecognisesARefusedCall) {
    const auto calls = callsOf({"fi_process_backups : Invalid/empty parameter"});
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].outcome.status, FI_STATUS_FAILURE);
    EXPECT_FALSE(calls[0].outcome.account.has_value());
    EXPECT_THAT(calls[0].outcome.messages, ElementsAre("fi_process_backups : Invalid/empty parameter"));
    EXPECT_THAT(calls[0].missing, IsEmpty());
}

TEST_F(FiRotateLog, RecognisesFirstBackups) {
    std::vector<std::string> lines;
    SCall call;
    call.configuration = "A##x;1";
    traced(call, lines);
    call.configuration = "A##x";
    traced(call, lines);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].outcome.status, FI_STATUS_SUCCESS);
    EXPECT_EQ(calls[1].outcome.status, FI_STATUS_FAILURE);
    EXPECT_THAT(calls[0].missing, IsEmpty());
    EXPECT_THAT(calls[1].missing, IsEmpty());
}

// The host library gives the library a list without entries, so that it traces the configurations.
TEST_F(FiRotateLog, FindsNothingMissingInTheFirstBackupOfAHostLibrary) {
    std::vector<std::string> lines;
    fi_rotate::SWishes wishes;
    wishes.configurationsOfFirstBackup = true;
    wishes.trace = [&lines](int level, const std::string& text) {
        lines.push_back(std::to_string(level) + ' ' + text);
    };
    fi_rotate::runCall({"A##x;1", {}}, wishes);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].outcome.selection, "[A##x;A##1]");
    EXPECT_THAT(calls[0].outcome.backups, IsEmpty());
    EXPECT_THAT(calls[0].missing, IsEmpty());
}

TEST_F(FiRotateLog, TellsOfEachDocumentThatWasReadInPart) {
    SCall call = rotation();
    for (const char* name : {"torn", "torn, too"}) {
        const std::string whole = document("0", {{"A##x", "A##1"}});
        call.backups.push_back({folder.write(name, whole.substr(0, whole.size() - 2)), 0});
    }
    std::vector<std::string> lines;
    traced(call, lines);
    const std::string damage = "Entering CFiFiidHandler::fatalError";
    auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].outcome.messages, ElementsAre(damage, damage));

    // The host library tells the place as well.
    const std::string place = "CFiFiidHandler::fatalError : line 1, column 9 : a tag is not closed";
    lines.insert(std::find(lines.begin(), lines.end(), "4 " + damage) + 1, "3 " + place);
    calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].outcome.messages, ElementsAre(place, damage));
}

TEST_F(FiRotateLog, SaysThatTheEndIsMissing) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const auto claim = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find("[RESERVE GOOD]") != std::string::npos;
    });
    ASSERT_NE(claim, lines.end());
    // The newest claimed, then the one that lost; the oldest had not had its turn.
    lines.erase(claim + 2, lines.end());
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing, ElementsAre("its end, after line " + std::to_string(lines.size())));
    EXPECT_EQ(calls[0].last.line, lines.size());
    const SOutcome& outcome = calls[0].outcome;
    EXPECT_FALSE(outcome.status.has_value());
    EXPECT_FALSE(outcome.backups[0].reason.has_value());
    ASSERT_TRUE(outcome.backups[1].reason.has_value());
    EXPECT_EQ(inWords(*outcome.backups[1].reason), "A##2 of A##x was already held by " + folder.path("new"));
}

TEST_F(FiRotateLog, CountsLinesThatOnlyTellOfProgressUpToTheMissingEnd) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const auto isTold = [](const std::string& line) { return line.find("] exclude") != std::string::npos; };
    const auto flagWord = std::find_if(lines.begin(), lines.end(), isTold);
    const auto isProgress = [](const std::string& line) { return line.compare(0, 4, "4 En") == 0; };
    const auto last = std::find_if(std::find_if(flagWord, lines.end(), isProgress), lines.end(),
                                   [&isProgress](const std::string& line) { return !isProgress(line); });
    ASSERT_NE(last, lines.end());
    lines.erase(last, lines.end());
    for (std::string& line : lines) {
        line = "host[7]: " + line.substr(2);
    }
    const std::string end = std::to_string(lines.size());
    lines.emplace_back("host[8]: Entering CFiFiidHandler::startElement");
    lines.emplace_back("host[7]: Entering the maintenance window");
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing, ElementsAre("its end, after line " + end));
}

TEST_F(FiRotateLog, SaysWhichStatesAreMissingBeforeTheEnd) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    lines.erase(lines.begin() + lineOfState("old", lines));
    const auto newest = lineOfState("new", lines);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing,
                ElementsAre("the states of 1 of 3 backups, before line " + std::to_string(newest + 1)));
    EXPECT_FALSE(calls[0].outcome.backups[0].state.has_value());
    // Whether the lost one was kept is not known, so neither is who holds what.
    EXPECT_THAT(calls[0].outcome.account->heldAfter, IsEmpty());
}

TEST_F(FiRotateLog, SaysAfterWhichLineTheLastStatesAreMissing) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    lines.erase(lines.begin() + lineOfState("new", lines));
    const auto last = lineOfState("lost", lines);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing,
                ElementsAre("the states of 1 of 3 backups, after line " + std::to_string(last + 1)));
}

TEST_F(FiRotateLog, SaysThatTheEndOfACallMayBeMixedWithTheNextCall) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const std::vector<std::string> next = lines;
    lines.erase(lines.begin() + 20, lines.end());
    lines.insert(lines.end(), next.begin(), next.end());
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_THAT(calls[0].missing,
                ElementsAre("its end, after line 20, where another call begins: missing, or mixed with the "
                            "lines of that call"));
    EXPECT_THAT(calls[1].missing, IsEmpty());
}

// Searching it to its end from each of its places would take half an hour.
TEST_F(FiRotateLog, ReadsOnBehindALineOfManyBlanks) {
    std::vector<std::string> lines;
    const SOutcome outcome = traced(rotation(), lines);
    for (std::string& line : lines) {
        line = "host[7]: " + line;
    }
    lines.insert(lines.begin() + lineOfState("old", lines), "host[7]: " + std::string(100000, ' ') + "x]");
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(told(calls[0].outcome), told(outcome));
}

TEST_F(FiRotateLog, SaysThatTheBeginningIsMissing) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    lines.erase(lines.begin());
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    ASSERT_FALSE(calls[0].missing.empty());
    EXPECT_EQ(calls[0].missing[0],
              "its beginning, with the configuration: give the earlier log too, before this one");
    EXPECT_TRUE(calls[0].outcome.selection.has_value());
}

TEST_F(FiRotateLog, GivesNoReasonWhereTwoCallsAreMixed) {
    std::vector<std::string> one;
    std::vector<std::string> other;
    traced(rotation(), one);
    SCall call = rotation();
    call.configuration = "A##x;2;3&A##y;4";
    call.backups.erase(call.backups.begin());
    traced(call, other);
    std::vector<std::string> mixed;
    for (std::size_t i = 0; i < std::max(one.size(), other.size()); ++i) {
        for (const auto* const lines : {&one, &other}) {
            if (i < lines->size()) {
                mixed.push_back((*lines)[i]);
            }
        }
    }
    for (const SLoggedCall& logged : callsOf(mixed)) {
        EXPECT_FALSE(logged.missing.empty());
        for (const auto& backup : logged.outcome.backups) {
            EXPECT_FALSE(backup.reason.has_value());
        }
    }
}

// What remains of the lines of both, those of each in order, when both had begun before the log.
std::vector<std::string> mixedWithoutBeginnings(std::vector<std::string> one, std::vector<std::string> other,
                                                std::mt19937& random) {
    one.erase(one.begin(), one.begin() + 1 + static_cast<std::ptrdiff_t>(random() % one.size()));
    other.erase(other.begin(), other.begin() + 1 + static_cast<std::ptrdiff_t>(random() % other.size()));
    std::vector<std::string> log;
    while (!one.empty() || !other.empty()) {
        auto& from = other.empty() || (!one.empty() && random() % 2 == 0) ? one : other;
        log.push_back(from.front());
        from.erase(from.begin());
    }
    return log;
}

bool saysMixed(const SLoggedCall& logged) {
    return !logged.missing.empty() &&
           logged.missing[0].find("lines of several calls are mixed here") != std::string::npos;
}

TEST_F(FiRotateLog, SaysFirstThatCallsWithoutABeginningAreMixed) {
    std::vector<std::string> one;
    std::vector<std::string> other;
    traced(rotation(), one);
    SCall call = rotation();
    call.backups[0].flagWord = 4;
    traced(call, other);
    std::vector<std::string> mixed;
    // Both had begun, and the one that is ahead has read its documents.
    const auto isRead = [](const std::string& line) {
        return line.find("CFiResourceManager::print : ") != std::string::npos;
    };
    mixed.insert(mixed.end(), std::find_if(one.begin(), one.end(), isRead), one.end());
    mixed.insert(mixed.begin() + 5, other.begin() + 1, other.end());
    const auto calls = callsOf(mixed);
    ASSERT_FALSE(calls.empty());
    EXPECT_TRUE(saysMixed(calls[0]));
    EXPECT_FALSE(calls[0].outcome.selection.has_value());
    EXPECT_FALSE(calls[0].outcome.status.has_value());
    for (const auto& backup : calls[0].outcome.backups) {
        EXPECT_FALSE(backup.state.has_value());
        EXPECT_TRUE(backup.isLoaded);
    }
}

TEST_F(FiRotateLog, ShowsNoStateThatNoneOfTheMixedCallsHas) {
    constexpr unsigned kMixed = 300;
    std::size_t noticed = 0;
    for (unsigned seed = 0; seed < kMixed; ++seed) {
        SCOPED_TRACE(seed);
        std::vector<std::string> one;
        std::vector<std::string> other;
        SCall call = CRandomCall(seed, folder).make();
        const SOutcome ofOne = traced(call, one);
        for (auto& backup : call.backups) {
            backup.flagWord ^= 4;
        }
        const SOutcome ofOther = traced(call, other);
        std::mt19937 random(seed);
        for (const SLoggedCall& logged : callsOf(mixedWithoutBeginnings(one, other, random))) {
            noticed += saysMixed(logged) ? 1 : 0;
            for (const auto& backup : logged.outcome.backups) {
                const auto same = [&backup](const auto& known) {
                    return known.given.file == backup.given.file &&
                           (!backup.isFlagWordKnown || known.given.flagWord == backup.given.flagWord) &&
                           known.state == backup.state;
                };
                const bool isTold = backup.state.has_value();
                EXPECT_TRUE(!isTold || std::any_of(ofOne.backups.begin(), ofOne.backups.end(), same) ||
                            std::any_of(ofOther.backups.begin(), ofOther.backups.end(), same))
                    << backup.given.file << ' ' << backup.given.flagWord << ' ' << backup.state.value_or(-1);
            }
        }
    }
    EXPECT_GT(noticed, kMixed / 5);
}

TEST_F(FiRotateLog, SaysWhenACallWas) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        lines[i] = "Nov  2 01:30:" + std::to_string(10 + i % 50) + " backupd: " + lines[i].substr(2);
    }
    lines.emplace_back("Nov  3 07:00:00 backupd: done");
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].first.time, "Nov  2 01:30:10");
    EXPECT_EQ(calls[0].last.time, "Nov  2 01:30:" + std::to_string(10 + (lines.size() - 2) % 50));
}

TEST_F(FiRotateLog, SaysNoTimeWhereThereIsNone) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].first.time, "");
    EXPECT_EQ(calls[0].last.time, "");
}

TEST_F(FiRotateLog, FollowsACallIntoTheNextLog) {
    std::vector<std::string> lines;
    const SOutcome outcome = traced(rotation(), lines);
    for (std::size_t cut = 1; cut < lines.size(); ++cut) {
        SCOPED_TRACE(cut);
        CLogReader reader;
        reader.beginLog("log.1");
        reader.readLine("noise");
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (i == cut) {
                reader.beginLog("log");
            }
            reader.readLine("backupd: " + lines[i].substr(2));
        }
        const auto calls = reader.finish();
        ASSERT_EQ(calls.size(), 1U);
        EXPECT_EQ(told(calls[0].outcome), told(outcome));
        EXPECT_THAT(calls[0].missing, IsEmpty());
        EXPECT_EQ(calls[0].first.log, "log.1");
        EXPECT_EQ(calls[0].first.line, 2U);
        // A trace ends with the last tree, so the last line of the log is the last one of the call.
        EXPECT_EQ(calls[0].last.log, "log");
        EXPECT_EQ(calls[0].last.line, lines.size() - cut);
    }
}

TEST_F(FiRotateLog, PutsLineBreaksBackIntoLinesOfFiRotateOnly) {
    const std::string refused = "fi_process_backups : Invalid/empty parameter";
    const std::string rejected = R"(CFiResourceParser::parse : Invalid resource specification [\n\\r\t])";
    const auto calls = callsOf({"3 " + rejected, "3 " + refused});
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_THAT(calls[0].outcome.messages,
                ElementsAre("CFiResourceParser::parse : Invalid resource specification [\n\\r\\t]"));
    const auto ofHost = callsOf({"app: " + rejected, "app: " + refused});
    ASSERT_EQ(ofHost.size(), 2U);
    EXPECT_THAT(ofHost[0].outcome.messages, ElementsAre(rejected));
}

// Backups whose Nodes stand in another one, so that lines of their trees begin with tabs. The library's lines
// are those of a log that holds `text` instead of each tab.
class FiRotateLogTabs : public FiRotateLog {
protected:
    void SetUp() override {
        SCall call;
        call.configuration = "A##x;1;2&A##y;3;4";
        const auto nested = [](const std::string& stamp, const std::string& pairs) {
            return "<Node><timeStamp>" + stamp + "</timeStamp>" + pairs + "</Node>";
        };
        const auto pair = [](const std::string& first, const std::string& further) {
            return "<Node><Node><objid>UDID##v##m##A##" + first + "</objid><altobjid>UDID##v##m##A##" +
                   further + "</altobjid></Node></Node>";
        };
        call.backups.resize(3);
        call.backups[0].file = folder.write("old", nested("1", pair("x", "1") + pair("y", "3")));
        call.backups[1].file = folder.write("lost", nested("2", pair("x", "2")));
        call.backups[2].file = folder.write("new", nested("3", pair("x", "2") + pair("y", "4")));
        outcome = traced(call, lines);
    }

    [[nodiscard]] SLoggedCall callOfLogWith(const std::string& text) const {
        std::vector<std::string> log;
        for (const std::string& line : lines) {
            log.emplace_back("Nov 21 07:00:00 host backupd[17]: ");
            for (const char character : line.substr(2)) {
                log.back() += character == '\t' ? text : std::string(1, character);
            }
        }
        const auto calls = callsOf(log);
        return calls.size() == 1 ? calls[0] : SLoggedCall();
    }

    std::vector<std::string> lines;
    SOutcome outcome;
};

TEST_F(FiRotateLogTabs, AreReadInEveryEscapeOfALogger) {
    for (const char* const escape : {"#011", "\\t", "\\011", "\\x09", "^I", "\\u0009", "<09>", ""}) {
        SCOPED_TRACE(escape);
        const SLoggedCall logged = callOfLogWith(escape);
        ASSERT_TRUE(logged.outcome.account.has_value());
        EXPECT_EQ(told(logged.outcome), told(outcome));
        EXPECT_THAT(logged.missing, IsEmpty());
    }
}

TEST_F(FiRotateLogTabs, AreNamedAsMissingWhereAnythingElseReplacedThem) {
    for (const char* const text : {" ", "?", ".", "        ", "\xEF\xBF\xBD"}) {
        SCOPED_TRACE(text);
        const SLoggedCall logged = callOfLogWith(text);
        EXPECT_THAT(logged.missing,
                    ElementsAre("tabs at the beginning of lines: something has replaced them in the log"));
        EXPECT_EQ(logged.outcome.selection, outcome.selection);
        ASSERT_EQ(logged.outcome.backups.size(), 3U);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(logged.outcome.backups[i].state, outcome.backups[i].state);
            EXPECT_FALSE(logged.outcome.backups[i].reason.has_value());
        }
        ASSERT_TRUE(logged.outcome.account.has_value());
        EXPECT_THAT(logged.outcome.account->heldBefore, IsEmpty());
    }
}

TEST_F(FiRotateLogTabs, AreNotNamedAsMissingWhereALineIsOfNoTree) {
    std::vector<std::string> log;
    for (const std::string& line : lines) {
        log.push_back("backupd: " + line.substr(2));
        if (line.find("[RESERVE GOOD]") != std::string::npos) {
            log.emplace_back("backupd: ?? [a job of the host's]");
        }
    }
    const auto calls = callsOf(log);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(told(calls[0].outcome), told(outcome));
    EXPECT_THAT(calls[0].missing, IsEmpty());
}

TEST_F(FiRotateLogTabs, AndBlanksMayBeCutOffWithoutAFalseReason) {
    for (std::string& line : lines) {
        const std::string text = line.substr(2);
        line = "backupd: " + text.substr(std::min(text.find_first_not_of("\t "), text.size()));
    }
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_FALSE(calls[0].missing.empty());
    for (const auto& backup : calls[0].outcome.backups) {
        EXPECT_FALSE(backup.reason.has_value());
    }
}

// A logger that puts a word there leaves nothing that could be known as a line of the library's.
TEST_F(FiRotateLogTabs, ThatHideWhatWasReleasedLeaveNoReason) {
    const SLoggedCall logged = callOfLogWith("TAB");
    EXPECT_THAT(logged.missing, ElementsAre("lines that say what the backups hold"));
    ASSERT_EQ(logged.outcome.backups.size(), 3U);
    for (const auto& backup : logged.outcome.backups) {
        EXPECT_TRUE(backup.state.has_value());
        EXPECT_FALSE(backup.reason.has_value());
    }
    ASSERT_TRUE(logged.outcome.account.has_value());
    EXPECT_THAT(logged.outcome.account->heldBefore, IsEmpty());
}

// A log that lacks lines may tell less than the call, or say what is missing, but nothing else than the call.
void expectNothingFalse(const SLoggedCall& logged, const SOutcome& outcome) {
    for (const auto& backup : logged.outcome.backups) {
        const auto same = [&backup](const auto& other) {
            return other.given.file == backup.given.file &&
                   (!backup.isFlagWordKnown || other.given.flagWord == backup.given.flagWord) &&
                   (!backup.state.has_value() || backup.state == other.state) &&
                   (!backup.reason.has_value() || inWords(*backup.reason) == inWords(*other.reason));
        };
        EXPECT_TRUE(std::any_of(outcome.backups.begin(), outcome.backups.end(), same))
            << backup.given.file << ' ' << (backup.reason ? inWords(*backup.reason) : "");
    }
    if (logged.outcome.selection.has_value()) {
        EXPECT_EQ(logged.outcome.selection, outcome.selection);
    }
}

bool hasNameTwice(const SCall& call) {
    std::set<std::string> names;
    for (const auto& backup : call.backups) {
        names.insert(backup.file);
    }
    return names.size() != call.backups.size();
}

// The names in the lines that tell a state. No name in a random call looks like a state.
std::multiset<std::string> namesWithState(const std::vector<std::string>& lines) {
    const std::string start = "fi_process_backups : parsed [";
    std::multiset<std::string> names;
    for (const std::string& line : lines) {
        const std::size_t from = line.find(start);
        const std::size_t end = line.find("] state=[");
        if (from != std::string::npos && end != std::string::npos) {
            names.insert(line.substr(from + start.size(), end - from - start.size()));
        }
    }
    return names;
}

std::multiset<std::string> namesShownWithState(const std::vector<SLoggedCall>& calls) {
    std::multiset<std::string> names;
    for (const SLoggedCall& logged : calls) {
        for (const auto& backup : logged.outcome.backups) {
            if (backup.state.has_value()) {
                names.insert(backup.given.file);
            }
        }
    }
    return names;
}

TEST_F(FiRotateLog, ListsEachBackupWhoseStateItHasWhereverItIsCut) {
    constexpr unsigned kCutCalls = 12;
    for (unsigned seed = 0; seed < kCutCalls; ++seed) {
        std::vector<std::string> lines;
        const SCall call = CRandomCall(seed, folder).make();
        const SOutcome outcome = traced(call, lines);
        if (hasNameTwice(call)) {
            continue;
        }
        const auto expectTrue = [&outcome](const std::vector<std::string>& part) {
            const auto calls = callsOf(part);
            EXPECT_LE(calls.size(), 1U);
            EXPECT_EQ(namesShownWithState(calls), namesWithState(part));
            for (const SLoggedCall& logged : calls) {
                expectNothingFalse(logged, outcome);
            }
        };
        for (auto cut = lines.begin(); cut != lines.end(); ++cut) {
            SCOPED_TRACE(std::to_string(seed) + ", cut before " + *cut);
            expectTrue({cut, lines.end()});
            expectTrue({lines.begin(), cut});
        }
    }
}

TEST_F(FiRotateLog, TakesADocumentWhoseNameEndsLikeAStateForNoState) {
    std::vector<std::string> lines;
    SCall call = rotation();
    call.backups[0].file = folder.write("old] state=[1", document("1", {{"A##x", "A##1"}}));
    const SOutcome outcome = traced(call, lines);
    for (auto cut = lines.begin(); cut != lines.end(); ++cut) {
        SCOPED_TRACE(*cut);
        for (const SLoggedCall& logged : callsOf({cut, lines.end()})) {
            expectNothingFalse(logged, outcome);
        }
    }
}

TEST_F(FiRotateLog, ListsTheStatesOfALogThatBeginsBehindTheSelection) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    lines.erase(lines.begin(), lines.begin() + lineOfState("lost", lines));
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_TRUE(calls[0].isBeginningMissing);
    EXPECT_FALSE(calls[0].areBackupsKnown);
    EXPECT_THAT(
        calls[0].missing,
        ElementsAre("its beginning, with the configuration: give the earlier log too, before this one",
                    "the flag words of 2 backups"));
    const auto& backups = calls[0].outcome.backups;
    ASSERT_EQ(backups.size(), 2U);
    EXPECT_EQ(backups[0].given.file, folder.path("lost"));
    EXPECT_EQ(backups[0].state, FI_BACKUP_INVALID);
    EXPECT_EQ(backups[1].given.file, folder.path("new"));
    EXPECT_EQ(backups[1].state, FI_BACKUP_KEPT);
}

// The states may be those of another call, but they are no documents.
TEST_F(FiRotateLog, ShowsNoStateThatFollowsOnNoSelection) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const auto isSelection = [](const std::string& line) {
        return line.find("resource_config_string [") != std::string::npos;
    };
    lines.erase(std::find_if(lines.begin(), lines.end(), isSelection));
    const auto oldest = lines[static_cast<std::size_t>(lineOfState("old", lines))].substr(2);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing,
                ElementsAre("lines somewhere before line " + std::to_string(lineOfState("old", lines) + 1) +
                                ", \"" + oldest + "\"",
                            "the line with the selection"));
    EXPECT_THAT(calls[0].outcome.backups, testing::SizeIs(3));
    for (const auto& backup : calls[0].outcome.backups) {
        EXPECT_FALSE(backup.state.has_value());
        EXPECT_FALSE(backup.reason.has_value());
    }
}

// A log in which `first` breaks off before it loads documents, and `later` begins there.
std::vector<std::string> joinedAtLoading(std::vector<std::string> first,
                                         const std::vector<std::string>& later) {
    const auto isParsed = [](const std::string& line) {
        return line.find("fi_process_backups : parsed [") != std::string::npos;
    };
    first.erase(std::find_if(first.begin(), first.end(), isParsed), first.end());
    first.insert(first.end(), std::find_if(later.begin(), later.end(), isParsed), later.end());
    return first;
}

TEST_F(FiRotateLog, GivesNoReasonWhereABackupOfALaterCallSeemsToBeOfThisOne) {
    std::vector<std::string> lines;
    SCall call = rotation();
    traced(call, lines);
    call.backups[0].file = folder.write("newer", document("4", {{"A##x", "A##2"}}));
    std::vector<std::string> later;
    traced(call, later);
    const auto calls = callsOf(joinedAtLoading(lines, later));
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing, ElementsAre("the flag word of \"" + call.backups[0].file +
                                              "\"; lines of two calls may look like one here"));
    EXPECT_THAT(calls[0].outcome.backups, testing::SizeIs(4));
    for (const auto& backup : calls[0].outcome.backups) {
        EXPECT_FALSE(backup.reason.has_value());
        EXPECT_TRUE(backup.isLoaded);
    }
}

// The end of a call that excludes "old" and the beginning of the next one, which rotates it, are lost.
TEST_F(FiRotateLog, TakesAnExcludedBackupThatSeemsRotatedForOneOfTwoCalls) {
    std::vector<std::string> first;
    std::vector<std::string> second;
    SCall call = rotation();
    traced(call, second);
    call.backups[0].flagWord = FI_EXCLUDE_ROTATION;
    traced(call, first);
    const auto calls = callsOf(joinedAtLoading(first, second));
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing, ElementsAre(testing::StartsWith("what tells calls apart: ")));
    EXPECT_EQ(calls[0].outcome.selection, std::nullopt);
    EXPECT_THAT(calls[0].outcome.backups, testing::SizeIs(3));
    for (const auto& backup : calls[0].outcome.backups) {
        EXPECT_FALSE(backup.state.has_value());
        EXPECT_FALSE(backup.reason.has_value());
    }
}

// Most lines are of the process whose call has no beginning in the log.
TEST_F(FiRotateLog, TellsProcessesInBracketsApartWhereOnlyOneBeginsACall) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const std::size_t cut = 10;
    std::vector<std::string> log;
    for (std::size_t i = 0; i < cut; ++i) {
        log.push_back("host backupd[101]: " + lines[i].substr(2));
    }
    for (std::size_t i = cut; i < lines.size(); ++i) {
        log.push_back("host backupd[103]: " + lines[i].substr(2));
    }
    const auto calls = callsOf(log);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_FALSE(calls[0].isBeginningMissing);
    EXPECT_EQ(calls[0].outcome.selection, std::nullopt);
    EXPECT_TRUE(calls[1].isBeginningMissing);
    EXPECT_TRUE(calls[1].outcome.selection.has_value());
}

TEST_F(FiRotateLog, ListsNoBackupByItsStateAloneWhereThePrefixesOfTheStatesDiffer) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    lines.erase(lines.begin(), lines.begin() + lineOfState("old", lines));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        lines[i] = "host[" + std::to_string(i) + "]: " + lines[i];
    }
    for (const SLoggedCall& logged : callsOf(lines)) {
        EXPECT_THAT(logged.outcome.backups, IsEmpty());
        EXPECT_FALSE(logged.missing.empty());
    }
}

// Comparing each line behind the call with all its backups would take half an hour.
TEST_F(FiRotateLog, ReadsOnBehindADamagedCallOfManyBackups) {
    constexpr int kBackups = 100000;
    std::vector<std::string> lines{"4 CFiResourceParser::parse : Resource specification [A##x;1]",
                                   "4 CFiResourceParser::parse : [A][x]",
                                   "4 CFiResourceParser::parse : [A][1]"};
    const auto addForEach = [&lines](const std::string& before, const std::string& after) {
        for (int i = 0; i < kBackups; ++i) {
            lines.push_back(before + std::to_string(i) + after);
        }
    };
    const std::string parsed = "4 fi_process_backups : parsed [b";
    addForEach("3 fi_process_backups :  Fiid [b", "] exclude rotation flag [0] ");
    addForEach(parsed, "]");
    lines.emplace_back("4 CFiResourceManager::print : printing resource set");
    lines.emplace_back("4 fi_process_backups : resource_config_string [[A##x;A##1]] ");
    lines.emplace_back("4 CFiResourceManager::print : printing resource set");
    addForEach(parsed, "] state=[0]");
    addForEach(parsed, "]");
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].outcome.backups, testing::SizeIs(kBackups));
    EXPECT_FALSE(calls[0].missing.empty());
}

TEST_F(FiRotateLog, DoesNotAddTheStatesOfALaterCallToAWholeOne) {
    std::vector<std::string> lines;
    const SOutcome outcome = traced(rotation(), lines);
    std::vector<std::string> later;
    SCall call = rotation();
    call.backups[2].file = folder.write("newer", document("4", {{"A##x", "A##2"}}));
    traced(call, later);
    lines.insert(lines.end(), later.begin() + lineOfState("newer", later), later.end());
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(told(calls[0].outcome), told(outcome));
    EXPECT_THAT(calls[0].missing, IsEmpty());
    ASSERT_EQ(calls[1].outcome.backups.size(), 1U);
    EXPECT_EQ(calls[1].outcome.backups[0].given.file, folder.path("newer"));
}

TEST_F(FiRotateLog, KnowsTheNumberOfALevelWhenNoOtherLevelHasNamedLines) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const auto contains = [](const std::string& text) {
        return [text](const std::string& line) { return line.find(text) != std::string::npos; };
    };
    const auto flagWord = std::find_if(lines.begin(), lines.end(), contains("exclude rotation flag"));
    const auto parsed = std::find_if(lines.begin(), lines.end(), contains("parsed ["));
    std::vector<std::string> middle(flagWord, parsed);
    for (std::string& line : middle) {
        line.insert(0, "app[7]: ");
    }
    const auto calls = callsOf(middle);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].last.line, middle.size());
    EXPECT_THAT(
        calls[0].missing,
        ElementsAre("its beginning, with the configuration: give the earlier log too, before this one",
                    "its end, after line " + std::to_string(middle.size())));
}

// Each line with a time in front of it.
std::vector<std::string> at(const std::string& time, std::vector<std::string> lines) {
    for (std::string& line : lines) {
        line.insert(0, time + " app[7]: ");
    }
    return lines;
}

TEST_F(FiRotateLog, TellsTheCallsOfTwoNightsApartWhenTheLinesBetweenThemAreMissing) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    const auto middle = lines.begin() + static_cast<std::ptrdiff_t>(lines.size() / 2);
    const auto callsAt = [&lines, middle](const std::string& first, const std::string& second) {
        std::vector<std::string> log = at(first, {lines.begin(), middle});
        const std::vector<std::string> rest = at(second, {middle, lines.end()});
        log.insert(log.end(), rest.begin(), rest.end());
        return callsOf(log);
    };
    const auto slow = callsAt("2026-10-10 23:30:00", "2026-10-11 01:30:00");
    ASSERT_EQ(slow.size(), 1U);
    EXPECT_THAT(slow[0].missing, IsEmpty());

    const auto nights = callsAt("2026-10-10 23:30:00", "2026-10-11 23:30:00");
    ASSERT_EQ(nights.size(), 2U);
    EXPECT_EQ(nights[0].last.line, lines.size() / 2);
    EXPECT_EQ(nights[0].outcome.status, std::nullopt);
    EXPECT_THAT(nights[0].missing, testing::Not(IsEmpty()));
    EXPECT_EQ(nights[0].outcome.backups.size(), 3U);
    EXPECT_TRUE(nights[1].isBeginningMissing);
    EXPECT_EQ(nights[1].last.line, lines.size());
}

TEST_F(FiRotateLog, SaysWhichLevelOfTheLibraryIsNotLogged) {
    std::vector<std::string> lines;
    traced(rotation(), lines);
    std::vector<std::string> failures;
    std::vector<std::string> progress;
    for (const std::string& line : lines) {
        (line[0] == '3' ? failures : progress).push_back(line);
    }
    const auto ofFailures = callsOf(failures);
    ASSERT_EQ(ofFailures.size(), 1U);
    EXPECT_THAT(
        ofFailures[0].missing,
        ElementsAre("its messages of level 4, only those of level 3 were found: set the product's log to "
                    "levels 3 and 4"));
    const auto ofProgress = callsOf(progress);
    ASSERT_EQ(ofProgress.size(), 1U);
    EXPECT_THAT(
        ofProgress[0].missing,
        ElementsAre(
            "the flag words, and all other messages of level 3: they are lost, or the product's log is not "
            "set to levels 3 and 4"));
}

TEST_F(FiRotateLog, SaysNothingFalseAboutACallThatBreaksOff) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::vector<std::string> lines;
        const SOutcome outcome = traced(CRandomCall(seed, folder).make(), lines);
        std::mt19937 random(seed);
        lines.resize(1 + random() % lines.size());
        const auto calls = callsOf(lines);
        ASSERT_EQ(calls.size(), 1U);
        expectNothingFalse(calls[0], outcome);
    }
}

TEST_F(FiRotateLog, SaysNothingFalseAboutACallThatLacksALine) {
    std::size_t noticed = 0;
    for (unsigned seed = 0; seed < kRandomCalls; ++seed) {
        SCOPED_TRACE(seed);
        std::vector<std::string> lines;
        const SOutcome outcome = traced(CRandomCall(seed, folder).make(), lines);
        std::mt19937 random(seed);
        const auto lost = lines.begin() + static_cast<std::ptrdiff_t>(random() % lines.size());
        SCOPED_TRACE(*lost);
        lines.erase(lost);
        const auto calls = callsOf(lines);
        ASSERT_LE(calls.size(), 1U);
        if (!calls.empty()) {
            noticed += calls[0].missing.empty() ? 0 : 1;
            expectNothingFalse(calls[0], outcome);
        }
    }
    EXPECT_GT(noticed, kRandomCalls / 5);
}

// Whether the line of fi-rotate's trace is the first one of a Node in a tree.
bool beginsNode(const std::string& line) {
    const std::size_t text = std::string("4 ").size();
    const std::size_t name = line.find_first_not_of('\t', text);
    return line.compare(std::min(name, line.size()), 2, " [") == 0;
}

TEST_F(FiRotateLog, NoticesThatAnyNodeIsMissingFromTheTreesBeforeASelection) {
    constexpr unsigned kCalls = 40;
    constexpr std::ptrdiff_t kLinesOfNode = 3;
    std::size_t nodes = 0;
    for (unsigned seed = 0; seed < kCalls; ++seed) {
        std::vector<std::string> lines;
        const SCall call = CRandomCall(seed, folder).make();
        const SOutcome outcome = traced(call, lines);
        if (hasNameTwice(call) || !outcome.account->selection.has_value()) {
            continue;
        }
        const auto isSelection = [](const std::string& line) {
            return line.find("resource_config_string [") != std::string::npos;
        };
        const auto end = std::find_if(lines.begin(), lines.end(), isSelection);
        for (auto node = std::find_if(lines.begin(), end, beginsNode); node != end;
             node = std::find_if(node + kLinesOfNode, end, beginsNode)) {
            SCOPED_TRACE(std::to_string(seed) + ", without " + *node);
            std::vector<std::string> rest(lines.begin(), node);
            rest.insert(rest.end(), node + kLinesOfNode, lines.end());
            const auto calls = callsOf(rest);
            ASSERT_EQ(calls.size(), 1U);
            EXPECT_FALSE(calls[0].missing.empty());
            expectNothingFalse(calls[0], outcome);
            ++nodes;
        }
    }
    EXPECT_GT(nodes, 2 * kCalls);
}

TEST_F(FiRotateLog, NoticesThatATargetIsMissingBothFromTheConfigurationAndFromItsFirstPrint) {
    std::vector<std::string> lines;
    const SOutcome outcome = traced(rotation(), lines);
    const auto drop = [&lines](const std::string& line) {
        const auto found = std::find(lines.begin(), lines.end(), line);
        ASSERT_NE(found, lines.end());
        lines.erase(found);
    };
    drop("4 CFiResourceParser::parse : [A][2]");
    drop("4 {2,Available}");
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_FALSE(calls[0].missing.empty());
    expectNothingFalse(calls[0], outcome);
}

TEST_F(FiRotateLog, GivesReasonsWhereANodeIsMissingOnlyBehindTheSelection) {
    std::vector<std::string> lines;
    const SOutcome outcome = traced(rotation(), lines);
    const auto last = std::find_if(lines.rbegin(), lines.rend(), beginsNode).base() - 1;
    lines.erase(last, last + 3);
    const auto calls = callsOf(lines);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].missing, IsEmpty());
    EXPECT_EQ(told(calls[0].outcome), told(outcome));
}

}  // namespace
