// Whose calls they are, in logs that several writers and many others write into at once.

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/explain/log.h"
#include "host/library_call.h"
#include "tests/cli/explain/Traced.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::CLogReader;
using fi_rotate::SLoggedCall;
using fi_test::callsOf;
using fi_test::CRandomCall;
using fi_test::told;
using fi_test::traced;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Returns what a host writes before a message: of a process, at a level of the library, in a second of the
// day.
using Format = std::string (*)(int process, char level, int second);

std::string clock(int second) {
    return fmt::format("{:02}:{:02}:{:02}", second / 3600, second / 60 % 60, second % 60);
}

std::string syslog(int process, char /*level*/, int second) {
    constexpr int kDay = 86400;
    // The day soon gets its second digit.
    const int late = second + kDay - 100;
    return fmt::format("Nov {:2} {} host backupd[{}]: ", 9 + late / kDay, clock(late % kDay),
                       90 + 3000 * process);
}

std::string journal(int process, char level, int second) {
    return fmt::format("2026-10-10T{}+0200 host{} backupd[17]: {}", clock(second), process,
                       level == '3' ? "ERROR: " : "");
}

std::string iso(int process, char level, int second) {
    return fmt::format("2026-10-10T{}.{:03} [{}] {} ", clock(second), second % 1000, 7 + 100 * process,
                       level == '3' ? "ERROR" : "INFO");
}

std::string log4(int process, char level, int second) {
    return fmt::format("2026-10-10 {},{:03} {:5} [pool-1-thread-{}] (Trace.java:88) - ", clock(second),
                       second * 7 % 1000, level == '3' ? "WARN" : "TRACE", 9 + process);
}

// With a counter, an uptime, and the host's own letters for the levels.
std::string counted(int process, char level, int second) {
    return fmt::format("{} [{:5}.{:06}] {}/t:0x7f{:x}\t", second * 3, second, second * 17 % 1000000,
                       level == '3' ? 'F' : 'P', process);
}

// The number of the thread stands directly in front of the level.
std::string numbered(int process, char level, int second) {
    return fmt::format("2026-10-10 {} thread-{}: {} ", clock(second), 1 + process, level);
}

constexpr std::array<Format, 6> kFormats{syslog, journal, iso, log4, counted, numbered};

// A trace that is written to a log, line after line.
struct SProcess {
    Format format = nullptr;
    std::vector<std::string> lines;
    // Where each of its calls begins in `lines`, and what it came to.
    std::vector<std::pair<std::size_t, std::string>> calls;
    std::size_t written = 0;

    [[nodiscard]] bool isOver() const { return written == lines.size(); }
};

class FiRotateLogWriters : public testing::Test {
protected:
    SProcess process(Format format, std::size_t calls) {
        SProcess made;
        made.format = format;
        for (std::size_t i = 0; i < calls; ++i) {
            const std::size_t begin = made.lines.size();
            const std::string outcome =
                told(traced(CRandomCall(static_cast<unsigned>(random()), folder).make(), made.lines));
            made.calls.emplace_back(begin, outcome);
        }
        return made;
    }

    // A call with four backups, of which the oldest is rotated.
    SProcess rotated(Format format) {
        fi_rotate::SCall call;
        call.configuration = "A##x;1;2;3;4";
        for (const char* const number : {"1", "2", "3", "4"}) {
            const std::string target = std::string("A##") + number;
            call.backups.emplace_back();
            call.backups.back().file =
                folder.write(number, fi_test::document(number, {{"A##x", target.c_str()}}));
        }
        SProcess made;
        made.format = format;
        made.calls.emplace_back(0, told(traced(call, made.lines)));
        return made;
    }

    static std::string statesOf(const fi_rotate::SOutcome& outcome) {
        std::string states;
        for (const auto& backup : outcome.backups) {
            states += std::string(stateWord(backup).value_or("-")) + ' ';
        }
        return states;
    }

