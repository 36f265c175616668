#include "tests/model/PairGenerator.h"

#include <string>

namespace fi_model {
namespace {

std::string identifierOf(const PlannedTarget& target, const std::string& prefix, Random& random) {
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

std::string malformedKey(Random& random) {
    static const std::vector<std::string> kKeys = {"UDID##",     "UDID##a",         "UDID###b",
                                                   "UDID##a##b", "UDID##a##b##",    "xUDID##a##b##",
                                                   "UDID######", "UEID##a##UDID##b"};
    return random.pick(kKeys);
}

std::string malformedValue(Random& random) {
    static const std::vector<std::string> kValues = {
        "",        "encA##dev1", "udid##a##b##c##d", "UEID##a",      "UEID##a##b",
        "UDID##a", "UDID##a##b", "UDID##a##b##",     "UEID##a##b##", "UEID#a##b##c"};
    return random.pick(kValues);
}

// Well-formed identifiers that name no target, or only the wrong one.
std::string otherIdentifier(Random& random) {
    static const std::vector<std::string> kIdentifiers = {
        "UDID##v##m##encA##none",  "UDID##v##m##encZ##dev1", "UDID##v##m##ENCA##dev1",
        "UDID##v##m##dev1",        "UEID##v##m##encA",       "UDID####m##encA##dev1",
        "UDID##v##m##encA##",      "UDID##v##m####dev1",     "UDID##v##m##encA##dev1##x",
        "UDID##v##m##encA## dev1", "UDID##v####encA##dev1",  "UEID##v##m##encS##snap1"};
    return random.pick(kIdentifiers);
}

}  // namespace

std::size_t PairGenerator::furtherOf(std::size_t configuration) {
    const std::size_t size = plan_[configuration].further.size();
    std::size_t place = random_.below(size);
    // Backups that hold the same target are wanted, but not as the rule.
    for (std::size_t tries = 0; tries < 4 && held_.count({configuration, place}) > 0; ++tries) {
        place = random_.below(size);
    }
    held_.insert({configuration, place});
    return place;
}

PlannedPair PairGenerator::pairIn(const PlannedConfiguration& configuration, std::size_t place) {
    return {identifierOf(configuration.first, random_.pick(keyPrefixes()), random_),
            identifierOf(configuration.further[place], random_.pick(valuePrefixes()), random_)};
}

PlannedPair PairGenerator::flawed(const PlannedPair& good) {
    switch (random_.below(8)) {
        case 0:
            return {malformedKey(random_), good.altobjid};
        case 1:
            return {good.objid, malformedValue(random_)};
        case 2:
            return {otherIdentifier(random_), good.altobjid};
        case 3:
            return {good.objid, good.objid};
        case 4: {
            const PlannedConfiguration& other = random_.pick(plan_);
            return {good.objid, identifierOf(other.first, "UDID##", random_)};
        }
        case 5:
            return {"plain device", good.altobjid};
        default:
            return {good.objid, otherIdentifier(random_)};
    }
}

PlannedPair PairGenerator::holding(std::size_t configuration) {
    return pairIn(plan_[configuration], 0);
}

std::vector<PlannedPair> PairGenerator::next() {
    std::vector<PlannedPair> pairs;
    std::size_t count = random_.percent(93) ? 1 : 0;
    count += random_.percent(40) ? random_.between(1, 3) : 0;
    for (; count > 0; --count) {
        const std::size_t configuration = random_.below(plan_.size());
        if (plan_[configuration].further.empty()) {
            continue;
        }
        const PlannedPair good = pairIn(plan_[configuration], furtherOf(configuration));
        pairs.push_back(random_.percent(7) ? flawed(good) : good);
        if (random_.percent(3)) {
            pairs.push_back({good.objid, otherIdentifier(random_)});
            random_.shuffle(pairs);
        }
    }
    return pairs;
}

}  // namespace fi_model
