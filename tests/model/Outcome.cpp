#include "tests/model/Outcome.h"

namespace fi_model {

std::string_view outcomeName(Outcome outcome) {
    switch (outcome) {
        case Outcome::kNullFlags:
            return "null flags";
        case Outcome::kNullResult:
            return "null result";
        case Outcome::kNullConfiguration:
            return "null configuration";
        case Outcome::kStatusSuccess:
            return "status 0";
        case Outcome::kStatusFailure:
            return "status 3";
        case Outcome::kException:
            return "exception";
        case Outcome::kReferenceDecoded:
            return "reference decoded";
        case Outcome::kConfigurationAccepted:
            return "configuration accepted";
        case Outcome::kConfigurationNone:
            return "configuration none";
        case Outcome::kConfigurationNoTargets:
            return "configuration no targets";
        case Outcome::kConfigurationNoDevice:
            return "configuration no device";
        case Outcome::kConfigurationNoEnclosure:
            return "configuration no enclosure";
        case Outcome::kConfigurationPartlyKept:
            return "configuration partly kept";
        case Outcome::kEnclosureInherited:
            return "enclosure inherited";
        case Outcome::kEnclosureEmptyOnLaterTarget:
            return "enclosure empty on later target";
        case Outcome::kEnclosureEmptyInherited:
            return "enclosure empty inherited";
        case Outcome::kDeviceWithSeparator:
            return "device with separator";
        case Outcome::kNoFurtherTargets:
            return "no further targets";
        case Outcome::kFirstTargetShared:
            return "first target shared";
        case Outcome::kTargetListedTwice:
            return "target listed twice";
        case Outcome::kTargetSharedByConfigurations:
            return "target shared by configurations";
        case Outcome::kFirstBackupSelected:
            return "first backup selected";
        case Outcome::kFirstBackupNoResource:
            return "first backup no resource";
        case Outcome::kNegativeSize:
            return "negative size";
        case Outcome::kArraysLongerThanList:
            return "arrays longer than list";
        case Outcome::kFlagExcluded:
            return "flag excluded";
        case Outcome::kFlagOtherBitsOnly:
            return "flag other bits only";
        case Outcome::kNameListedTwice:
            return "name listed twice";
        case Outcome::kNameListedTwiceFlagOverwritten:
            return "name listed twice flag overwritten";
        case Outcome::kMissingFirst:
            return "missing first";
        case Outcome::kMissingLater:
            return "missing later";
        case Outcome::kFolderAsDocument:
            return "folder as document";
        case Outcome::kDocumentLoaded:
            return "document loaded";
        case Outcome::kDocumentWithoutRoot:
            return "document without root";
        case Outcome::kDocumentMalformedWithRoot:
            return "document malformed with root";
        case Outcome::kDocumentMalformedWithoutRoot:
            return "document malformed without root";
        case Outcome::kDocumentWarned:
            return "document warned";
        case Outcome::kSeveralTopLevelNodes:
            return "several top level nodes";
        case Outcome::kNestedNode:
            return "nested node";
        case Outcome::kDataOutsideNode:
            return "data outside node";
        case Outcome::kTimeStampWithoutRoot:
            return "time stamp without root";
        case Outcome::kTimeStampReplaced:
            return "time stamp replaced";
        case Outcome::kTimeStampFromInnerNode:
            return "time stamp from inner node";
        case Outcome::kTimeStampAfterRoot:
            return "time stamp after root";
        case Outcome::kTextFromBefore:
            return "text from before";
        case Outcome::kTextLastPieceOnly:
            return "text last piece only";
        case Outcome::kTypeNegative:
            return "type negative";
        case Outcome::kTypeTruncated:
            return "type truncated";
        case Outcome::kPairOverwritten:
            return "pair overwritten";
        case Outcome::kBackupWithoutPairs:
            return "backup without pairs";
        case Outcome::kIdentifierDeviceFourParts:
            return "identifier device four parts";
        case Outcome::kIdentifierDeviceThreeParts:
            return "identifier device three parts";
        case Outcome::kIdentifierEnclosureFourParts:
            return "identifier enclosure four parts";
        case Outcome::kIdentifierEnclosureThreeParts:
            return "identifier enclosure three parts";
        case Outcome::kIdentifierPrefixNotAtStart:
            return "identifier prefix not at start";
        case Outcome::kMalformedKey:
            return "malformed key";
        case Outcome::kMalformedValue:
            return "malformed value";
        case Outcome::kMalformedCode1:
            return "malformed code 1";
        case Outcome::kMalformedCode2:
            return "malformed code 2";
        case Outcome::kMalformedCode3:
            return "malformed code 3";
        case Outcome::kMalformedCode4:
            return "malformed code 4";
        case Outcome::kPairMatched:
            return "pair matched";
        case Outcome::kPairKeyUnknown:
            return "pair key unknown";
        case Outcome::kPairValueUnknown:
            return "pair value unknown";
        case Outcome::kPairMatchedInLaterConfiguration:
            return "pair matched in later configuration";
        case Outcome::kCheckGood:
            return "check good";
        case Outcome::kCheckInvalid:
            return "check invalid";
        case Outcome::kClaimGood:
            return "claim good";
        case Outcome::kClaimLost:
            return "claim lost";
        case Outcome::kClaimLostInPart:
            return "claim lost in part";
        case Outcome::kTimeStampsTied:
            return "time stamps tied";
        case Outcome::kRotationNotNeeded:
            return "rotation not needed";
        case Outcome::kRotationStopped:
            return "rotation stopped";
        case Outcome::kRotationRanOut:
            return "rotation ran out";
        case Outcome::kRotationPassedOverInvalid:
            return "rotation passed over invalid";
        case Outcome::kRotationSkippedExcluded:
            return "rotation skipped excluded";
        case Outcome::kRotationReleasedMany:
            return "rotation released many";
        case Outcome::kReleased:
            return "released";
        case Outcome::kFinalNoResource:
            return "final no resource";
        case Outcome::kSelectionEmpty:
            return "selection empty";
        case Outcome::kSelectionSkippedUsedTarget:
            return "selection skipped used target";
        case Outcome::kFinalKept:
            return "final kept";
        case Outcome::kFinalKeptExcluded:
            return "final kept excluded";
        case Outcome::kFinalInvalidByCheck:
            return "final invalid by check";
        case Outcome::kFinalInvalidByClaim:
            return "final invalid by claim";
        case Outcome::kFinalRotated:
            return "final rotated";
        case Outcome::kFlagNotRewritten:
            return "flag not rewritten";
        case Outcome::kCount:
            break;
    }
    return "";
}

}  // namespace fi_model
