#pragma once

#include <string_view>

namespace fi_rotate {

// What an element is to the library.
enum class EElement {
    // Nothing: it is passed over.
    kOther,
    // Passed over, too. Its name differs from one that counts only in the case of its letters or by a prefix.
    kMisnamed,
    kNode,
    kObjid,
    kAltobjid,
    kSplitType,
    kType,
    kTimeStamp,
};

EElement elementOf(std::u16string_view qname);

// What was probably meant by a name: the element of that name, whatever the case of its letters or its
// prefix. kOther when it is like none.
EElement meantBy(std::u16string_view qname);

// One that holds text.
bool isData(EElement element);

// As it must be written.
const char* shownName(EElement element);

}  // namespace fi_rotate
