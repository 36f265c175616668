#include "cli/check/device_check.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/base/text.h"
#include "cli/check/nearest.h"
#include "host/identifier.h"
#include "host/outcome.h"

namespace fi_rotate {
namespace {

// What may have been meant as a semicolon.
constexpr const char* kSeparators = ": \t";

// Whether `configured` is `name` and another target, with what may have been meant as a semicolon between
// them. The enclosure of the one behind it may be that of the one before it.
bool isRunTogether(const std::string& name, const std::string& configured) {
    const std::size_t rest = configured.find_first_not_of(kSeparators, name.size());
    if (startsWith(configured, name) && rest != std::string::npos && rest > name.size()) {
        return true;
    }
    const std::size_t device = name.find("##") + 2;
    const std::size_t separator = configured.find_last_of(kSeparators);
    return separator != std::string::npos && separator > device &&
           configured.compare(separator + 1, std::string::npos, name, device) == 0 &&
           configured.compare(0, device, name, 0, device) == 0;
}

// Finds the configured name that is most like one that is not configured, which may be a misspelling of it.
class CNearest {
public:
    explicit CNearest(const std::string& given)
        : name(given), least(std::min(kFarthest, name.size() / kCharactersForEach)) {}

    void consider(const SConfiguredName& configured) {
        const std::string& candidate = configured.name;
        if (isRunTogether(name, candidate)) {
            runTogether = configured;
        }
        const std::size_t found = editDistance(name, candidate, least + 1);
        if (found < least) {
            least = found;
            nearest.reset();
            areSeveral = false;
        }
        if (found == least && !differOnlyInDigits(name, candidate)) {
            areSeveral = areSeveral || (nearest.has_value() && candidate != nearest->name);
            nearest = configured;
        }
    }

    // Nothing when no name is similar, when several are equally similar, or when one in which only digits
    // differ is more similar: a guess could point to the wrong one.
    [[nodiscard]] std::optional<SConfiguredName> result() const {
        if (runTogether.has_value()) {
            return runTogether;
        }
        return areSeveral ? std::nullopt : nearest;
    }

private:
    static constexpr std::size_t kFarthest = 3;
    static constexpr std::size_t kCharactersForEach = 4;

    const std::string& name;
    std::size_t least;
    std::optional<SConfiguredName> nearest;
    // Another name is as similar as `nearest`.
    bool areSeveral = false;
    std::optional<SConfiguredName> runTogether;
};

bool holdsIdentifier(const std::string& text) {
    return text.find("UDID##") != std::string::npos || text.find("UEID##") != std::string::npos;
}

std::string altobjidOf(const SNode& node) {
    return node.altobjid.has_value() ? node.altobjid->text : std::string();
}

}  // namespace

// The check of one document.
class CDeviceCheck::CPairCheck {
public:
    CPairCheck(CDeviceCheck& configured, const CDocumentText& source, CFindings& receiver)
        : owner(configured), document(source), findings(receiver) {}

    std::vector<SNamedTarget> run(const std::vector<SNode>& nodes) {
        for (const SNode& node : nodes) {
            gather(node);
        }
        for (const auto& [objid, node] : pairs) {
            checkPair(*node);
        }
        return isInvalid ? std::vector<SNamedTarget>() : std::move(named);
    }

private:
    using Cause = std::optional<EHazard>;

    // Later Nodes replace earlier ones with the same objid.
    void gather(const SNode& node) {
        if (!isDevice(node)) {
            checkOther(node);
            return;
        }
        const auto [entry, isNew] = pairs.emplace(node.objid->text, &node);
        if (!isNew && altobjidOf(*entry->second) != altobjidOf(node)) {
            report(EHazard::kSameObjid, *node.objid,
                   fmt::format("an earlier Node has the objid {} too; its altobjid {} does not count",
                               inQuotes(node.objid->text), inQuotes(altobjidOf(*entry->second))),
                   firstOf(distortionOf(node.objid), distortionOf(entry->second->objid)));
        }
        entry->second = &node;
    }

    // Of a Node that is no device. Why it is none may be why the backup has none.
    void checkOther(const SNode& node) {
        Cause cause = firstOf(distortionOf(node.objid), node.objidLostTo);
        if (holdsIdentifier(altobjidOf(node))) {
            cause = firstOf(cause, distortionOf(node.altobjid));
            reportUnused(node, cause);
            cause = cause.value_or(EHazard::kUnusedAltobjid);
        }
        if (cause.has_value()) {
            findings.setMissingCauses(EHazard::kNoDevice, *cause);
        }
    }

