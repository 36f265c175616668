#ifndef FI_MODEL_LIBRARY_HOST_H
#define FI_MODEL_LIBRARY_HOST_H

#include "tests/model/Answer.h"
#include "tests/model/Call.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_model {

// The host's side of a call: a folder for the documents, the trace facility and the standard output. While a
// call runs, the folder is the process's working folder, so that documents have short names which are the
// same in every run. One at a time.
class LibraryHost {
public:
    LibraryHost();
    ~LibraryHost();
    LibraryHost(const LibraryHost&) = delete;
    LibraryHost& operator=(const LibraryHost&) = delete;

    // Writes the documents, calls the library, and removes the documents.
    Answer run(const Call& call);

private:
    fi_test::TemporaryFolder folder_;
    int captureFile_ = -1;
};

}  // namespace fi_model

#endif
