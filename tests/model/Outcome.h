#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fi_model {

// Every branch of the decision. A run of random calls must have taken each of them. The macro gives both the
// enumerators and their names.
#define FI_MODEL_OUTCOMES                                                                                   \
    kNullFlags, kNullResult, kNullConfiguration, kStatusSuccess, kStatusFailure, kException,                \
        kReferenceDecoded, kConfigurationAccepted, kConfigurationNone, kConfigurationNoTargets,             \
        kConfigurationNoDevice, kConfigurationNoEnclosure, kConfigurationPartlyKept, kEnclosureInherited,   \
        kEnclosureEmptyOnLaterTarget, kEnclosureEmptyInherited, kDeviceWithSeparator, kNoFurtherTargets,    \
        kFirstTargetShared, kTargetListedTwice, kTargetSharedByConfigurations, kFirstBackupSelected,        \
        kFirstBackupNoResource, kNegativeSize, kArraysLongerThanList, kFlagExcluded, kFlagOtherBitsOnly,    \
        kNameListedTwice, kNameListedTwiceFlagOverwritten, kMissingFirst, kMissingLater, kFolderAsDocument, \
        kDocumentLoaded, kDocumentWithoutRoot, kDocumentMalformedWithRoot, kDocumentMalformedWithoutRoot,   \
        kDocumentWarned, kSeveralTopLevelNodes, kNestedNode, kDataOutsideNode, kTimeStampWithoutRoot,       \
        kTimeStampReplaced, kTimeStampFromInnerNode, kTimeStampAfterRoot, kTextFromBefore,                  \
        kTextLastPieceOnly, kTypeNegative, kTypeTruncated, kPairOverwritten, kBackupWithoutPairs,           \
        kIdentifierDeviceFourParts, kIdentifierDeviceThreeParts, kIdentifierEnclosureFourParts,             \
        kIdentifierEnclosureThreeParts, kIdentifierPrefixNotAtStart, kMalformedKey, kMalformedValue,        \
        kMalformedCode1, kMalformedCode2, kMalformedCode3, kMalformedCode4, kPairMatched, kPairKeyUnknown,  \
        kPairValueUnknown, kPairMatchedInLaterConfiguration, kCheckGood, kCheckInvalid, kClaimGood,         \
        kClaimLost, kClaimLostInPart, kTimeStampsTied, kRotationNotNeeded, kRotationStopped,                \
        kRotationRanOut, kRotationPassedOverInvalid, kRotationSkippedExcluded, kRotationReleasedMany,       \
        kReleased, kFinalNoResource, kSelectionEmpty, kSelectionSkippedUsedTarget, kFinalKept,              \
        kFinalKeptExcluded, kFinalInvalidByCheck, kFinalInvalidByClaim, kFinalRotated, kFlagNotRewritten

enum class EOutcome : std::size_t { FI_MODEL_OUTCOMES, kCount };

inline constexpr std::size_t kOutcomeCount = static_cast<std::size_t>(EOutcome::kCount);

// The names of the enumerators in order.
std::vector<std::string> outcomeNames();

class CTally {
public:
    void note(EOutcome outcome) { ++counts[static_cast<std::size_t>(outcome)]; }
    std::uint64_t operator[](EOutcome outcome) const { return counts[static_cast<std::size_t>(outcome)]; }
    void add(const CTally& other) {
        for (std::size_t index = 0; index < kOutcomeCount; ++index) {
            counts[index] += other.counts[index];
        }
    }

private:
    std::array<std::uint64_t, kOutcomeCount> counts{};
};

}  // namespace fi_model
