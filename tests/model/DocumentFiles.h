#pragma once

#include <map>
#include <string>

#include "tests/model/Document.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_model {

// Writes the documents of one call and removes them at the end of the scope. A document that stands for a
// folder becomes one.
class CDocumentFiles {
public:
    CDocumentFiles(const fi_test::CTemporaryFolder& place, const std::map<std::string, SDocument>& contents);
    ~CDocumentFiles();
    CDocumentFiles(const CDocumentFiles&) = delete;
    CDocumentFiles& operator=(const CDocumentFiles&) = delete;

private:
    const fi_test::CTemporaryFolder& folder;
    const std::map<std::string, SDocument>& documents;
};

}  // namespace fi_model
