#pragma once

#include <string>

#include "tests/model/Answer.h"
#include "tests/model/Outcome.h"

namespace fi_model {

// What the model writes down on its way through a call.
struct SJournal {
    fi_test::Trace trace;
    std::string standardOutput;
    CTally tally;

    void failure(const std::string& text) { trace.push_back({3, text}); }
    void progress(const std::string& text) { trace.push_back({4, text}); }
    void entering(const std::string& operation) { progress("Entering " + operation + "\n"); }
    void exiting(const std::string& operation) { progress("Exiting " + operation + "\n"); }
    void note(EOutcome outcome) { tally.note(outcome); }
    void noteIf(bool happened, EOutcome outcome) {
        if (happened) {
            tally.note(outcome);
        }
    }
};

}  // namespace fi_model
