#include "cli/check/time_stamp_check.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <string_view>

#include <fmt/format.h>

namespace fi_rotate {
namespace {

// What time stamps that sort as text have in common: digits, letters and other characters at the same places.
std::string formOf(std::string_view text) {
    std::string form;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isLetter = std::isalpha(byte) != 0;
        form += std::isdigit(byte) != 0 ? '0' : isLetter ? 'a' : character;
    }
    return form;
}

// The first stamp of the form that most have; of several such forms, of the one that comes first.
const SStamp& usual(const std::vector<SStamp>& stamps) {
    std::map<std::string, std::size_t> counts;
    for (const SStamp& stamp : stamps) {
        ++counts[formOf(stamp.text)];
    }
    return *std::max_element(stamps.begin(), stamps.end(),
                             [&counts](const SStamp& left, const SStamp& right) {
                                 return counts.at(formOf(left.text)) < counts.at(formOf(right.text));
                             });
}

void checkForms(const std::vector<SStamp>& stamps) {
    const SStamp& pattern = usual(stamps);
    const std::string form = formOf(pattern.text);
    for (const SStamp& stamp : stamps) {
        if (formOf(stamp.text) != form) {
            stamp.findings->add(
                {EHazard::kMixedTimeStamps, stamp.spot,
                 fmt::format("the time stamp {} differs in {} from {} of {}", inQuotes(stamp.text),
                             stamp.text.size() == form.size() ? "form" : "width", inQuotes(pattern.text),
                             pattern.findings->input())});
        }
    }
}

void checkEquals(const std::vector<SStamp>& stamps) {
    std::map<std::string_view, const SStamp*> earlier;
    for (const SStamp& stamp : stamps) {
        const auto [entry, isNew] = earlier.emplace(stamp.text, &stamp);
        if (!isNew) {
            stamp.findings->add({EHazard::kEqualTimeStamps, stamp.spot,
                                 fmt::format("the time stamp {} is that of {} too; which of them "
                                             "counts as the newer is undefined",
                                             inQuotes(stamp.text), entry->second->findings->input())});
        }
    }
}

}  // namespace

void checkTimeStamps(const std::vector<SStamp>& stamps) {
    if (!stamps.empty()) {
        checkForms(stamps);
        checkEquals(stamps);
    }
}

}  // namespace fi_rotate