    // All lines of the processes, those of each in order, with so many lines of noise in between. `expected`
    // gets what the calls came to, in the order in which they begin.
    std::vector<std::string> mixed(std::vector<SProcess> processes, std::size_t noise,
                                   std::vector<std::string>& expected) {
        std::vector<std::size_t> turns(noise, processes.size());
        for (std::size_t i = 0; i < processes.size(); ++i) {
            turns.insert(turns.end(), processes[i].lines.size(), i);
        }
        std::shuffle(turns.begin(), turns.end(), random);
        std::vector<std::string> log;
        for (const std::size_t turn : turns) {
            const int second = static_cast<int>(log.size() * 80000 / turns.size());
            if (turn == processes.size()) {
                log.push_back(noiseOf(processes, second));
                continue;
            }
            SProcess& writer = processes[turn];
            const auto begins = [&writer](const auto& call) { return call.first == writer.written; };
            const auto call = std::find_if(writer.calls.begin(), writer.calls.end(), begins);
            if (call != writer.calls.end()) {
                expected.push_back(call->second);
            }
            const std::string& line = writer.lines[writer.written++];
            log.push_back(writer.format(static_cast<int>(turn), line[0], second) + line.substr(2));
        }
        return log;
    }

    std::string noiseOf(const std::vector<SProcess>& processes, int second) {
        const std::size_t any = random() % processes.size();
        const SProcess& writer = processes[any];
        const std::string quoted = writer.lines[random() % writer.lines.size()].substr(2);
        const std::string own = writer.format(static_cast<int>(any), '4', second);
        switch (random() % 10) {
            case 0:
                return own + "volume [A:x] mounted {1 of 2}";
            case 1:
                return own + "replays " + quoted;
            case 2:
                return own + "read \"" + quoted + "\" from its log";
            case 3:
                return own + "fi_process_backups : called with 3 documents";
            case 4:
                return own + "CFiResourceParser::parse : [A]";
            case 5:
                return own + "see [1]";
            case 6:
                // What a text with a line break leaves.
                return quoted;
            case 7:
                return "";
            case 8:
                return own + "ERROR in {1,Available}, fi_process_backups";
            default:
                return writer.format(99, '3', second) + "fi_process_backups : asked for " + quoted;
        }
    }

    static void expectAll(const std::vector<SLoggedCall>& calls, const std::vector<std::string>& expected) {
        ASSERT_EQ(calls.size(), expected.size());
        for (std::size_t i = 0; i < calls.size(); ++i) {
            SCOPED_TRACE(i);
            EXPECT_EQ(told(calls[i].outcome), expected[i]);
            EXPECT_THAT(calls[i].missing, IsEmpty());
            EXPECT_EQ(calls[i].number, i + 1);
        }
    }

    fi_test::CTemporaryFolder folder;
    std::mt19937 random{1};
};

constexpr std::size_t kNoise = 10000;
constexpr std::size_t kCalls = 6;

TEST_F(FiRotateLogWriters, AreSeparatedInOverlappingCallsOfOneFormat) {
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        SCOPED_TRACE(i);
        const Format format = kFormats[i];
        std::vector<std::string> expected;
        const auto log = mixed({process(format, kCalls), process(format, kCalls), process(format, kCalls)},
                               kNoise, expected);
        expectAll(callsOf(log), expected);
    }
}

TEST_F(FiRotateLogWriters, AreSeparatedInOverlappingCallsOfDifferentFormats) {
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        SCOPED_TRACE(i);
        std::vector<SProcess> processes;
        for (std::size_t j = 0; j < 3; ++j) {
            processes.push_back(process(kFormats[(i + j) % kFormats.size()], kCalls));
        }
        std::vector<std::string> expected;
        expectAll(callsOf(mixed(std::move(processes), kNoise, expected)), expected);
    }
}

struct SPrefixRow {
    const char* name;
    const char* ofProgress;
    const char* ofFailures;
};

