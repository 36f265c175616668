#include "tests/model/ModelResources.h"

#include <map>

#include "tests/model/ModelIdentifier.h"

namespace fi_model {
namespace {

struct Match {
    Configuration* configuration = nullptr;
    Target* target = nullptr;
    bool keyIsKnown = false;
    bool passedOver = false;
};

Target* findTarget(Configuration& configuration, const Identifier& value) {
    for (Target& target : configuration.targets) {
        if (target.device == value.device && target.enclosure == value.enclosure) {
            return &target;
        }
    }
    return nullptr;
}

Match findMatch(Configurations& configurations, const Identifier& key, const Identifier& value) {
    Match match;
    for (Configuration& configuration : configurations) {
        if (configuration.device != key.device || configuration.enclosure != key.enclosure) {
            continue;
        }
        match.passedOver = match.keyIsKnown;
        match.keyIsKnown = true;
        match.target = findTarget(configuration, value);
        if (match.target != nullptr) {
            match.configuration = &configuration;
            return match;
        }
    }
    return match;
}

void noteMatch(const Match& match, Journal& journal) {
    journal.noteIf(match.target != nullptr, Outcome::kPairMatched);
    journal.noteIf(match.target != nullptr && match.passedOver, Outcome::kPairMatchedInLaterConfiguration);
    journal.noteIf(!match.keyIsKnown, Outcome::kPairKeyUnknown);
    journal.noteIf(match.keyIsKnown && match.target == nullptr, Outcome::kPairValueUnknown);
}

void noteMalformed(const Malformed& malformed, bool isKey, Journal& journal) {
    constexpr Outcome kByCode[] = {Outcome::kMalformedCode1, Outcome::kMalformedCode2,
                                   Outcome::kMalformedCode3, Outcome::kMalformedCode4};
    journal.note(kByCode[malformed.code - 1]);
    journal.note(isKey ? Outcome::kMalformedKey : Outcome::kMalformedValue);
}

Identifier parsePart(const std::string& text, bool isKey, Journal& journal) {
    try {
        return parseIdentifier(text, journal);
    } catch (const Malformed& malformed) {
        journal.failure("ERROR: " + malformed.identifier);
        noteMalformed(malformed, isKey, journal);
        throw;
    }
}

bool claim(const Match& match) {
    if (match.target->state == kUsed) {
        return false;
    }
    match.target->state = kUsed;
    match.configuration->state = kUsed;
    return true;
}

std::string nameOfState(int state) {
    return state == kAvailable ? "Available" : "Used";
}

const Target* firstFree(const Configuration& configuration) {
    for (const Target& target : configuration.targets) {
        if (target.state == kAvailable) {
            return &target;
        }
    }
    return nullptr;
}

}  // namespace

bool validate(const Node& root, Mode mode, Configurations& configurations, Journal& journal) {
    const Tally before = journal.tally;
    std::map<std::string, std::string> pairs;
    collectPairs(root, pairs, journal);
    journal.noteIf(pairs.empty(), Outcome::kBackupWithoutPairs);
    bool result = true;
    bool claimedAny = false;
    for (const auto& [keyText, valueText] : pairs) {
        const Identifier key = parsePart(keyText, true, journal);
        const Identifier value = parsePart(valueText, false, journal);
        const Match match = findMatch(configurations, key, value);
        noteMatch(match, journal);
        if (match.target == nullptr) {
            result = false;
            if (mode == Mode::kCheck) {
                return false;
            }
        } else if (mode == Mode::kClaim) {
            const bool claimed = claim(match);
            claimedAny = claimedAny || claimed;
            result = result && claimed;
        } else if (mode == Mode::kRelease) {
            match.target->state = kAvailable;
        }
    }
    // Pairs are counted in the check, which every backup goes through, and not once more.
    if (mode != Mode::kCheck) {
        journal.tally = before;
    }
    journal.noteIf(!result && claimedAny, Outcome::kClaimLostInPart);
    return result;
}

std::optional<std::string> selectionOf(const Configurations& configurations) {
    std::string selection;
    for (const Configuration& configuration : configurations) {
        const Target* const target = firstFree(configuration);
        if (target == nullptr) {
            return std::nullopt;
        }
        selection += "[" + configuration.enclosure + "##" + configuration.device + ";" + target->enclosure +
                     "##" + target->device + "]";
    }
    return selection;
}

void printResources(const Configurations& configurations, Journal& journal) {
    journal.progress("CFiResourceManager::print : printing resource set");
    for (const Configuration& configuration : configurations) {
        journal.progress("[" + configuration.enclosure + ":" + configuration.device + "](" +
                         nameOfState(configuration.state) + ")");
        for (const Target& target : configuration.targets) {
            journal.progress("{" + target.device + "," + nameOfState(target.state) + "}");
        }
    }
}

}  // namespace fi_model
