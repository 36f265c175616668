#pragma once

#include <string>
#include <vector>

#include "tests/model/Document.h"
#include "tests/model/Random.h"

namespace fi_model {

// objid and altobjid of one Node.
struct SPlannedPair {
    std::string objid;
    std::string altobjid;
};

// The document of an earlier backup that used these devices. Most documents say so in an ordinary
// way; the others try what a document may or may not hold.
SDocument makeDocument(const std::vector<SPlannedPair>& pairs, const std::string& timeStamp, CRandom& random);

}  // namespace fi_model
