#include "driver/selection.h"

#include <algorithm>
#include <cstring>

#include <ace/SString.h>

namespace {

std::string targetText(const std::string& enclosure, const std::string& device) {
    return enclosure + "##" + device;
}

}  // namespace

bool isAvailable(const SFiResource& resource) {
    return resource.state == kResourceAvailable;
}

std::optional<std::string> buildSelection(const std::vector<SFiResourceList>& resourceSet) {
    std::string selection;
    for (const SFiResourceList& list : resourceSet) {
        const auto chosen = std::find_if(list.resources.begin(), list.resources.end(), isAvailable);
        if (chosen == list.resources.end()) {
            return std::nullopt;
        }
        selection += "[" + targetText(list.enclosure, list.device) + ";" +
                     targetText(chosen->enclosure, chosen->device) + "]";
    }
    return selection;
}

CMallocedText duplicateForCaller(const std::string& selection) {
    const ACE_CString copy(selection.c_str(), selection.size());
    if (copy.length() != selection.size()) {
        // When memory runs out, this string class stays empty without an error. An empty selection
        // would tell the caller that there is nothing to choose.
        return nullptr;
    }
    return CMallocedText(strdup(copy.c_str()));
}
