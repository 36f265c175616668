// Every hazard is found where it is, and not in inputs that are nearly the same.

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/check/call_check.h"
#include "cli/check/hazard.h"
#include "tests/cli/check/Rows.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::CFindings;
using fi_rotate::EHazard;
using fi_rotate::SFinding;
using fi_test::CTemporaryFolder;
using fi_test::SCheckedCall;
using fi_test::SCheckRow;

std::vector<SCheckRow> allRows() {
    std::vector<SCheckRow> rows;
    for (auto* const some : {fi_test::configurationRows, fi_test::documentRows, fi_test::deviceRows,
                             fi_test::callRows, fi_test::consequenceRows}) {
        const std::vector<SCheckRow> more = some();
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

std::string without(std::string text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) {
        text.erase(at, part.size());
    }
    return text;
}

struct SChecked {
    std::vector<std::string> lines;
    std::vector<std::string> hazards;
};

SChecked check(const SCheckedCall& call) {
    const CTemporaryFolder folder;
    fi_rotate::SInputs inputs{call.configuration, "config", {}};
    for (const fi_test::SCheckedDocument& document : call.documents) {
        const bool isAbsolute = document.name[0] == '/';
        inputs.files.push_back(isAbsolute ? document.name : folder.path(document.name));
        if (document.content.has_value()) {
            folder.write(document.name, *document.content);
        }
    }
    SChecked checked;
    for (const CFindings& findings : checkCall(inputs)) {
        for (const SFinding& finding : findings.inOrder()) {
            const fi_rotate::SHazardKind& kind = kindOf(finding.hazard);
            checked.hazards.emplace_back(kind.name);
            const std::string cause =
                finding.cause.has_value()
                    ? fmt::format(" <- {} of {}", kindOf(finding.cause->hazard).name, finding.cause->input)
                    : "";
            checked.lines.push_back(without(
                fmt::format("{}:{}:{}: {}: {} [{}]{}", findings.input(), finding.spot.place.line,
                            finding.spot.place.column, nameOf(kind.severity), finding.text, kind.name, cause),
                folder.path("")));
        }
    }
    return checked;
}

TEST(FiRotateCheckRows, EveryHazardIsFoundInItsPlace) {
    for (const SCheckRow& row : allRows()) {
        SCOPED_TRACE(std::string(kindOf(row.hazard).name) + ": " + row.description);
        const SChecked checked = check(row.call);
        EXPECT_EQ(checked.lines, row.findings);
        EXPECT_THAT(checked.hazards, testing::Contains(kindOf(row.hazard).name));
    }
}

TEST(FiRotateCheckRows, NoHazardIsFoundInInputsThatAreNearlyTheSame) {
    for (const SCheckRow& row : allRows()) {
        SCOPED_TRACE(std::string(kindOf(row.hazard).name) + ": " + row.description);
        const SChecked checked = check(row.neighbour);
        EXPECT_EQ(checked.hazards, row.neighbourHazards) << testing::PrintToString(checked.lines);
        EXPECT_THAT(checked.hazards, testing::Not(testing::Contains(kindOf(row.hazard).name)));
    }
}

TEST(FiRotateCheckRows, EveryHazardHasOne) {
    std::array<int, fi_rotate::kHazardCount> counts{};
    for (const SCheckRow& row : allRows()) {
        ++counts.at(static_cast<std::size_t>(row.hazard));
    }
    for (const fi_rotate::SHazardKind& kind : fi_rotate::hazardKinds()) {
        EXPECT_GT(counts.at(static_cast<std::size_t>(kind.hazard)), 0) << kind.name;
    }
}

}  // namespace
