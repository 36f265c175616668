#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Decision.h"

// No call depends on an earlier one: only its arguments and the files that they name decide what it does.
namespace fi_test {
namespace {

struct SScenario {
    std::string configuration;
    std::vector<SBackup> backups;
};

class CRepeat : public CRotationTest {
protected:
    SBackup file(const std::string& name, const std::string& content, std::int32_t flagWord = 0) const {
        return {write(name, content), flagWord};
    }

    SBackup holder(const std::string& name, const std::string& timeStamp, const std::string& further,
                   std::int32_t flagWord = 0) const {
        return given(name, backup(timeStamp, {{"encA##lun1", further}}), flagWord);
    }

    std::vector<SScenario> scenarios() const {
        const SBackup a = holder("a.xml", "1", "encA##s1");
        const SBackup tied = holder("tied.xml", "1", "encA##s1");
        const SBackup other = holder("other.xml", "2", "encA##s2", 4);
        const SBackup invalid = holder("invalid.xml", "0", "encZ##gone");
        const SBackup malformed =
            file("malformed.xml", "<Node><objid>" + udid("encA##lun1") + "</objid></Node>", 1);
        const SBackup unfinished = file("unfinished.xml", "<Node><Node><objid>x</objid>");
        const SBackup empty = file("empty.xml", "", 9);
        const SBackup missing{path("missing.xml"), 9};
        return {
            {"encA##lun1;s1", {}},
            {"encA##lun1", {}},
            {"lun1", {}},
            {"encA##lun1;s1", {a}},
            {"encA##lun1;s1;s2", {a, other}},
            {"encA##lun1;s1;s2", {other, a, tied, a}},
            {"encA##lun1;s2", {other, a}},
            {"encA##lun1;s1", {unfinished, empty, invalid, a}},
            {"encA##lun1;s1", {a, missing, other}},
            {"encA##lun1;s1", {a, malformed, other}},
        };
    }
};

TEST_F(CRepeat, RepeatedCallHasTheSameOutcomeAndTrace) {
    int number = 0;
    for (const auto& [configuration, backups] : scenarios()) {
        SCOPED_TRACE("scenario " + std::to_string(number++));
        EXPECT_EQ(call(configuration, backups), call(configuration, backups));
    }
}

TEST_F(CRepeat, CallsInBetweenChangeNothing) {
    std::vector<SObserved> first;
    for (const auto& [configuration, backups] : scenarios()) {
        first.push_back(call(configuration, backups));
    }
    const std::vector<SScenario> again = scenarios();
    for (std::size_t i = again.size(); i-- > 0;) {
        SCOPED_TRACE("scenario " + std::to_string(i));
        EXPECT_EQ(first[i], call(again[i].configuration, again[i].backups));
    }
}

// Configurations of a few targets, and backups that hold some of them, known targets and unknown ones.
class CRandomScenario {
public:
    explicit CRandomScenario(unsigned seed) : random(seed) {}

    std::string configuration() {
        std::string text;
        const int lists = below(4);
        for (int list = 0; list < lists; ++list) {
            text += "&enc##lun" + std::to_string(list);
            const int targets = 1 + below(4);
            for (int target = 0; target < targets; ++target) {
                text += ";s" + std::to_string(target);
            }
        }
        return text;
    }

    SNode document() {
        std::vector<std::pair<std::string, std::string>> pairs;
        const int count = below(3);
        for (int i = 0; i < count; ++i) {
            pairs.emplace_back("enc##lun" + std::to_string(below(4)), "enc##s" + std::to_string(below(4)));
        }
        return backup(std::to_string(below(6)), pairs);
    }

    std::int32_t flagWord() { return below(8); }
    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

private:
    std::mt19937 random;
};

TEST_F(CRepeat, RepeatedRandomCallsHaveTheSameOutcomeAndKeepTheRules) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        CRandomScenario random(seed);
        const std::string configuration = random.configuration();
        std::vector<SBackup> backups;
        const int count = 1 + random.below(6);
        for (int i = 0; i < count; ++i) {
            backups.push_back(file(std::to_string(i), toXml(random.document()), random.flagWord()));
        }

        const SObserved observed = call(configuration, backups);
        EXPECT_EQ(observed, call(configuration, backups));

        ASSERT_TRUE(observed.status == 0 || observed.status == 3);
        EXPECT_EQ(observed.selection.has_value(), observed.status == 0);
        for (std::size_t i = 0; i < backups.size(); ++i) {
            const std::int32_t before = backups[i].flagWord;
            const std::int32_t after = observed.flags[i];
            if (observed.status == 3) {
                EXPECT_EQ(after, before);
            } else {
                const bool isExcluded = (before & 4) != 0;
                EXPECT_TRUE(after == 0 || after == 1 || (after == 2 && !isExcluded)) << after;
            }
        }
    }
}

}  // namespace
}  // namespace fi_test
