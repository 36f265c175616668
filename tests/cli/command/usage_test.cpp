#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/base/file.h"
#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::runFiRotate;
using testing::HasSubstr;
using testing::StartsWith;
using testing::UnorderedElementsAre;

TEST(FiRotateUsage, WrongUsageExitsWith2AndNamesTheOffendingText) {
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {{}, "give a subcommand"},
        {{"rotate"}, "there is no subcommand \"rotate\"\nRun \"fi-rotate --help\" for help."},
        {{"help", "selct"}, "there is no subcommand \"selct\"; did you mean select?\n"},
        {{"selct", "--config", "a##b"}, "there is no subcommand \"selct\"; did you mean select?\n"},
        {{"--verson"}, "there is no option \"--verson\"; did you mean --version?\n"},
        {{"select", "--exlude=x"},
         "there is no option \"--exlude\"; did you mean --exclude?\nRun \"fi-rotate select --help\" for "
         "help."},
        {{"select"}, "--config"},
        {{"select", "--config", "a##b", "--config-file", "c"}, "give exactly one of --config, --config-file"},
        {{"--config-file", "c", "select"},
         "fi-rotate: give --config-file after the subcommand: fi-rotate select --config-file\n"},
        {{"--config-file=c", "check", "a.xml"},
         "fi-rotate: give --config-file after the subcommand: fi-rotate check --config-file\n"},
        {{"--rounds", "3"}, "fi-rotate: give --rounds after the subcommand: fi-rotate simulate --rounds\n"},
        {{"x.xml", "select", "--config", "a##b"}, "fi-rotate: there is no subcommand \"x.xml\"\n"},
        {{"select", "--config", "a##b", "--only"},
         "fi-rotate: --only needs a value, one of kept, invalid, rotated, not loaded\n"},
        {{"select", "--config", "a##b", "--sort"},
         "fi-rotate: --sort needs a value, one of argument, time, release\n"},
        {{"select", "--config"}, "--config needs a value: --config TEXT\n"},
        {{"select", "--config", "a##b", "--config", "c##d"}, "--config is given more than once\n"},
        {{"select", "--config", "a##b", "--keep-at-least", "x"},
         "--keep-at-least: \"x\" is not a whole number from 0 to 2147483647\n"},
        {{"select", "--config", "a##b", "--keep-at-least", "-1"},
         "--keep-at-least: \"-1\" is not a whole number from 0 to 2147483647\n"},
        {{"select", "--config", "a##b", "--sort", "tme"},
         "--sort: \"tme\" is not one of argument, time, release\n"},
        {{"explain", "--call", "x"}, "--call: \"x\" is not a whole number from 1 to 1000000000\n"},
        {{"explain", "--call", "0"}, "--call: \"0\" is not a whole number from 1 to 1000000000\n"},
        // One more than the largest number of 64 bits, negated: as an unsigned number it would be 1.
        {{"explain", "--call", "-18446744073709551615"}, "\"-18446744073709551615\" is not a whole number"},
        {{"explain", "--call", "18446744073709551617"}, "\"18446744073709551617\" is not a whole number"},
        {{"select", "--config", "a##b", "--keep-at-least", "-18446744073709551615"},
         "\"-18446744073709551615\" is not a whole number from 0 to 2147483647\n"},
        {{"select", "--config", "a##b", "--keep-at-least", "+1"}, "\"+1\" is not a whole number"},
        {{"select", "--config", "a##b", "--keep-at-least", "0x10"}, "\"0x10\" is not a whole number"},
        {{"select", "--config", "a##b", "--keep-at-least", " 1"}, "\" 1\" is not a whole number"},
        {{"check", "--sort", "time"}, "there is no option \"--sort\"\n"},
        {{"simulate", "--config", "a##b;c", "--rounds", "2", "--every", "1d", "--start", "2026-10-01",
          "a.xml"},
         "fi-rotate: unexpected argument: \"a.xml\"; give documents with --from, and each that is excluded "
         "with an --exclude of its own\n"},
        {{"simulate", "--config", "a##b;c", "--rounds", "2", "--every", "1d", "--start", "2026-10-01",
          "--from", "a.xml", "--exclude", "a.xml", "b.xml", "c.xml"},
         "fi-rotate: unexpected arguments: \"b.xml\" \"c.xml\"; give documents with --from"},
        {{"simulate", "--config", "a##b;c"}, "fi-rotate: --rounds, --every, --start are required\n"},
        {{"simulate", "--config", "a##b;c", "--every", "1d", "--start", "2026-10-01"},
         "fi-rotate: --rounds is required\n"},
        {{"select", "--config", "a##b", "--frobnicate"}, "--frobnicate"},
        {{"select", "--config-file", "no/such/file"}, "cannot read \"no/such/file\": No such file"},
        {{"select", "--config-file", ""}, "cannot read \"\": No such file"},
        {{"select", "--config-file", "/"}, "cannot read \"/\": Is a directory"},
        {{"select", "--config", "a##b", "--exclude", "x", "y"},
         "--exclude: \"x\" is not among the documents given; write its name exactly as there, and repeat "
         "--exclude for each file\n"},
        {{"select", "--config", "a##b", "--flags", "x=4", "y"},
         "--flags: \"x\" is not among the documents given; write its name exactly as there, and repeat "
         "--flags for each file\n"},
        {{"select", "--config", "a##b", "--flags", "y", "y"}, "\"y\" is not FILE=N"},
        {{"select", "--config", "a##b", "--flags", "y=", "y"}, "\"y=\" is not FILE=N"},
        {{"select", "--config", "a##b", "--flags", "y=4x", "y"}, "\"y=4x\" is not FILE=N"},
        {{"select", "--config", "a##b", "--flags", "y=2147483648", "y"}, "\"y=2147483648\" is not"},
        {{"select", "--config", "a##b", "--flags", "y=-18446744073709551615", "y"},
         "\"y=-18446744073709551615\" is not FILE=N with N a whole number of 32 bits"},
        {{"select", "--config", "a##b", "--flags", "y=1", "--flags", "y=2", "y"}, "\"y\" has a flag"},
        {{"select", "--request", "no/such/file"}, "cannot read \"no/such/file\": No such file"},
        {{"select", "--request", "/dev/null"}, "\"/dev/null\" is not a request: it is not JSON"},
        {{"select", "--request", "a", "--config", "a##b"}, "give exactly one of --config, --config-file"},
        {{"select", "--request", "a", "b.xml"}, "FIID cannot be used together with --request"},
        {{"select", "--request", "a", "--flags", "b=4"}, "--flags cannot be used together with --request"},
        {{"select", "--request", "a", "--exclude", "b"}, "--exclude cannot be used together with --request"},
        {{"select", "--config", "a##b", "--save-request", "/no/such/folder/r"},
         "cannot write \"/no/such/folder/r\": No such file"},
        {{"select", "--config", "a##b", "--only", "kept,lost"},
         "\"lost\" is not one of kept, invalid, rotated, not loaded"},
        {{"select", "--config", "a##b", "--svg", "/no/such/folder/p"},
         "cannot write \"/no/such/folder/p\": No such file"},
        {{"select", "--config", "a##b", "--trace-file", "/no/such/folder/t"},
         "cannot write \"/no/such/folder/t\": No such file"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const auto result = runFiRotate(row.arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.error, StartsWith("fi-rotate: "));
        EXPECT_THAT(result.error, HasSubstr(row.message));
    }
}