class FiRotateLogPrefixes : public FiRotateLogWriters, public testing::WithParamInterface<SPrefixRow> {};

TEST_P(FiRotateLogPrefixes, MayDifferInTimeAndLevel) {
    const SProcess writer = process(nullptr, 10);
    std::vector<std::string> expected;
    for (const auto& call : writer.calls) {
        expected.push_back(call.second);
    }
    constexpr std::array<const char*, 6> kOfHost{"starting",    "",   "see [1]",
                                                 "[A:x](free)", "{}", "done <5 s>."};
    std::vector<std::string> log;
    for (const std::string& line : writer.lines) {
        const std::string prefix = line[0] == '4' ? GetParam().ofProgress : GetParam().ofFailures;
        log.push_back(prefix + kOfHost.at(random() % kOfHost.size()));
        log.push_back(prefix + line.substr(2));
    }
    expectAll(callsOf(log), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, FiRotateLogPrefixes,
    testing::Values(SPrefixRow{"None", "", ""}, SPrefixRow{"Level", "4 ", "3 "},
                    SPrefixRow{"Syslog",
                               "Nov  9 23:59:59 host backupd[99]: ", "Nov 10 00:00:00 host backupd[99]: "},
                    SPrefixRow{"Iso", "2026-11-21T07:00:00.123Z INFO ", "2026-11-21T07:00:00.9Z WARNING "},
                    SPrefixRow{"Brackets", "[  17][t:0x7f] <trace> ", "[17][t:0x7f] <error> "},
                    SPrefixRow{"Tab", "07:00\t", "19:30\t"},
                    SPrefixRow{"ShortLevels", "07:00 pid=17 DBG ", "19:30 pid=17 ERR "},
                    SPrefixRow{"LevelFirst", "INFO: 07:00 [17] ", "ERROR: 19:30 [17] "}),
    [](const auto& row) { return row.param.name; });

TEST_F(FiRotateLogWriters, AreFollowedThroughRotatedLogs) {
    std::vector<std::string> expected;
    const auto log = mixed({process(syslog, 4), process(syslog, 4), process(syslog, 4)}, 100, expected);
    CLogReader reader;
    for (std::size_t i = 0; i < log.size(); ++i) {
        if (i % 100 == 0) {
            reader.beginLog("log." + std::to_string(i / 100));
        }
        reader.readLine(log[i]);
    }
    expectAll(reader.finish(), expected);
}

TEST_F(FiRotateLogWriters, AreSeparatedWhenTheLogBeginsWithinACall) {
    const SProcess cut = process(iso, 1);
    const SProcess whole = process(iso, 3);
    std::vector<std::string> log;
    for (std::size_t i = 1; i < std::max(cut.lines.size(), whole.lines.size()); ++i) {
        if (i < cut.lines.size()) {
            log.push_back(iso(1, cut.lines[i][0], 5) + cut.lines[i].substr(2));
        }
        if (i <= whole.lines.size()) {
            log.push_back(iso(2, whole.lines[i - 1][0], 5) + whole.lines[i - 1].substr(2));
        }
    }
    log.push_back(iso(2, whole.lines.back()[0], 5) + whole.lines.back().substr(2));
    const auto calls = callsOf(log);
    ASSERT_THAT(calls, SizeIs(4));
    EXPECT_THAT(
        calls[0].missing,
        ElementsAre("its beginning, with the configuration: give the earlier log too, before this one"));
    for (std::size_t i = 0; i < whole.calls.size(); ++i) {
        EXPECT_EQ(told(calls[i + 1].outcome), whole.calls[i].second);
        EXPECT_THAT(calls[i + 1].missing, IsEmpty());
    }
}

// Two processes had begun their calls before the log, and their lines alternate.
TEST_F(FiRotateLogWriters, AreToldApartWhenAllCallsWereCutOffAtTheBeginningOfTheLog) {
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        SCOPED_TRACE(i);
        const std::array<SProcess, 2> cut{rotated(kFormats[i]), rotated(kFormats[i])};
        std::vector<std::string> log;
        for (std::size_t line = 1; line < std::max(cut[0].lines.size(), cut[1].lines.size()); ++line) {
            for (int process = 0; process < 2; ++process) {
                const auto& lines = cut.at(static_cast<std::size_t>(process)).lines;
                if (line < lines.size()) {
                    log.push_back(kFormats[i](process, lines[line][0], static_cast<int>(log.size())) +
                                  lines[line].substr(2));
                }
            }
        }
        const auto calls = callsOf(log);
        ASSERT_THAT(calls, SizeIs(2));
        for (const auto& call : calls) {
            EXPECT_THAT(
                call.missing,
                testing::Contains(
                    "its beginning, with the configuration: give the earlier log too, before this one"));
            EXPECT_EQ(statesOf(call.outcome), "rotated kept kept kept ");
        }
    }
}

