#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cli/check/claims.h"
#include "cli/check/configuration.h"
#include "cli/check/document_text.h"
#include "cli/check/document_tree.h"
#include "cli/check/findings.h"

namespace fi_rotate {

// Finds the targets that backups hold, as the library does. One object checks all documents of a call.
class CDeviceCheck {
public:
    // `inputName` is the name of the configuration in a report.
    CDeviceCheck(SConfigurations configurations, std::string inputName);

    // What is wrong with the devices of `tree`, which was read from `document`, is added to `findings`.
    // Returns the targets that the backup claims, in that order; none when a pair of it is malformed or
    // matches nothing.
    std::vector<SNamedTarget> check(const SDocumentTree& tree, const CDocumentText& document,
                                    CFindings& findings);

private:
    class CPairCheck;

    struct SIndexed {
        std::string first;
        std::unordered_set<std::string> further;
        std::vector<std::string> inOrder;
    };

    // The configuration in which the library finds the target.
    std::optional<std::size_t> find(const std::string& first, const std::string& further) const;
    bool isFirst(const std::string& name) const { return byFirst.count(name) != 0; }

    // A configured name that may have been meant, or that may be this one and another run together; empty
    // when there is none.
    std::string nearestFirst(const std::string& name);
    std::string nearestFurther(const std::string& first, const std::string& name);

    CUnread unread;
    std::string configurationName;
    std::vector<SIndexed> indexed;
    std::unordered_map<std::string, std::vector<std::size_t>> byFirst;
    // What the two functions above found before, by first target (empty in nearestFirst) and name.
    std::map<std::pair<std::string, std::string>, std::string> nearestNames;
};

}  // namespace fi_rotate
