#include "resource/CFiResourceParser.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

// One list as "enclosure/device state: enclosure/device state, ...", lists joined by " | ".
std::string dump(const CFiResourceParser& parser) {
    std::string text;
    for (const SFiResourceList& list : parser.configurations) {
        text += (text.empty() ? "" : " | ") + list.enclosure + '/' + list.device + ' ' +
                std::to_string(list.state) + ':';
        for (const SFiResource& resource : list.resources) {
            text += ' ' + resource.enclosure + '/' + resource.device + ' ' + std::to_string(resource.state);
        }
    }
    return text;
}

struct SRow {
    const char* specification;
    std::int32_t status;
    const char* configurations;
};

template <std::size_t count>
void expectConfigurations(const SRow (&rows)[count]) {
    for (const SRow& row : rows) {
        CFiResourceParser parser;
        EXPECT_EQ(parser.parse(row.specification), row.status) << row.specification;
        EXPECT_EQ(dump(parser), row.configurations) << row.specification;
    }
}

// The trace of a parse, its status and what it appended.
struct SParsed {
    std::int32_t status;
    std::string configurations;
    Trace trace;
};

SParsed parsed(const char* specification) {
    CFiResourceParser parser;
    CTraceRecorder recorder;
    const std::int32_t status = parser.parse(specification);
    return {status, dump(parser), recorder.take()};
}

TEST(CFiResourceParser, ParsesTheWorkedExampleWithItsTrace) {
    const SParsed result = parsed("encA##dev1;dev2;encB##dev3&encC##dev4;;##dev5");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.configurations, "encA/dev1 0: encA/dev2 0 encB/dev3 0 | encC/dev4 0: /dev5 0");
    EXPECT_EQ(result.trace,
              progress({"CFiResourceParser::parse : Resource specification [encA##dev1;dev2;encB##dev3]",
                        "CFiResourceParser::parse : [encA][dev1]", "CFiResourceParser::parse : [encA][dev2]",
                        "CFiResourceParser::parse : [encB][dev3]", "CFiResourceParser::parse : [encC][dev4]",
                        "CFiResourceParser::parse : [][dev5]"}));
}

TEST(CFiResourceParser, CountsARunOfSeparatorsAsOne) {
    expectConfigurations({
        {"a##1&&&b##2", 0, "a/1 0: | b/2 0:"},
        {"a##1\r\nb##2\n\rc##3&\nd##4", 0, "a/1 0: | b/2 0: | c/3 0: | d/4 0:"},
        {"\n&\ra##1\n&\r", 0, "a/1 0:"},
        {"a##1;;;2", 0, "a/1 0: a/2 0"},
        {";;a##1;2;;", 0, "a/1 0: a/2 0"},
    });
}

TEST(CFiResourceParser, ShowsLeadingSeparatorsAndTheFirstConfigurationInItsLine) {
    const SParsed result = parsed("&&encA##dev1&&");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.configurations, "encA/dev1 0:");
    EXPECT_EQ(result.trace, progress({"CFiResourceParser::parse : Resource specification [&&encA##dev1]",
                                      "CFiResourceParser::parse : [encA][dev1]"}));
}

TEST(CFiResourceParser, SplitsATargetAtItsFirstSeparatorOnly) {
    expectConfigurations({
        {"encA##dev1##x", 0, "encA/dev1##x 0:"},
        {"encA##dev1##;b##c##d", 0, "encA/dev1## 0: b/c##d 0"},
        {"a###b", 0, "a/#b 0:"},
        {"a#b##c#d", 0, "a#b/c#d 0:"},
    });
}

TEST(CFiResourceParser, CarriesTheEnclosureOfTheTargetBefore) {
    expectConfigurations({
        {"a##1;2;3", 0, "a/1 0: a/2 0 a/3 0"},
        {"a##1;b##2;3", 0, "a/1 0: b/2 0 b/3 0"},
        {"a##1;##2;dev9", 0, "a/1 0: /2 0 /dev9 0"},
        {"a##1;##2;b##3;4", 0, "a/1 0: /2 0 b/3 0 b/4 0"},
    });
}

TEST(CFiResourceParser, NeverCarriesAnEnclosureIntoTheNextConfiguration) {
    const SParsed result = parsed("encA##dev1;dev2&dev3");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.configurations, "encA/dev1 0: encA/dev2 0");
    EXPECT_EQ(result.trace,
              progress({"CFiResourceParser::parse : Resource specification [encA##dev1;dev2]",
                        "CFiResourceParser::parse : [encA][dev1]", "CFiResourceParser::parse : [encA][dev2]",
                        "CFiResourceParser::parse : [][dev3]"}) +
                  failure("CFiResourceParser::parse : resource configuration \"dev3\" has no enclosure data "
                          "specified."));
}

TEST(CFiResourceParser, DecodesReferencesBeforeItSplits) {
    expectConfigurations({
        {"a##1;2&amp;b##3", 0, "a/1 0: a/2 0 | b/3 0:"},
        {"a##&lt;1&gt;;&quot;2&quot;;it&#39;s", 0, "a/<1> 0: a/\"2\" 0 a/it's 0"},
    });
    const SParsed result = parsed("encA&amp;encB##dev2");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.configurations, "");
    EXPECT_EQ(result.trace, progress({"CFiResourceParser::parse : Resource specification [encA]",
                                      "CFiResourceParser::parse : [][encA]"}) +
                                failure("CFiResourceParser::parse : resource configuration \"encA\" has no "
                                        "enclosure data specified."));
}

