#include "tests/contract/Host.h"

#include <cstdlib>
#include <memory>
#include <ostream>
#include <tuple>
#include <utility>

namespace fi_test {
namespace {

constexpr std::int32_t kGuard = 0x5AFE5AFE;

struct SFree {
    void operator()(char* text) const { std::free(text); }
};

// What a host reads of an exception.
std::optional<std::pair<std::string, std::int32_t>> contentOf(const SObserved& observed) {
    if (!observed.exception.has_value()) {
        return std::nullopt;
    }
    return std::pair(observed.exception->identifier, observed.exception->code);
}

auto fieldsOf(const SObserved& observed) {
    return std::tuple(observed.status, contentOf(observed), observed.selection, observed.flags,
                      observed.trace, observed.standardOutput);
}

}  // namespace

bool operator==(const SObserved& left, const SObserved& right) {
    return fieldsOf(left) == fieldsOf(right);
}

std::ostream& operator<<(std::ostream& out, const SObserved& observed) {
    out << "status " << testing::PrintToString(observed.status) << "\nexception "
        << testing::PrintToString(contentOf(observed)) << "\nselection "
        << testing::PrintToString(observed.selection) << "\nflags " << testing::PrintToString(observed.flags)
        << "\nstandard output " << observed.standardOutput;
    for (const STraceLine& line : observed.trace) {
        out << '\n' << line;
    }
    return out;
}

SObserved call(const std::string& configuration, const std::vector<SBackup>& backups) {
    return callWithSize(configuration.c_str(), backups, static_cast<std::int32_t>(backups.size()));
}

SObserved callWithSize(const char* configuration, const std::vector<SBackup>& backups, std::int32_t size) {
    std::vector<const char*> files;
    std::vector<std::int32_t> words{kGuard};
    for (const SBackup& backup : backups) {
        files.push_back(backup.file.c_str());
        words.push_back(backup.flagWord);
    }
    words.push_back(kGuard);

    const EntryPoint process = entryPoint();
    char untouched = 'u';
    char* result = &untouched;
    SObserved observed;
    CTraceRecorder recorder;
    testing::internal::CaptureStdout();
    try {
        observed.status = process(files.data(), configuration, words.data() + 1, size, &result);
    } catch (const CFiUdidException& malformed) {
        observed.exception = malformed;
    }
    observed.standardOutput = testing::internal::GetCapturedStdout();
    observed.trace = recorder.take();

    if (result != &untouched) {
        const std::unique_ptr<char, SFree> selection(result);
        observed.selection = selection.get();
    }
    EXPECT_EQ(words.front(), kGuard);
    EXPECT_EQ(words.back(), kGuard);
    observed.flags.assign(words.begin() + 1, words.end() - 1);
    return observed;
}

}  // namespace fi_test
