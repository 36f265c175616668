#include "cli/check/element.h"

#include <algorithm>
#include <iterator>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

struct SName {
    EElement element;
    std::u16string_view name;
    const char* shown;
};
constexpr SName kNames[] = {
    {EElement::kNode, u"Node", "Node"},
    {EElement::kObjid, u"objid", "objid"},
    {EElement::kAltobjid, u"altobjid", "altobjid"},
    {EElement::kSplitType, u"splitType", "splitType"},
    {EElement::kType, u"type", "type"},
    {EElement::kTimeStamp, u"timeStamp", "timeStamp"},
};

bool isSameButForCase(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return lowerCase(a) == lowerCase(b); });
}

const SName* meant(std::u16string_view qname) {
    const std::u16string_view name = qname.substr(qname.rfind(u':') + 1);
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames), [name](const SName& row) {
        return isSameButForCase(row.name, name);
    });
    return found == std::end(kNames) ? nullptr : found;
}

}  // namespace

EElement elementOf(std::u16string_view qname) {
    const SName* const row = meant(qname);
    if (row == nullptr) {
        return EElement::kOther;
    }
    return row->name == qname ? row->element : EElement::kMisnamed;
}

EElement meantBy(std::u16string_view qname) {
    const SName* const row = meant(qname);
    return row == nullptr ? EElement::kOther : row->element;
}

bool isData(EElement element) {
    return element != EElement::kOther && element != EElement::kMisnamed && element != EElement::kNode;
}

const char* shownName(EElement element) {
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames),
                                           [element](const SName& row) { return row.element == element; });
    return found == std::end(kNames) ? "" : found->shown;
}

}  // namespace fi_rotate
