#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/check/hazard.h"

namespace fi_rotate {

struct SConfiguration;

// What a configuration was probably meant to say that the library does not read in it, and the hazard of the
// configuration that keeps it from that. Targets as ENCLOSURE##DEVICE.
class CUnread {
public:
    // Whatever is not known is not known for `cause`.
    void addAll(EHazard cause);
    // Its first target, and its further ones where the first is known.
    void add(const SConfiguration& meant, EHazard cause);
    // Whichever targets a backup of `first` holds.
    void addTargetsOf(const std::string& first, EHazard cause);
    // A first target that is malformed, as it is written.
    void addMalformed(const std::string& text, EHazard cause);

    // Why no configuration has this first target.
    [[nodiscard]] std::optional<EHazard> causeOf(const std::string& first) const;
    // Why those that have this first target lack this further one.
    [[nodiscard]] std::optional<EHazard> causeOf(const std::string& first, const std::string& further) const;

private:
    std::optional<EHazard> all;
    std::map<std::string, EHazard> firsts;
    std::map<std::pair<std::string, std::string>, EHazard> furthers;
    std::map<std::string, EHazard> withoutTargets;
    std::vector<std::pair<std::string, EHazard>> malformed;
};

}  // namespace fi_rotate
