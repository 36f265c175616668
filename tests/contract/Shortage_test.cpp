// What a call does when memory runs out: each of its allocations fails in turn. Each time the outcome is the
// usual one, or a failure, or an exception that leaves the outputs alone; nothing stays allocated, and the
// next call works.
//
// There is one exception. The XML library can be terminated only when it was set up whole, and three
// allocations of its set-up are not made through its memory manager. When one of these fails, the next call
// finishes the set-up and terminates it. After the first of them, the converter of the local code page, it
// cannot, and later calls throw, too. This cannot happen in a process that really runs out of memory: the
// set-up begins only when there is heap enough for it.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Library.h"
#include "tests/contract/Shortage.h"
#include "tests/support/TemporaryFolder.h"

namespace {

// How many allocations a call makes before its first parser, those of the set-up of the XML library included.
std::size_t allocationsBeforeParser = 0;

}  // namespace

// Formats nothing, since it is not the host's own allocations that are tested.
extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int /*level*/, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    if (allocationsBeforeParser == 0 && std::strcmp(format, "Entering %s\n") == 0 &&
        std::strcmp(va_arg(arguments, const char*), "CFiFiidParser::CFiFiidParser") == 0) {
        allocationsBeforeParser = fi_test::allocationsSinceStart();
    }
    va_end(arguments);
}

namespace fi_test {
namespace {

enum EEnd { kSelection, kNone, kException };

struct SOutcome {
    EEnd end = kException;
    std::string selection;
    std::vector<std::int32_t> flags;

    bool operator==(const SOutcome& other) const {
        return end == other.end && selection == other.selection && flags == other.flags;
    }
};

struct SScenario {
    std::string configuration;
    std::vector<std::string> files;
};

constexpr std::int32_t kFlagWord = 8;

class CCaller {
public:
    explicit CCaller(const SScenario& scenario) : configuration(scenario.configuration) {
        for (const std::string& file : scenario.files) {
            files.push_back(file.c_str());
        }
    }

    // Allocates nothing before the shortage has ended.
    SOutcome call(EShortage kind, std::size_t failing) {
        std::vector<std::int32_t> flags(files.size(), kFlagWord);
        char untouched = 'u';
        char* result = &untouched;
        SOutcome outcome;
        startShortage(kind, failing);
        try {
            const std::int32_t status = entryPoint()(files.data(), configuration.c_str(), flags.data(),
                                                     static_cast<std::int32_t>(files.size()), &result);
            outcome.end = status == 0 ? kSelection : kNone;
        } catch (...) {
            outcome.end = kException;
        }
        endShortage();
        isResultLeft = result == &untouched;
        if (!isResultLeft) {
            outcome.selection = result;
            std::free(result);
        }
        outcome.flags = flags;
        return outcome;
    }

