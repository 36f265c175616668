#include "tests/model/PairGenerator.h"

#include <string>

namespace fi_model {
namespace {

std::string identifierOf(const SPlannedTarget& target, const std::string& prefix, CRandom& random) {
    const std::string id = prefix + "v" + std::to_string(random.below(3)) + "##m##";
    const bool isPlainDevice = target.device.find("##") == std::string::npos;
    const bool isDeviceId = prefix.find("UDID##") != std::string::npos;
    if (target.enclosure.empty() && isPlainDevice && isDeviceId && random.percent(60)) {
        return id + target.device;
    }
    return id + target.enclosure + "##" + target.device;
}

const std::vector<std::string>& keyPrefixes() {
    static const std::vector<std::string> kPrefixes = {"UDID##", "UDID##", "UDID##",    "UDID##",
                                                       "UDID##", "UDID##", "UDID##",    "UDID##",
                                                       "UDID##", "UDID##", "xyzUDID##", "UEID##x##UDID##"};
    return kPrefixes;
}

const std::vector<std::string>& valuePrefixes() {
    static const std::vector<std::string> kPrefixes = {"UDID##", "UDID##",   "UDID##", "UEID##",
                                                       "UEID##", "##UEID##", "zUDID##"};
    return kPrefixes;
}

std::string malformedKey(CRandom& random) {
    static const std::vector<std::string> kKeys = {"UDID##",     "UDID##a",         "UDID###b",
                                                   "UDID##a##b", "UDID##a##b##",    "xUDID##a##b##",
                                                   "UDID######", "UEID##a##UDID##b"};
    return random.pick(kKeys);
}

std::string malformedValue(CRandom& random) {
    static const std::vector<std::string> kValues = {
        "",        "encA##dev1", "udid##a##b##c##d", "UEID##a",      "UEID##a##b",
        "UDID##a", "UDID##a##b", "UDID##a##b##",     "UEID##a##b##", "UEID#a##b##c"};
    return random.pick(kValues);
}

// Well-formed identifiers that name no target, or a wrong one.
std::string otherIdentifier(CRandom& random) {
    static const std::vector<std::string> kIdentifiers = {
        "UDID##v##m##encA##none",  "UDID##v##m##encZ##dev1", "UDID##v##m##ENCA##dev1",
        "UDID##v##m##dev1",        "UEID##v##m##encA",       "UDID####m##encA##dev1",
        "UDID##v##m##encA##",      "UDID##v##m####dev1",     "UDID##v##m##encA##dev1##x",
        "UDID##v##m##encA## dev1", "UDID##v####encA##dev1",  "UEID##v##m##encS##snap1"};
    return random.pick(kIdentifiers);
}

}  // namespace

std::size_t CPairGenerator::furtherOf(std::size_t configuration) {
    const std::size_t size = plan[configuration].further.size();
    std::size_t place = random.below(size);
    // Some backups should hold the same target, but not most of them.
    for (std::size_t tries = 0; tries < 4 && held.count({configuration, place}) > 0; ++tries) {
        place = random.below(size);
    }
    held.insert({configuration, place});
    return place;
}

SPlannedPair CPairGenerator::pairIn(const SPlannedConfiguration& configuration, std::size_t place) {
    return {identifierOf(configuration.first, random.pick(keyPrefixes()), random),
            identifierOf(configuration.further[place], random.pick(valuePrefixes()), random)};
}

SPlannedPair CPairGenerator::flawed(const SPlannedPair& good) {
    switch (random.below(8)) {
        case 0:
            return {malformedKey(random), good.altobjid};
        case 1:
            return {good.objid, malformedValue(random)};
        case 2:
            return {otherIdentifier(random), good.altobjid};
        case 3:
            return {good.objid, good.objid};
        case 4: {
            const SPlannedConfiguration& other = random.pick(plan);
            return {good.objid, identifierOf(other.first, "UDID##", random)};
        }
        case 5:
            return {"plain device", good.altobjid};
        default:
            return {good.objid, otherIdentifier(random)};
    }
}

SPlannedPair CPairGenerator::holding(std::size_t configuration) {
    return pairIn(plan[configuration], 0);
}

std::vector<SPlannedPair> CPairGenerator::next() {
    std::vector<SPlannedPair> pairs;
    std::size_t count = random.percent(93) ? 1 : 0;
    count += random.percent(40) ? random.between(1, 3) : 0;
    for (; count > 0; --count) {
        const std::size_t configuration = random.below(plan.size());
        if (plan[configuration].further.empty()) {
            continue;
        }
        const SPlannedPair good = pairIn(plan[configuration], furtherOf(configuration));
        pairs.push_back(random.percent(7) ? flawed(good) : good);
        if (random.percent(3)) {
            pairs.push_back({good.objid, otherIdentifier(random)});
            random.shuffle(pairs);
        }
    }
    return pairs;
}

}  // namespace fi_model
