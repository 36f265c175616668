#include "tests/model/ModelResources.h"

#include <map>

#include "tests/model/ModelIdentifier.h"

namespace fi_model {
namespace {

struct SMatch {
    SConfiguration* configuration = nullptr;
    STarget* target = nullptr;
    bool keyIsKnown = false;
    bool passedOver = false;
};

STarget* findTarget(SConfiguration& configuration, const SIdentifier& value) {
    for (STarget& target : configuration.targets) {
        if (target.device == value.device && target.enclosure == value.enclosure) {
            return &target;
        }
    }
    return nullptr;
}

SMatch findMatch(Configurations& configurations, const SIdentifier& key, const SIdentifier& value) {
    SMatch match;
    for (SConfiguration& configuration : configurations) {
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

void noteMatch(const SMatch& match, SJournal& journal) {
    journal.noteIf(match.target != nullptr, EOutcome::kPairMatched);
    journal.noteIf(match.target != nullptr && match.passedOver, EOutcome::kPairMatchedInLaterConfiguration);
    journal.noteIf(!match.keyIsKnown, EOutcome::kPairKeyUnknown);
    journal.noteIf(match.keyIsKnown && match.target == nullptr, EOutcome::kPairValueUnknown);
}

void noteMalformed(const SMalformed& malformed, bool isKey, SJournal& journal) {
    constexpr EOutcome kByCode[] = {EOutcome::kMalformedCode1, EOutcome::kMalformedCode2,
                                    EOutcome::kMalformedCode3, EOutcome::kMalformedCode4};
    journal.note(kByCode[malformed.code - 1]);
    journal.note(isKey ? EOutcome::kMalformedKey : EOutcome::kMalformedValue);
}

SIdentifier parsePart(const std::string& text, bool isKey, SJournal& journal) {
    try {
        return parseIdentifier(text, journal);
    } catch (const SMalformed& malformed) {
        journal.failure("ERROR: " + malformed.identifier);
        noteMalformed(malformed, isKey, journal);
        throw;
    }
}

bool claim(const SMatch& match) {
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

const STarget* firstFree(const SConfiguration& configuration) {
    for (const STarget& target : configuration.targets) {
        if (target.state == kAvailable) {
            return &target;
        }
    }
    return nullptr;
}

}  // namespace

bool validate(const SNode& root, EMode mode, Configurations& configurations, SJournal& journal) {
    const CTally before = journal.tally;
    std::map<std::string, std::string> pairs;
    collectPairs(root, pairs, journal);
    journal.noteIf(pairs.empty(), EOutcome::kBackupWithoutPairs);
    bool result = true;
    bool claimedAny = false;
    for (const auto& [keyText, valueText] : pairs) {
        const SIdentifier key = parsePart(keyText, true, journal);
        const SIdentifier value = parsePart(valueText, false, journal);
        const SMatch match = findMatch(configurations, key, value);
        noteMatch(match, journal);
        if (match.target == nullptr) {
            result = false;
            if (mode == EMode::kCheck) {
                return false;
            }
        } else if (mode == EMode::kClaim) {
            const bool claimed = claim(match);
            claimedAny = claimedAny || claimed;
            result = result && claimed;
        } else if (mode == EMode::kRelease) {
            match.target->state = kAvailable;
        }
    }
    // Pairs are counted in the check only, because every backup goes through it.
    if (mode != EMode::kCheck) {
        journal.tally = before;
    }
    journal.noteIf(!result && claimedAny, EOutcome::kClaimLostInPart);
    return result;
}

std::optional<std::string> selectionOf(const Configurations& configurations) {
    std::string selection;
    for (const SConfiguration& configuration : configurations) {
        const STarget* const target = firstFree(configuration);
        if (target == nullptr) {
            return std::nullopt;
        }
        selection += "[" + configuration.enclosure + "##" + configuration.device + ";" + target->enclosure +
                     "##" + target->device + "]";
    }
    return selection;
}

void printResources(const Configurations& configurations, SJournal& journal) {
    journal.progress("CFiResourceManager::print : printing resource set");
    for (const SConfiguration& configuration : configurations) {
        journal.progress("[" + configuration.enclosure + ":" + configuration.device + "](" +
                         nameOfState(configuration.state) + ")");
        for (const STarget& target : configuration.targets) {
            journal.progress("{" + target.device + "," + nameOfState(target.state) + "}");
        }
    }
}

}  // namespace fi_model