TEST(FiRotateUsage, RefusesTheNameOfAFileAsAConfiguration) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("resource.conf", "a##b;c");
    const auto result = runFiRotate({"select", "--config", file});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_THAT(result.error,
                HasSubstr("--config: \"" + file + "\" is a file; give it with --config-file\n"));
}

TEST(FiRotateUsage, TakesAConfigurationThoughAFileHasItsName) {
    const fi_test::CTemporaryFolder folder;
    EXPECT_EQ(runFiRotate({"select", "--config", folder.write("enc##lun;s1", "")}).exitStatus, 0);
}

TEST(FiRotateUsage, RefusesAConfigurationFileThatTheLibraryWouldReadInPart) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("c", std::string("a##b;c\0&d##e;f", 14));
    const auto result = runFiRotate({"select", "--config-file", file});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_THAT(result.error, HasSubstr("\"" + file + "\" contains a NUL byte"));
}

// That it names every option is for the comparison with the manual page.
TEST(FiRotateUsage, HelpAndVersionGoToStandardOutput) {
    for (const std::string usage : {"select [OPTIONS] [FIID...]", "check [OPTIONS] [FIID...]",
                                    "explain [OPTIONS] [LOG...]", "simulate [OPTIONS]"}) {
        SCOPED_TRACE(usage);
        const auto help = runFiRotate({usage.substr(0, usage.find(' ')), "--help"});
        EXPECT_EQ(help.exitStatus, 0);
        EXPECT_EQ(help.error, "");
        for (const std::string& text :
             {"Usage: fi-rotate " + usage + "\n", std::string("Example:\n  fi-rotate "), std::string("\\xNN"),
              std::string("Exit status:\n")}) {
            EXPECT_THAT(help.output, HasSubstr(text));
        }
    }
    const auto version = runFiRotate({"--version"});
    EXPECT_EQ(version.exitStatus, 0);
    EXPECT_EQ(version.output, "1.0.0\n");
}

