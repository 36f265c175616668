#include "tests/cli/explain/Traced.h"

#include "host/library_call.h"
#include "host/trace_text.h"

namespace fi_test {

using fi_rotate::CLogReader;
using fi_rotate::SCall;
using fi_rotate::SLoggedCall;
using fi_rotate::SOutcome;

SOutcome traced(const SCall& call, std::vector<std::string>& lines) {
    fi_rotate::SWishes wishes;
    wishes.account = true;
    wishes.trace = [&lines](int level, const std::string& text) {
        const std::string line = fi_rotate::toTraceLine(level, text);
        lines.push_back(line.substr(0, line.size() - 1));
    };
    return runCall(call, wishes);
}

std::vector<SLoggedCall> callsOf(const std::vector<std::string>& lines) {
    CLogReader reader;
    for (const std::string& line : lines) {
        reader.readLine(line);
    }
    return reader.finish();
}

std::string told(const SOutcome& outcome) {
    std::string text = outcome.status.has_value() ? std::to_string(*outcome.status) : "none";
    text += '\n' + outcome.selection.value_or("none") + '\n';
    text += outcome.exception.has_value() ? outcome.exception->identifier.value() + '\n' : "";
    for (const std::string& message : outcome.messages) {
        text += message + '\n';
    }
    for (const auto& backup : outcome.backups) {
        text += backup.given.file + ' ' + std::to_string(backup.given.flagWord) + ' ' +
                std::string(stateWord(backup).value_or("-")) + ' ' +
                (backup.reason.has_value() ? inWords(*backup.reason) : "-") + '\n';
    }
    for (const auto& shortage : outcome.account.value().shortages) {
        text += std::to_string(shortage.configuration) + " is short\n";
        for (const auto& held : shortage.targets) {
            text += std::to_string(held.target) + ' ' + outcome.account->backups[held.holder].file +
                    (held.isExcluded ? " excluded\n" : "\n");
        }
    }
    return text;
}

}  // namespace fi_test