    void reportUnused(const SNode& node, const Cause& cause) {
        const std::string altobjid = inQuotes(node.altobjid->text);
        if (!node.objid.has_value()) {
            report(EHazard::kUnusedAltobjid, *node.altobjid,
                   "the altobjid " + altobjid + " is not used: its Node has no objid", cause);
            return;
        }
        std::string objid = node.objid->text;
        std::transform(objid.begin(), objid.end(), objid.begin(), lowerCase<char>);
        const bool isOtherCase = objid.find("udid##") != std::string::npos;
        report(EHazard::kUnusedAltobjid, *node.objid,
               fmt::format("the objid {} does not contain UDID##, so the altobjid {} is not used{}",
                           inQuotes(node.objid->text), altobjid, isOtherCase ? "; did you mean UDID##?" : ""),
               cause);
    }

    void checkPair(const SNode& node) {
        const SIdentifier key = parseIdentifier(node.objid->text);
        const SIdentifier value = parseIdentifier(altobjidOf(node));
        if (key.fault.has_value()) {
            reportMalformed(*node.objid, *key.fault);
        }
        if (altobjidOf(node).empty()) {
            report(
                EHazard::kNoAltobjid, *node.objid,
                fmt::format("the device {} has no altobjid; {}", inQuotes(node.objid->text), consequence()),
                firstOf(distortionOf(node.altobjid), node.altobjidLostTo));
        } else if (value.fault.has_value()) {
            reportMalformed(*node.altobjid, *value.fault);
        }
        if (key.fault.has_value() || value.fault.has_value()) {
            isInvalid = true;
        } else {
            match(node, key.name(), value.name());
        }
    }

    void match(const SNode& node, const std::string& first, const std::string& further) {
        const auto configuration = owner.find(first, further);
        if (!configuration.has_value()) {
            hasUnmatchedPair = true;
            isInvalid = true;
            reportUnmatched(node, first, further);
            return;
        }
        const std::size_t offset = offsetOf(*node.altobjid, further);
        named.push_back({*configuration, further, offset});
        if (!held.emplace(*configuration, further).second) {
            add(EHazard::kTargetHeldTwice, document.spotAt(offset),
                fmt::format("another pair of this backup holds {} already, so the backup is invalid",
                            inQuotes(further)),
                here(firstOf(distortionOf(node.altobjid), distortionOf(node.objid))));
        }
    }

    void reportMalformed(const SValue& value, std::int32_t fault) {
        report(EHazard::kMalformedIdentifier, value,
               fmt::format("malformed identifier {}: {} (code {}); {}", inQuotes(value.text),
                           identifierFault(fault), fault, consequence()),
               value.distortedBy);
    }

    // The library looks at pairs up to the first that matches nothing.
    [[nodiscard]] std::string_view consequence() const {
        return hasUnmatchedPair ? "it is not checked, because a pair before it matches no configuration"
                                : "an exception ends the call";
    }

    void reportUnmatched(const SNode& node, const std::string& first, const std::string& further) {
        const EHazard hazard = EHazard::kPairMatchesNothing;
        const bool isFirst = owner.isFirst(first);
        auto cause = here(firstOf(distortionOf(node.objid), distortionOf(node.altobjid)));
        if (!cause.has_value()) {
            const Cause lost = isFirst ? owner.unread.causeOfFurther(first, further)
                                       : owner.unread.causeOfFirst(first, further);
            cause = causeIn(owner.configurationName, lost);
        }
        if (findings.isFull(hazard, cause)) {
            findings.countAnother(hazard, cause);
            return;
        }
        const std::string text =
            isFirst ? fmt::format("{} is not among the further targets of {}{}", inQuotes(further),
                                  inQuotes(first), owner.suggestFurther(first, further))
                    : fmt::format("no configuration has the first target {}{}", inQuotes(first),
                                  owner.suggestFirst(first));
        const std::size_t offset = isFirst ? offsetOf(*node.altobjid, further) : offsetOf(*node.objid, first);
        add(hazard, document.spotAt(offset), text, cause);
    }

    static Cause distortionOf(const std::optional<SValue>& value) {
        return value.has_value() ? value->distortedBy : std::nullopt;
    }

