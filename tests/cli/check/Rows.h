#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/check/hazard.h"

// Inputs with a hazard each, and inputs that are nearly the same and do not have it.
namespace fi_test {

struct SCheckedDocument {
    // Within a folder of its own, unless it is absolute.
    std::string name;
    // Nothing for one that is not written.
    std::optional<std::string> content;
};

struct SCheckedCall {
    std::string configuration;
    std::vector<SCheckedDocument> documents;
};

struct SCheckRow {
    std::string description;
    fi_rotate::EHazard hazard;
    SCheckedCall call;
    // Every finding, as NAME:LINE:COLUMN: SEVERITY: TEXT [HAZARD]; NAME is "config" or a document's. Behind
    // it " <- HAZARD of NAME" if it follows from that or repeats it.
    std::vector<std::string> findings;
    SCheckedCall neighbour;
    // Hazards that the neighbour has none the less, in order.
    std::vector<std::string> neighbourHazards = {};
};

std::vector<SCheckRow> configurationRows();
std::vector<SCheckRow> documentRows();
std::vector<SCheckRow> deviceRows();
std::vector<SCheckRow> callRows();
std::vector<SCheckRow> consequenceRows();

}  // namespace fi_test
