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

// A target of the configuration, as ENCLOSURE##DEVICE.
struct SConfiguredName {
    std::string name;
    // In the text of the configuration.
    std::size_t offset = 0;
};

// Finds the targets that backups hold, as the library does. One object checks all documents of a call.
class CDeviceCheck {
public:
    // `text` is the configuration as it was given, and is borrowed; `inputName` is its name in a report.
    CDeviceCheck(SConfigurations configurations, const std::string& text, std::string inputName);

    // What is wrong with the devices of `tree`, which was read from `document`, is added to `findings`.
    // Returns the targets that the backup claims, in that order; none when a pair of it is malformed or
    // matches nothing.
    std::vector<SNamedTarget> check(const SDocumentTree& tree, const CDocumentText& document,
                                    CFindings& findings);

private:
    class CPairCheck;

    struct SIndexed {
        SConfiguredName first;
        std::unordered_set<std::string> further;
        std::vector<SConfiguredName> inOrder;
    };

    // The configuration in which the library finds the target.
    std::optional<std::size_t> find(const std::string& first, const std::string& further) const;
    bool isFirst(const std::string& name) const { return byFirst.count(name) != 0; }

    // The end of a message: which configured name may have been meant, or may be this one and another run
    // together, and where it is; empty when there is none.
    std::string suggestFirst(const std::string& name);
    std::string suggestFurther(const std::string& first, const std::string& name);
    std::string suggestion(const std::string& name, const std::optional<SConfiguredName>& nearest) const;

    CUnread unread;
    CLines lines;
    std::string configurationName;
    std::vector<SIndexed> indexed;
    std::unordered_map<std::string, std::vector<std::size_t>> byFirst;
    // What the first two functions above returned before, by first target (empty in suggestFirst) and name.
    std::map<std::pair<std::string, std::string>, std::string> suggestions;
};

}  // namespace fi_rotate
