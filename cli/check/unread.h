#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/check/hazard.h"

namespace fi_rotate {

struct SConfiguration;

// Targets, as ENCLOSURE##DEVICE, that the configuration was probably meant to have but that the library does
// not read from it, each with the hazard of the configuration that is the cause. A pair that matches nothing
// because its target is among them follows from that hazard.
class CUnread {
public:
    // From now on, every target that is not configured is missing because of `cause`.
    void setCauseOfAll(EHazard cause);
    // Adds the first target of `meant` and its further targets.
    void addConfiguration(const SConfiguration& meant, EHazard cause);
    // All further targets of `first` are missing, whatever their names.
    void addFurtherTargetsOf(const std::string& first, EHazard cause);
    // Adds the targets, as they are written, of a configuration whose first one is malformed.
    // `precedingFirst` is the first target of the last configuration that is read: a separator within a name
    // may have cut these targets off from it.
    void addMalformed(const std::string& precedingFirst, const std::vector<std::string>& targets,
                      EHazard cause);

    // Why no configuration has the first target of this pair.
    [[nodiscard]] std::optional<EHazard> causeOfFirst(const std::string& first,
                                                      const std::string& further) const;
    // Why those that have its first target lack its further one.
    [[nodiscard]] std::optional<EHazard> causeOfFurther(const std::string& first,
                                                        const std::string& further) const;

private:
    struct SMalformed {
        std::string precedingFirst;
        std::vector<std::string> targets;
        EHazard cause;
    };

    std::optional<EHazard> all;
    std::map<std::string, EHazard> firsts;
    std::map<std::pair<std::string, std::string>, EHazard> furthers;
    std::map<std::string, EHazard> withoutTargets;
    std::vector<SMalformed> malformed;
};

}  // namespace fi_rotate