TEST_F(FiRotateLogWriters, AreToldApartWhenOneOfThemBeginsInTheLog) {
    const SProcess cut = rotated(syslog);
    const SProcess whole = rotated(syslog);
    std::vector<std::string> log{syslog(2, '4', 0) + whole.lines[0].substr(2)};
    for (std::size_t line = 1; line < cut.lines.size(); ++line) {
        for (int process = 0; process < 2; ++process) {
            log.push_back(syslog(process, '4', 7) + cut.lines[line].substr(2));
        }
        log.push_back(syslog(2, '4', 7) + whole.lines[line].substr(2));
    }
    const auto calls = callsOf(log);
    ASSERT_THAT(calls, SizeIs(3));
    EXPECT_THAT(calls[0].missing, IsEmpty());
    EXPECT_EQ(told(calls[0].outcome), whole.calls[0].second);
    EXPECT_EQ(statesOf(calls[1].outcome), "rotated kept kept kept ");
    EXPECT_EQ(statesOf(calls[2].outcome), "rotated kept kept kept ");
}

TEST_F(FiRotateLogWriters, AreToldApartByFlagWordsAlone) {
    std::vector<std::string> log;
    for (const char* const name : {"a", "b", "c", "d"}) {
        for (const int process : {1, 2}) {
            log.push_back(syslog(process, '3', 7) + "fi_process_backups :  Fiid [" + name +
                          "] exclude rotation flag [0] ");
        }
    }
    const auto calls = callsOf(log);
    ASSERT_THAT(calls, SizeIs(2));
    EXPECT_THAT(calls[0].outcome.backups, SizeIs(4));
    EXPECT_THAT(calls[1].outcome.backups, SizeIs(4));
}

TEST_F(FiRotateLogWriters, OfOtherLogsNeedNoTimeWhereThoseOfOneHaveIt) {
    const SProcess host = process(syslog, 1);
    const SProcess own = process(nullptr, 1);
    CLogReader reader;
    reader.beginLog("host");
    for (const std::string& line : host.lines) {
        reader.readLine(syslog(1, line[0], 7) + line.substr(2));
    }
    reader.beginLog("own");
    for (const std::string& line : own.lines) {
        reader.readLine(line);
    }
    expectAll(reader.finish(), {host.calls[0].second, own.calls[0].second});
}

TEST_F(FiRotateLogWriters, AreNotFoundWithoutALineThatNamesAnOperation) {
    EXPECT_THAT(callsOf({" [UDID##v##m##A##x]", "[A:x](Used)", "4 {1,Available}", "a: ERROR: UDID##v"}),
                IsEmpty());
}

TEST_F(FiRotateLogWriters, AreFoundByASingleFailureLineAfterALevel) {
    const auto calls = callsOf({"ERROR: fi_process_backups : Invalid/empty parameter"});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_EQ(calls[0].outcome.status, 3);
}

