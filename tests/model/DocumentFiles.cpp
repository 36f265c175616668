#include "tests/model/DocumentFiles.h"

#include <unistd.h>

namespace fi_model {

CDocumentFiles::CDocumentFiles(const fi_test::CTemporaryFolder& place,
                               const std::map<std::string, SDocument>& contents)
    : folder(place), documents(contents) {
    for (const auto& [name, document] : documents) {
        if (!document.isDirectory) {
            folder.write(name, xmlText(document));
        }
    }
}

CDocumentFiles::~CDocumentFiles() {
    for (const auto& [name, document] : documents) {
        if (!document.isDirectory) {
            unlink(folder.path(name).c_str());
        }
    }
}

}  // namespace fi_model
