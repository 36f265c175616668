#pragma once

#include "tests/model/Answer.h"
#include "tests/model/Call.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceRecorder.h"

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

    // The formats that the library has traced with, each with its level.
    const fi_test::Formats& formats() const { return formats_; }

private:
    fi_test::TemporaryFolder folder_;
    int captureFile_ = -1;
    fi_test::Formats formats_;
};

}  // namespace fi_model