    static Cause firstOf(const Cause& first, const Cause& second) {
        return first.has_value() ? first : second;
    }

    static std::optional<SCause> causeIn(const std::string& input, const Cause& cause) {
        return cause.has_value() ? std::optional<SCause>({input, *cause}) : std::nullopt;
    }
    [[nodiscard]] std::optional<SCause> here(const Cause& cause) const {
        return causeIn(findings.input(), cause);
    }

    void report(EHazard hazard, const SValue& value, std::string what, const Cause& cause) {
        if (findings.isFull(hazard, here(cause))) {
            findings.countAnother(hazard, here(cause));
        } else {
            add(hazard, document.spotAt(document.offsetOf(value.place)), std::move(what), here(cause));
        }
    }

    void add(EHazard hazard, SSpot spot, std::string what, std::optional<SCause> cause) {
        findings.add({hazard, std::move(spot), std::move(what), std::move(cause)});
    }

    // Where `name` stands in the identifier of `value`; where that begins if it is not written there as it
    // is.
    [[nodiscard]] std::size_t offsetOf(const SValue& value, const std::string& name) const {
        const std::size_t begin = document.offsetOf(value.place);
        const std::string_view rest = std::string_view(document.content()).substr(begin);
        const std::size_t found = rest.substr(0, rest.find('<')).rfind(name);
        return found == std::string_view::npos ? begin : begin + found;
    }

    CDeviceCheck& owner;
    const CDocumentText& document;
    CFindings& findings;
    // By objid, as the library visits them.
    std::map<std::string_view, const SNode*> pairs;
    bool hasUnmatchedPair = false;
    // The backup is invalid, so it claims nothing.
    bool isInvalid = false;
    std::vector<SNamedTarget> named;
    // Configurations and further targets of them.
    std::set<std::pair<std::size_t, std::string>> held;
};

CDeviceCheck::CDeviceCheck(SConfigurations configurations, const std::string& text, std::string inputName)
    : unread(std::move(configurations.unread)), lines(text), configurationName(std::move(inputName)) {
    for (const SConfiguration& configuration : configurations.used) {
        SIndexed row;
        row.first = {configuration.first.name(), configuration.first.offset};
        for (const SConfiguredTarget& target : configuration.further) {
            row.further.insert(target.name());
            row.inOrder.push_back({target.name(), target.offset});
        }
        byFirst[row.first.name].push_back(indexed.size());
        indexed.push_back(std::move(row));
    }
}

std::vector<SNamedTarget> CDeviceCheck::check(const SDocumentTree& tree, const CDocumentText& document,
                                              CFindings& findings) {
    return CPairCheck(*this, document, findings).run(tree.nodes);
}

std::optional<std::size_t> CDeviceCheck::find(const std::string& first, const std::string& further) const {
    const auto candidates = byFirst.find(first);
    if (candidates == byFirst.end()) {
        return std::nullopt;
    }
    for (const std::size_t candidate : candidates->second) {
        if (indexed[candidate].further.count(further) != 0) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::string CDeviceCheck::suggestFirst(const std::string& name) {
    const auto [entry, isNew] = suggestions.emplace(std::make_pair("", name), "");
    if (isNew) {
        CNearest nearest(name);
        for (const SIndexed& row : indexed) {
            nearest.consider(row.first);
        }
        entry->second = suggestion(name, nearest.result());
    }
    return entry->second;
}

std::string CDeviceCheck::suggestFurther(const std::string& first, const std::string& name) {
    const auto [entry, isNew] = suggestions.emplace(std::make_pair(first, name), "");
    if (isNew) {
        CNearest nearest(name);
        for (const std::size_t configuration : byFirst.at(first)) {
            for (const SConfiguredName& further : indexed[configuration].inOrder) {
                nearest.consider(further);
            }
        }
        entry->second = suggestion(name, nearest.result());
    }
    return entry->second;
}

std::string CDeviceCheck::suggestion(const std::string& name,
                                     const std::optional<SConfiguredName>& nearest) const {
    if (!nearest.has_value()) {
        return "";
    }
    const std::string configured = fmt::format("{} in {}:{}", inQuotes(nearest->name), configurationName,
                                               lines.at(nearest->offset).place.line);
    return isRunTogether(name, nearest->name)
               ? "; the configuration has " + configured + ", but only a semicolon separates targets"
               : "; did you mean " + configured + "?";
}

}  // namespace fi_rotate