TEST(CFiResourceParser, RejectsANullSpecification) {
    const SParsed result = parsed(nullptr);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.configurations, "");
    EXPECT_EQ(result.trace, failure("CFiResourceParser::parse : Resource specification is null."));
}

TEST(CFiResourceParser, FindsNoConfigurationInAnEmptySpecification) {
    const SParsed result = parsed("");
    EXPECT_EQ(result.status, 6);
    EXPECT_EQ(result.configurations, "");
    EXPECT_EQ(result.trace, failure("CFiResourceParser::parse : Invalid resource specification []"));
}

TEST(CFiResourceParser, FindsNoConfigurationInSeparatorsAndShowsThemUnchanged) {
    const SParsed lineEnd = parsed("\r\n");
    EXPECT_EQ(lineEnd.status, 6);
    EXPECT_EQ(lineEnd.trace, failure("CFiResourceParser::parse : Invalid resource specification [\r\n]"));
    const SParsed decoded = parsed("&amp;&\n");
    EXPECT_EQ(decoded.status, 6);
    EXPECT_EQ(decoded.trace, failure("CFiResourceParser::parse : Invalid resource specification [&&\n]"));
}

TEST(CFiResourceParser, RejectsAConfigurationWithoutTargets) {
    const SParsed result = parsed("a##1&;;;&b##2");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.configurations, "a/1 0:");
    EXPECT_EQ(
        result.trace,
        progress({"CFiResourceParser::parse : Resource specification [a##1]",
                  "CFiResourceParser::parse : [a][1]"}) +
            failure("CFiResourceParser::parse : resource configuration \";;;\" has no targets specified."));
}

TEST(CFiResourceParser, RejectsATargetWithoutADeviceAndNamesTheTarget) {
    const SParsed result = parsed("encB##dev;encA##;dev2");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.configurations, "");
    EXPECT_EQ(result.trace,
              progress({"CFiResourceParser::parse : Resource specification [encB##dev;encA##;dev2]",
                        "CFiResourceParser::parse : [encB][dev]", "CFiResourceParser::parse : [encA][]"}) +
                  failure("CFiResourceParser::parse : resource configuration \"encA##\" has no device data "
                          "specified."));
}

TEST(CFiResourceParser, RejectsAFirstTargetWithoutAnEnclosureAndNamesTheTarget) {
    const struct {
        const char* specification;
        const char* message;
    } rows[] = {
        {"dev1;encA##dev2",
         "CFiResourceParser::parse : resource configuration \"dev1\" has no enclosure data "
         "specified."},
        {"##dev1",
         "CFiResourceParser::parse : resource configuration \"##dev1\" has no enclosure data "
         "specified."},
    };
    for (const auto& row : rows) {
        const SParsed result = parsed(row.specification);
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.configurations, "");
        EXPECT_EQ(result.trace.size(), 3U) << row.specification;
        EXPECT_EQ(result.trace.back(), (STraceLine{3, row.message}));
    }
}

TEST(CFiResourceParser, MissesTheDeviceBeforeTheEnclosure) {
    const SParsed result = parsed("##");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(
        result.trace,
        progress(
            {"CFiResourceParser::parse : Resource specification [##]", "CFiResourceParser::parse : [][]"}) +
            failure(
                "CFiResourceParser::parse : resource configuration \"##\" has no device data specified."));
}

TEST(CFiResourceParser, KeepsTheConfigurationsBeforeARejectedOne) {
    expectConfigurations({
        {"a##1;2&b##3;4&c;d&e##5", 3, "a/1 0: a/2 0 | b/3 0: b/4 0"},
        {"a##1&b##2;3;##&c##4", 3, "a/1 0:"},
    });
}

TEST(CFiResourceParser, AppendsTheResultOfASecondParse) {
    CFiResourceParser parser;
    EXPECT_EQ(parser.parse("a##1;2"), 0);
    EXPECT_EQ(parser.parse("b##3"), 0);
    EXPECT_EQ(parser.parse(""), 6);
    EXPECT_EQ(dump(parser), "a/1 0: a/2 0 | b/3 0:");
}

TEST(CFiResourceParser, LeavesTheCallersTextAlone) {
    const std::string specification = "a##1;2&b##3";
    CFiResourceParser parser;
    parser.parse(specification.c_str());
    EXPECT_EQ(specification, "a##1;2&b##3");
}

TEST(CFiResourceParser, TracesPercentSignsAsTheyStand) {
    const SParsed result = parsed("%s##%n;100%");
    EXPECT_EQ(result.trace,
              progress({"CFiResourceParser::parse : Resource specification [%s##%n;100%]",
                        "CFiResourceParser::parse : [%s][%n]", "CFiResourceParser::parse : [%s][100%]"}));
}

TEST(CFiResourceParser, HasNoLimitOnLengthAndNumber) {
    const std::string name(100000, 'x');
    std::string specification = name + "##" + name;
    for (int i = 0; i < 10000; ++i) {
        specification += "&e##" + std::to_string(i);
    }
    CFiResourceParser parser;
    EXPECT_EQ(parser.parse(specification.c_str()), 0);
    ASSERT_EQ(parser.configurations.size(), 10001U);
    EXPECT_EQ(parser.configurations.front().device, name);
    EXPECT_EQ(parser.configurations.back().device, "9999");
}

}  // namespace
}  // namespace fi_test
