#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace fi_rotate {

// What can be wrong with the inputs of a call. Each has a row in hazard.cpp, in this order.
enum class EHazard {
    // The configuration.
    kNoConfiguration,
    kConfigurationRejected,
    kNoFurtherTargets,
    kTargetRepeated,
    kTargetInTwoConfigurations,
    kFirstTargetRepeated,
    kDeviceConfiguredTwice,
    kBlankInTarget,
    kCommaInTarget,
    kLongEnclosure,
    kByteOrderMark,
    // The files of documents.
    kCannotOpen,
    kNotAFile,
    kReadError,
    kListedTwice,
    // The bytes of a document; the first two also those of the configuration.
    kNulByte,
    kUtf16,
    kEncodingMismatch,
    // The document as XML.
    kMalformedXml,
    kDoctype,
    kExternalEntity,
    kNestedEntities,
    kReadingLimit,
    // Nodes and elements.
    kNoNode,
    kSeveralNodes,
    kOutsideNode,
    kWrongName,
    kEmptyElement,
    kSplitValue,
    kLongText,
    kRepeatedElement,
    // Time stamps.
    kNoTimeStamp,
    kImpossibleDate,
    kEqualTimeStamps,
    kMixedTimeStamps,
    // Pairs and their identifiers.
    kNoDevice,
    kNoAltobjid,
    kUnusedAltobjid,
    kMalformedIdentifier,
    kSameObjid,
    // Pairs compared with the configuration and with other backups.
    kPairMatchesNothing,
    kTargetHeldTwice,
    kTargetHeldBySeveral,
    // Not a hazard: the number of hazards.
    kCount,
};
constexpr auto kHazardCount = static_cast<std::size_t>(EHazard::kCount);

enum class ESeverity {
    // It may be intended, but is usually a mistake.
    kWarning,
    // The call cannot choose targets, or it does not use some of its inputs.
    kError,
};

enum class EMender {
    // Whoever runs the backup product can correct what is wrong, or its paragraph says who can.
    kAdministrator,
    // It is in a document, and documents belong to the backup product: a name that was corrected by hand can
    // let a good snapshot be overwritten.
    kMaker,
};

struct SHazardKind {
    EHazard hazard;
    std::string_view name;
    ESeverity severity;
    EMender mender;
    // What is wrong, what follows from it, and what to do.
    std::string_view paragraph;
};

// In the order of EHazard.
const std::array<SHazardKind, kHazardCount>& hazardKinds();

const SHazardKind& kindOf(EHazard hazard);

// "error" or "warning".
std::string_view nameOf(ESeverity severity);

// Null when no hazard is called `name`.
const SHazardKind* findKind(std::string_view name);

}  // namespace fi_rotate
