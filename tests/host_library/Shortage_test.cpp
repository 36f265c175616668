// What the host library does when memory runs out: each allocation fails in turn. Each time the run has its
// usual outcome, or ends because memory ran out and decides nothing, and the next run works.
//
// There is one exception. The XML library is set up once for the process, with a converter for the local code
// page. When memory runs out for that converter, all later runs fail.

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

#include "tests/contract/Shortage.h"
#include "tests/host_library/Fixture.h"

namespace fi_test {
namespace {

using MakeCall = std::function<HostCall()>;

bool isNothingDecided(const fi_rotation_call* call) {
    for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
        if (fi_rotation_call_backup_state(call, i) != FI_ROTATION_NO_STATE) {
            return false;
        }
    }
    return fi_rotation_call_selection(call) == nullptr && fi_rotation_call_configuration_count(call) == 0 &&
           fi_rotation_call_problem_count(call) == 0;
}

// What went wrong; empty when nothing did.
const char* faultOfShortage(EShortage kind, std::size_t number, fi_rotation_call* call,
                            const SHostAnswer& usual, SShortageProgress& progress) {
    errno = E2BIG;
    startShortage(kind, number);
    const fi_rotation_outcome outcome = fi_rotation_call_run(call);
    endShortage();
    if (errno != E2BIG) {
        return "errno was changed";
    }
    if (!hasBeenShort()) {
        progress.isFinished = true;
        return "";
    }
    // When the shortage keeps the XML library from being set up, the outcome is FI_ROTATION_FAILED.
    const bool isFailure = outcome == FI_ROTATION_OUT_OF_MEMORY || outcome == FI_ROTATION_FAILED;
    if (outcome != usual.outcome && !isFailure) {
        return "another outcome than without the shortage";
    }
    if (isFailure && !isNothingDecided(call)) {
        return "something is decided although memory ran out";
    }
    const SHostAnswer next = answerOf(call);
    if (next.outcome == FI_ROTATION_FAILED && isNothingDecided(call)) {
        ++progress.lost;
        return "";
    }
    ++progress.survived;
    return next == usual ? "" : "the next run has another answer";
}

// Tries the shortages in processes in which no call was run before. The usual answer is given, since a run to
// find it would set things up.
void expectSurvivalOfFirstRun(const MakeCall& makeCall, const SHostAnswer& usual) {
    const SShortageProgress progress = expectEachSurvives(1, [&](SShortageProgress& shared) {
        const HostCall call = makeCall();
        std::snprintf(shared.fault, sizeof shared.fault, "%s",
                      faultOfShortage(EShortage::kOfOneBlock, shared.number, call.get(), usual, shared));
    });
    std::printf("%zu shortages survived, no call can be run behind %zu\n", progress.survived, progress.lost);
    // Only the shortage at the converter of the local code page may end in that.
    EXPECT_LE(progress.lost, 1U);
}

// Tries all shortages in one process, in which a call was run before.
void expectSurvival(EShortage kind, const MakeCall& makeCall) {
    const SShortageProgress progress = expectEachSurvives(1, [&](SShortageProgress& shared) {
        const HostCall call = makeCall();
        const SHostAnswer usual = answerOf(call.get());
        for (; shared.fault[0] == '\0' && !shared.isFinished; ++shared.number) {
            std::snprintf(shared.fault, sizeof shared.fault, "%s",
                          faultOfShortage(kind, shared.number, call.get(), usual, shared));
        }
    });
    EXPECT_EQ(progress.lost, 0U);
}

void expectSurvival(const MakeCall& makeCall) {
    expectSurvival(EShortage::kOfOneBlock, makeCall);
    expectSurvival(EShortage::kLasting, makeCall);
}

class CHostLibraryShortage : public CHostLibraryTest {
protected:
    HostCall rotation() const {
        return newCall(
            "encA##lun1;snap1;snap2&encB##a device with a long name;snap1",
            {holder("a.xml", "snap1"), holder("b.xml", "snap2"),
             write("invalid.xml", documentOf("3", {{"encZ##gone and with a long name", "encZ##snap"}}))});
    }
    HostCall withoutSelection() const {
        HostCall call = newCall("encA##lun1;snap1");
        fi_rotation_call_add(call.get(), holder("a.xml", "snap1").c_str(), 1);
        return call;
    }
    static void trace(void* /*user*/, std::int32_t /*level*/, const char* /*text*/) {}
};

// This test comes first in this program, so that in each of its processes nothing is set up before. For the
// set-up no document is needed.
TEST_F(CHostLibraryShortage, OfOneBlockIsSurvivedByTheFirstRunOfAProcess) {
    SHostAnswer usual;
    usual.outcome = FI_ROTATION_SELECTED;
    usual.selection = "[encA##lun1;encA##snap1]";
    usual.message = "every configuration has a free target";
    expectSurvivalOfFirstRun([] { return newCall("encA##lun1;snap1"); }, usual);
}

TEST_F(CHostLibraryShortage, IsSurvivedByARotation) {
    expectSurvival([this] { return rotation(); });
}

TEST_F(CHostLibraryShortage, IsSurvivedByARotationWithReasonsAndANumberToKeep) {
    expectSurvival([this] {
        HostCall call = rotation();
        fi_rotation_call_ask_reasons(call.get(), 1);
        fi_rotation_call_keep_at_least(call.get(), 1);
        return call;
    });
}

TEST_F(CHostLibraryShortage, IsSurvivedByARotationThatIsTraced) {
    expectSurvival([this] {
        HostCall call = rotation();
        fi_rotation_call_set_trace(call.get(), 4, trace, nullptr);
        return call;
    });
}

TEST_F(CHostLibraryShortage, IsSurvivedByACallWithoutAFreeTarget) {
    expectSurvival([this] { return withoutSelection(); });
}

TEST_F(CHostLibraryShortage, IsSurvivedByACallThatIsRefused) {
    expectSurvival([this] {
        return newCall("encA##lun1;snap1&broken",
                       {path("missing.xml"), folder.path(""), write("cut.xml", "<Node><objid>"),
                        write("none.xml", "<x/>"), holder("a.xml", "snap1")});
    });
}

TEST_F(CHostLibraryShortage, IsSurvivedByACallWithAMalformedIdentifier) {
    expectSurvival([this] {
        return newCall(kConfiguration,
                       {holder("a.xml", "snap1"),
                        write("bad.xml",
                              "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>an identifier "
                              "without a prefix</altobjid></Node>")});
    });
}

TEST_F(CHostLibraryShortage, MakesANewCallANullPointer) {
    std::size_t number = 0;
    do {
        startShortage(EShortage::kOfOneBlock, ++number);
        fi_rotation_call* const call = fi_rotation_call_new("encA##a device with a long name;snap1");
        endShortage();
        EXPECT_EQ(call == nullptr, hasBeenShort()) << number;
        fi_rotation_call_free(call);
    } while (hasBeenShort());
    EXPECT_GT(number, 1U);
}

TEST_F(CHostLibraryShortage, WhileABackupIsAddedEndsEveryLaterRun) {
    const std::string file = holder("a file with a long name.xml", "snap1");
    std::size_t number = 0;
    do {
        const HostCall call = newCall(kConfiguration);
        startShortage(EShortage::kOfOneBlock, ++number);
        const std::int32_t index = fi_rotation_call_add(call.get(), file.c_str(), 0);
        endShortage();
        const bool isShort = hasBeenShort();
        EXPECT_EQ(index, isShort ? -1 : 0);
        // The call stays incomplete, whatever is added later.
        EXPECT_EQ(fi_rotation_call_add(call.get(), holder("b.xml", "snap2").c_str(), 0), isShort ? 0 : 1);
        EXPECT_EQ(fi_rotation_call_run(call.get()),
                  isShort ? FI_ROTATION_OUT_OF_MEMORY : FI_ROTATION_SELECTED);
        startShortage(EShortage::kOfOneBlock, 0);
        endShortage();
        if (!isShort) {
            break;
        }
    } while (number < 100);
    EXPECT_GT(number, 1U);
    EXPECT_LT(number, 100U);
}

}  // namespace
}  // namespace fi_test