// A call with two backups, of which an identifier of one holds `text`, in a log of a host that writes line
// breaks as they are. That backup fails the check, since no configuration is called so.
class FiRotateLogForgery : public FiRotateLogWriters {
protected:
    std::vector<SLoggedCall> callsWith(const std::string& text, std::string& expected) {
        fi_rotate::SCall call;
        call.configuration = "A##x;1;2";
        call.backups.resize(2);
        call.backups[0].file =
            folder.write("forged", "<Node><objid>UDID##v##m##" + text + "</objid><altobjid>UDID##v##m##A##1" +
                                       "</altobjid></Node>");
        call.backups[1].file = folder.write("good", fi_test::document("1", {{"A##x", "A##2"}}));
        fi_rotate::SWishes wishes;
        wishes.account = true;
        std::string log;
        wishes.trace = [&log](int level, const std::string& line) {
            log += syslog(1, level == 3 ? '3' : '4', 7) + line + '\n';
        };
        expected = told(runCall(call, wishes));
        CLogReader reader;
        std::istringstream stream(log);
        for (std::string line; std::getline(stream, line);) {
            reader.readLine(line);
        }
        return reader.finish();
    }
};

TEST_F(FiRotateLogForgery, LineWithinATextChangesNothing) {
    for (const char* const text :
         {"CFiResourceParser::parse : Resource specification [evil]", "fi_process_backups : parsed [evil",
          "fi_process_backups : resource_config_string [evil", "[x CFiResourceManager::print : [",
          "Nov 22 01:30:00 host backupd[9]: CFiResourceParser::parse : Resource specification [evil]"}) {
        SCOPED_TRACE(text);
        std::string expected;
        const auto calls = callsWith(text, expected);
        ASSERT_THAT(calls, SizeIs(1));
        EXPECT_EQ(told(calls[0].outcome), expected);
        EXPECT_THAT(calls[0].missing, IsEmpty());
    }
}

TEST_F(FiRotateLogForgery, LineWithoutThePrefixBelongsToNoCall) {
    for (const char* const text : {"&#10;fi_process_backups : Invalid/empty parameter&#10;",
                                   "&#10;CFiResourceParser::parse : Resource specification "
                                   "[evil]&#10;fi_process_backups : Resources not "
                                   "availabe, some/all are part of Skip rotation fiids&#10;",
                                   "&#10;evil: CFiResourceParser::parse : Resource specification [evil]&#10;",
                                   "&#10;4 CFiResourceParser::parse : Resource specification [evil]&#10;"}) {
        SCOPED_TRACE(text);
        std::string expected;
        const auto calls = callsWith(text, expected);
        ASSERT_THAT(calls, SizeIs(1));
        // The rest of the identifier is lost with its prefix.
        EXPECT_THAT(calls[0].missing, SizeIs(1));
        EXPECT_TRUE(calls[0].outcome.selection.has_value());
        for (const auto& backup : calls[0].outcome.backups) {
            EXPECT_FALSE(backup.reason.has_value());
        }
    }
}

TEST_F(FiRotateLogForgery, NameWithALineBreakGivesNoReason) {
    fi_rotate::SCall call;
    call.configuration = "A##x;1";
    call.backups.resize(2);
    call.backups[0].file = folder.write("a\nb", fi_test::document("2", {{"A##x", "A##1"}}));
    call.backups[1].file = folder.write("c", fi_test::document("1", {{"A##x", "A##1"}}));
    std::vector<std::string> lines;
    traced(call, lines);
    for (std::string& line : lines) {
        line = "app: " + line.substr(2, line.find("\\n") - 2);
    }
    const auto calls = callsOf(lines);
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_THAT(calls[0].missing, testing::Contains("the rest of names with line breaks"));
    for (const auto& backup : calls[0].outcome.backups) {
        EXPECT_FALSE(backup.reason.has_value());
    }
}

}  // namespace
