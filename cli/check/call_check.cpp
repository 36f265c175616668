#include "cli/check/call_check.h"

#include <sys/stat.h>

#include <optional>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "cli/check/configuration.h"
#include "cli/check/device_check.h"
#include "cli/check/document_text.h"
#include "cli/check/document_tree.h"
#include "cli/check/time_stamp_check.h"
#include "cli/file.h"
#include "cli/xml_reader.h"

namespace fi_rotate {
namespace {

class CCallCheck {
public:
    explicit CCallCheck(const SInputs& given) : inputs(given) {}

    std::vector<CFindings> run() {
        // Stamps borrow findings, so these stay where they are.
        all.reserve(inputs.files.size() + 1);
        all.emplace_back(inputs.configurationName);
        const std::vector<SConfiguration> used = checkConfiguration(inputs.configuration, all.front());
        CDeviceCheck devices(used);
        const CXmlLibrary library;
        for (std::size_t i = 0; i < inputs.files.size(); ++i) {
            all.emplace_back(inputs.files[i]);
            checkFile(i, devices, all.back());
        }
        checkTimeStamps(stamps);
        return std::move(all);
    }

private:
    void checkFile(std::size_t index, CDeviceCheck& devices, CFindings& findings) {
        const std::string& file = inputs.files[index];
        if (!listed.insert(file).second) {
            findings.addOfWhole(EHazard::kListedTwice, "the document is listed already");
            return;
        }
        if (const auto bytes = read(index, findings)) {
            checkDocument(*bytes, devices, findings);
        }
    }

    std::optional<std::string> read(std::size_t index, CFindings& findings) {
        const std::string& file = inputs.files[index];
        struct stat status {};
        if (stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
            findings.addOfWhole(EHazard::kNotAFile,
                                S_ISDIR(status.st_mode)
                                    ? "a folder, which the library reads as an empty document"
                                    : "no file, but a device or a pipe; it is not read here");
            return std::nullopt;
        }
        const CFile stream(std::fopen(file.c_str(), "rb"));
        if (stream == nullptr) {
            reportUnopened(index, findings);
            return std::nullopt;
        }
        auto bytes = readAll(stream.get());
        if (!bytes.has_value()) {
            findings.addOfWhole(EHazard::kReadError, "reading fails: " + errorText());
        }
        return bytes;
    }

    void reportUnopened(std::size_t index, CFindings& findings) {
        const std::size_t others = inputs.files.size() - index - 1;
        const std::string consequence = isStopped ? "the library does not come so far"
                                        : others == 0
                                            ? "it takes no part"
                                            : fmt::format("neither it nor the {} after it will be read",
                                                          others == 1 ? "one" : std::to_string(others));
        findings.addOfWhole(EHazard::kCannotOpen,
                            fmt::format("cannot be opened: {}; {}", errorText(), consequence));
        isStopped = true;
    }

    void checkDocument(const std::string& bytes, CDeviceCheck& devices, CFindings& findings) {
        const CDocumentText document(bytes);
        if (!document.check(findings)) {
            return;
        }
        const SDocumentTree tree = readTree(document, findings);
        devices.check(tree, document, findings);
        if (tree.timeStamp.has_value() && !tree.timeStamp->text.empty()) {
            stamps.push_back(
                {tree.timeStamp->text, document.spotAt(document.offsetOf(tree.timeStamp->place)), &findings});
        }
    }

    const SInputs& inputs;
    std::vector<CFindings> all;
    std::vector<SStamp> stamps;
    std::set<std::string> listed;
    // A document could not be opened.
    bool isStopped = false;
};

}  // namespace

std::vector<CFindings> checkCall(const SInputs& inputs) {
    return CCallCheck(inputs).run();
}

}  // namespace fi_rotate