    bool areOutputsLeft(const SOutcome& outcome) const {
        return isResultLeft && std::all_of(outcome.flags.begin(), outcome.flags.end(),
                                           [](std::int32_t flag) { return flag == kFlagWord; });
    }

private:
    std::string configuration;
    std::vector<const char*> files;
    bool isResultLeft = true;
};

bool isXmlLibraryTerminated() {
    // Its memory manager exists as long as it is set up.
    static void* const* const manager =
        static_cast<void* const*>(librarySymbol("_ZN11xercesc_3_216XMLPlatformUtils15fgMemoryManagerE"));
    return manager != nullptr && *manager == nullptr;
}

// Tries the shortages from `progress` on. Ends early when the XML library cannot be used any more in this
// process.
void tryShortages(EShortage kind, const SScenario& scenario, SShortageProgress& progress) {
    // Standard output receives the line that names a missing file, which is not tested here.
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    CCaller caller(scenario);
    const SOutcome usual = caller.call(kind, 0);
    const auto fail = [&](const char* fault) {
        std::strncpy(progress.fault, fault, sizeof progress.fault - 1);
        std::exit(0);
    };
    for (;; ++progress.number) {
        const SOutcome outcome = caller.call(kind, progress.number);
        if (!hasBeenShort()) {
            progress.isFinished = true;
            return;
        }
        if (!(outcome == usual) && outcome.end == kSelection) {
            fail("another selection than without the shortage");
        }
        if (outcome.end != kSelection && !caller.areOutputsLeft(outcome)) {
            fail("a failure that changed the outputs");
        }
        const std::size_t blocksLeft = blocksLeftByShortage();
        const bool isHalfSetUp = !isXmlLibraryTerminated();
        progress.halfSetUps += isHalfSetUp ? 1 : 0;
        const SOutcome next = caller.call(kind, 0);
        if (isHalfSetUp && next.end == kException && caller.areOutputsLeft(next)) {
            ++progress.lost;
            return;
        }
        if (isHalfSetUp && outcome.end != kException) {
            fail("the XML library is not terminated");
        }
        if (!isHalfSetUp && blocksLeft != 0) {
            fail("memory is lost");
        }
        if (!(next == usual)) {
            fail("the next call does not work");
        }
        if (!isXmlLibraryTerminated()) {
            fail("the next call does not terminate the XML library");
        }
        ++progress.survived;
    }
}

void expectSurvival(EShortage kind, const SScenario& scenario, std::size_t first) {
    const SShortageProgress progress =
        expectEachSurvives(first, [&](SShortageProgress& shared) { tryShortages(kind, scenario, shared); });
    std::printf("%zu shortages survived, the XML library half set up behind %zu, lost behind %zu\n",
                progress.survived, progress.halfSetUps, progress.lost);
    // Only the shortage at the converter of the local code page may end in that.
    EXPECT_LE(progress.lost, 1U);
}

// Tries each allocation of the call.
void expectSurvival(EShortage kind, const SScenario& scenario) {
    CCaller(scenario).call(kind, 0);
    expectSurvival(kind, scenario, 1);
}

// Tries only the allocations after the set-up of the XML library, since the set-up is the same for every
// call.
void expectSurvivalBehindSetUp(EShortage kind, const SScenario& scenario) {
    allocationsBeforeParser = 0;
    // The libraries under ours fill caches in the first call, so the allocations of a second one are counted.
    CCaller(scenario).call(kind, 0);
    allocationsBeforeParser = 0;
    CCaller(scenario).call(kind, 0);
    ASSERT_GT(allocationsBeforeParser, 0U);
    expectSurvival(kind, scenario, allocationsBeforeParser + 1);
}

class CShortage : public testing::Test {
protected:
    std::string holder(const std::string& name, const std::string& timeStamp, const std::string& further) {
        return folder.write(name, toXml(backup(timeStamp, {{kFirst, "enclosure A##" + further}})));
    }

    SScenario rotation() {
        const std::string foreign =
            folder.write("foreign.xml",
                         "<Node><timeStamp>3</timeStamp><Node><objid>L\xC3\xBCneburg &amp; "
                         "elsewhere</objid></Node></Node>");
        const std::string invalid =
            folder.write("invalid.xml", toXml(backup("4", {{"encZ##gone", "encZ##s"}})));
        return {kFirst + ";snapshot 1 with a long name;snapshot 2&encB##lun2;a;b",
                {holder("a.xml", "1", "snapshot 1 with a long name"), holder("b.xml", "2", "snapshot 2"),
                 foreign, invalid}};
    }

    SScenario withoutSelection() { return {kFirst, {holder("a.xml", "1", "snapshot 1")}}; }

    SScenario throwing() {
        const std::string malformed =
            folder.write("bad.xml", "<Node><objid>UDID##v##m##" + kFirst +
                                        "</objid><altobjid>an identifier without a prefix</altobjid></Node>");
        return {kFirst + ";snapshot 1", {holder("a.xml", "1", "snapshot 1"), malformed}};
    }

    SScenario withMissingFile() {
        return {kFirst + ";snapshot 1", {holder("a.xml", "1", "snapshot 1"), folder.path("missing.xml")}};
    }

    const std::string kFirst = "enclosure A##lun 1 with a long name";
    CTemporaryFolder folder;
};

TEST_F(CShortage, OfOneBlockIsSurvivedByAFirstBackup) {
    expectSurvival(EShortage::kOfOneBlock, {kFirst + ";snapshot 1 with a long name;snapshot 2", {}});
}

TEST_F(CShortage, OfOneBlockIsSurvivedByARotation) {
    expectSurvival(EShortage::kOfOneBlock, rotation());
}

TEST_F(CShortage, OfOneBlockIsSurvivedByACallWithoutASelection) {
    expectSurvivalBehindSetUp(EShortage::kOfOneBlock, withoutSelection());
}

TEST_F(CShortage, OfOneBlockIsSurvivedByACallThatThrows) {
    expectSurvivalBehindSetUp(EShortage::kOfOneBlock, throwing());
}

TEST_F(CShortage, OfOneBlockIsSurvivedByACallWithAMissingFile) {
    expectSurvivalBehindSetUp(EShortage::kOfOneBlock, withMissingFile());
}

TEST_F(CShortage, ThatLastsIsSurvivedByARotation) {
    expectSurvival(EShortage::kLasting, rotation());
}

TEST_F(CShortage, ThatLastsIsSurvivedByACallThatThrows) {
    expectSurvivalBehindSetUp(EShortage::kLasting, throwing());
}

}  // namespace
}  // namespace fi_test
