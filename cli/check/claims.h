#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/check/document_text.h"
#include "cli/check/findings.h"

namespace fi_rotate {

// A target that the document of a backup names, so that the backup will try to claim it.
struct SNamedTarget {
    std::size_t configuration = 0;
    std::string name;
    // Of the name in the content of the document.
    std::size_t offset = 0;
};

// Finds the targets that several backups of a call claim. It foresees what the library will do: the claim
// itself is in driver/rotation.cpp.
class CClaims {
public:
    // Adds the next backup of the call. `named` are the targets that it will try to claim: none for a backup
    // that failed the library's check.
    void add(std::string timeStamp, const std::vector<SNamedTarget>& named,
             std::unique_ptr<const CDocumentText> document, CFindings& findings);

    // Adds what was found to the findings of the backups, which were borrowed. To be called once, at the end.
    void report();

    // The input in which it is reported that one of these two backups finds a target used that the other
    // holds, too.
    [[nodiscard]] std::optional<std::string> reportOf(const CFindings& one, const CFindings& other) const;

private:
    struct SBackup {
        std::string timeStamp;
        // Places in it are looked up when all backups are known.
        std::unique_ptr<const CDocumentText> document;
        CFindings* findings = nullptr;
    };
    // A backup, by its index, that tries to claim a target.
    struct SClaimant {
        std::size_t backup = 0;
        // Where its document names the target.
        std::size_t offset = 0;
    };
    struct STarget {
        std::string name;
        // After the sorting in the order of their claims: the first one gets the target.
        std::vector<SClaimant> claimants;
    };
    // Targets that the same backups claim in the same order.
    struct SGroup {
        std::vector<std::size_t> claimants;
        std::vector<const STarget*> targets;
    };

    void sortClaimants();
    [[nodiscard]] std::vector<SGroup> groups() const;
    void reportLoss(const SGroup& group, std::size_t index);
    [[nodiscard]] std::string textOf(const SGroup& group, const STarget& first, const SBackup& loser) const;

    std::vector<SBackup> backups;
    std::map<std::pair<std::size_t, std::string>, STarget> targets;
    // Indices of the backups that do not get every target that they try to claim.
    std::set<std::size_t> losers;
    // Who claims the same targets, each with its index in the order of their claims.
    std::vector<std::map<const CFindings*, std::size_t>> reports;
    // Indices of reports by who is in them.
    std::map<const CFindings*, std::vector<std::size_t>> reportsOn;
};

}  // namespace fi_rotate
