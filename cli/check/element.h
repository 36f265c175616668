#pragma once

#include <xercesc/util/XercesDefs.hpp>

namespace fi_rotate {

// What an element is to the library.
enum class EElement {
    // Nothing: it is passed over.
    kOther,
    // The same, but its name is that of one that counts, but for the case of its letters or for a prefix.
    kMisnamed,
    kNode,
    kObjid,
    kAltobjid,
    kSplitType,
    kType,
    kTimeStamp,
};

EElement elementOf(const XMLCh* qname);

// One that holds text.
bool isData(EElement element);

// The name of one that counts, as it must be written; for a misnamed one that which was meant.
const char* nameMeant(const XMLCh* qname);

}  // namespace fi_rotate
