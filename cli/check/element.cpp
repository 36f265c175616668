#include "cli/check/element.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

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

char16_t inSmall(char16_t letter) {
    return letter >= u'A' && letter <= u'Z' ? static_cast<char16_t>(letter - u'A' + u'a') : letter;
}

bool isSameButForCase(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return inSmall(a) == inSmall(b); });
}

const SName* meant(std::u16string_view qname) {
    const std::u16string_view name = qname.substr(qname.rfind(u':') + 1);
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames), [name](const SName& row) {
        return isSameButForCase(row.name, name);
    });
    return found == std::end(kNames) ? nullptr : found;
}

}  // namespace

EElement elementOf(const XMLCh* qname) {
    const SName* const row = meant(qname);
    if (row == nullptr) {
        return EElement::kOther;
    }
    return row->name == qname ? row->element : EElement::kMisnamed;
}

bool isData(EElement element) {
    return element != EElement::kOther && element != EElement::kMisnamed && element != EElement::kNode;
}

const char* nameMeant(const XMLCh* qname) {
    const SName* const row = meant(qname);
    return row == nullptr ? "" : row->shown;
}

}  // namespace fi_rotate