TEST(FiRotateUsage, HelpAsASubcommandIsTheHelpOption) {
    for (const std::vector<std::string>& subcommand :
         {std::vector<std::string>(), {"select"}, {"check"}, {"explain"}, {"simulate"}}) {
        std::vector<std::string> asSubcommand{"help"};
        asSubcommand.insert(asSubcommand.end(), subcommand.begin(), subcommand.end());
        std::vector<std::string> asOption = subcommand;
        asOption.emplace_back("--help");
        const auto help = runFiRotate(asSubcommand);
        EXPECT_EQ(help.exitStatus, 0);
        EXPECT_EQ(help.error, "");
        EXPECT_EQ(help.output, runFiRotate(asOption).output);
    }
}

TEST(FiRotateUsage, HelpShowsWhichOptionTakesSeveralValues) {
    const auto help = runFiRotate({"simulate", "--help"});
    EXPECT_THAT(help.output, HasSubstr("\n  --from FILE... "));
    EXPECT_THAT(help.output, HasSubstr("\n  --exclude FILE "));
}

TEST(FiRotateUsage, FlagWordsAndExclusionsReachTheLibrary) {
    const fi_test::CTemporaryFolder folder;
    const std::string a = folder.write("a=1.xml", "<Node/>");
    const std::string b = folder.write("b.xml", "<Node/>");
    const auto result = runFiRotate({"select", "--config", "encA##lun1;snap1", "--trace", "--flags",
                                     a + "=-2147483648", "--exclude", a, "--exclude", b, a, b, a});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.error, HasSubstr("3 fi_process_backups :  Fiid [" + a +
                                        "] exclude rotation flag [-2147483644] \n"
                                        "3 fi_process_backups :  Fiid [" +
                                        b +
                                        "] exclude rotation flag [4] \n"
                                        "3 fi_process_backups :  Fiid [" +
                                        a + "] exclude rotation flag [-2147483644] \n"));
}

TEST(FiRotateUsage, EveryOutputFileIsReplacedAsAWhole) {
    const std::vector<std::string> select{"select", "--config", "encA##lun1;snap1"};
    const std::vector<std::string> simulate{"simulate", "--config", "encA##lun1;snap1", "--rounds",  "2",
                                            "--every",  "24h",      "--start",          "2026-10-01"};
    const struct {
        std::vector<std::string> arguments;
        const char* option;
    } rows[] = {{select, "--save-request"},
                {select, "--trace-file"},
                {select, "--svg"},
                {simulate, "--csv"},
                {simulate, "--svg"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.front() + " " + row.option);
        const fi_test::CTemporaryFolder folder;
        const std::string file = folder.write("file", "old");
        const std::string same = folder.path("same");
        std::filesystem::create_hard_link(file, same);
        auto arguments = row.arguments;
        arguments.insert(arguments.end(), {row.option, file, "--force"});
        EXPECT_EQ(runFiRotate(arguments).exitStatus, 0);
        // Whoever has the old file open keeps it.
        EXPECT_EQ(fi_rotate::readFile(same), "old");
        EXPECT_NE(fi_rotate::readFile(file), "old");
        EXPECT_THAT(folder.entries(), UnorderedElementsAre("file", "same"));
    }
}

TEST(FiRotateUsage, HelpFitsAnyTerminalAndNamesNoGroups) {
    for (const std::string subcommand : {"", "select", "check", "explain", "simulate"}) {
        SCOPED_TRACE(subcommand);
        const auto help = subcommand.empty() ? runFiRotate({"--help"}) : runFiRotate({subcommand, "--help"});
        EXPECT_THAT(help.output, testing::Not(HasSubstr("Option Group")));
        std::istringstream lines(help.output);
        for (std::string line; std::getline(lines, line);) {
            const bool isCommand = line.find("  fi-rotate ") == 0;
            EXPECT_TRUE(isCommand || line.size() <= 80) << line;
        }
    }
}

TEST(FiRotateUsage, ExitsWith1WhenHelpCannotBeWritten) {
    for (const std::string option : {"--help", "--version"}) {
        const auto result = fi_test::runFiRotateTo("/dev/full", {option});
        EXPECT_EQ(result.exitStatus, 1) << option;
        EXPECT_EQ(result.error, "fi-rotate: cannot write standard output: No space left on device\n");
    }
}

TEST(FiRotateUsage, ExitsWith1WhenTheOutcomeCannotBeWritten) {
    const auto result = runFiRotate({"select", "--config", "encA##lun1;snap1", "--trace-file", "/dev/full"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.error, "fi-rotate: cannot write /dev/full: No space left on device\n");
}

}  // namespace
