#pragma once

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "resource/SFiResourceList.h"

// Whether a further target may be chosen.
bool isAvailable(const SFiResource& resource);

// The selection string: "[FIRST;CHOSEN]" for every configuration in order, where CHOSEN is the
// first of its further targets that is Available. Nothing when some configuration has no such
// target; the empty text when there is no configuration.
std::optional<std::string> buildSelection(const std::vector<SFiResourceList>& resourceSet);

struct SMallocRelease {
    void operator()(char* text) const { std::free(text); }
};
using CMallocedText = std::unique_ptr<char, SMallocRelease>;

// A copy for the caller of the library, who releases it with free. Null when memory runs out.
CMallocedText duplicateForCaller(const std::string& selection);
