#pragma once

#include <map>
#include <string>

#include "tests/model/Document.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_model {

// The documents of one call, there while the call runs: by name what each holds, but for those that stand for
// a folder.
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
