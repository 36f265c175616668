#include "resource/CFiTargetIndex.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "resource/CFiUdid.h"

namespace {

using Set = std::vector<SFiResourceList>;

CFiUdid named(const std::string& enclosure, const std::string& device) {
    CFiUdid udid;
    udid.enclosure = enclosure;
    udid.device = device;
    return udid;
}

// Finds a target by a walk over the set, with which the index is compared.
const SFiResource* scan(const Set& set, const CFiUdid& key, const CFiUdid& value) {
    for (const SFiResourceList& list : set) {
        if (list.device != key.device || list.enclosure != key.enclosure) {
            continue;
        }
        for (const SFiResource& resource : list.resources) {
            if (resource.device == value.device && resource.enclosure == value.enclosure) {
                return &resource;
            }
        }
    }
    return nullptr;
}

TEST(CFiTargetIndex, FindsNothingInAnEmptySet) {
    Set set;
    const CFiTargetIndex index(set);
    EXPECT_EQ(index.find(named("e", "d"), named("e", "d")).resource, nullptr);
}

TEST(CFiTargetIndex, FindsATargetWithItsList) {
    Set set{{"lun1", "encA", 0, {{"snap1", "encA"}}}, {"lun2", "encA", 0, {{"snap2", "encA"}}}};
    const CFiTargetIndex index(set);
    const STargetInList target = index.find(named("encA", "lun2"), named("encA", "snap2"));
    EXPECT_EQ(target.list, &set[1]);
    EXPECT_EQ(target.resource, &set[1].resources[0]);
    EXPECT_EQ(index.find(named("encA", "lun1"), named("encA", "snap2")).list, nullptr);
}

TEST(CFiTargetIndex, FindsTheFirstOfTargetsNamedAlike) {
    Set set{{"lun1", "encA", 0, {{"snap1", "encA"}, {"snap1", "encA"}}},
            {"lun1", "encA", 0, {{"snap1", "encA"}}}};
    const CFiTargetIndex index(set);
    EXPECT_EQ(index.find(named("encA", "lun1"), named("encA", "snap1")).resource, &set[0].resources[0]);
}

TEST(CFiTargetIndex, PassesOverListsThatLackTheTarget) {
    Set set{{"lun1", "encA", 0, {}},
            {"lun1", "encA", 0, {{"snap1", "encA"}}},
            {"lun1", "encA", 0, {{"snap2", "encA"}}}};
    const CFiTargetIndex index(set);
    EXPECT_EQ(index.find(named("encA", "lun1"), named("encA", "snap2")).list, &set[2]);
}

TEST(CFiTargetIndex, TellsDeviceAndEnclosureApart) {
    Set set{{"a", "b", 0, {{"c", "d"}}}, {"b", "a", 0, {{"d", "c"}}}};
    const CFiTargetIndex index(set);
    EXPECT_EQ(index.find(named("b", "a"), named("d", "c")).list, &set[0]);
    EXPECT_EQ(index.find(named("a", "b"), named("c", "d")).list, &set[1]);
    EXPECT_EQ(index.find(named("b", "a"), named("c", "d")).list, nullptr);
}

// There are few names, so that lists and targets of the same name, and targets of the wrong list, are common.
TEST(CFiTargetIndex, FindsWhatAWalkOverTheSetFinds) {
    std::mt19937 random(20261001);
    const auto name = [&random](const std::string& stem, unsigned count) {
        return stem + std::to_string(random() % count);
    };
    int found = 0;
    for (int round = 0; round < 200; ++round) {
        Set set(random() % 8);
        for (SFiResourceList& list : set) {
            list.device = name("lun", 3);
            list.enclosure = name("enc", 2);
            for (auto i = random() % 10; i > 0; --i) {
                list.resources.push_back({name("snap", 8), name("enc", 2)});
            }
        }
        const CFiTargetIndex index(set);
        for (int i = 0; i < 100; ++i) {
            const CFiUdid key = named(name("enc", 2), name("lun", 3));
            const CFiUdid value = named(name("enc", 2), name("snap", 8));
            const SFiResource* const expected = scan(set, key, value);
            EXPECT_EQ(index.find(key, value).resource, expected);
            found += expected != nullptr ? 1 : 0;
        }
    }
    EXPECT_GT(found, 1000);
}

}  // namespace
