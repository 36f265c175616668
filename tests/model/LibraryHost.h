#pragma once

#include <string>
#include <unordered_set>

#include "tests/model/Answer.h"
#include "tests/model/Call.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceRecorder.h"

namespace fi_model {

// The host's side of a call: a folder for the documents, the trace facility and the standard output. While a
// call runs, the folder is the process's working folder, so that documents have short names that are the same
// in every run. Only one may exist at a time.
class CLibraryHost {
public:
    CLibraryHost();
    ~CLibraryHost();
    CLibraryHost(const CLibraryHost&) = delete;
    CLibraryHost& operator=(const CLibraryHost&) = delete;

    // Writes the documents, calls the library, and removes the documents.
    SAnswer run(const SCall& call);

    // The same, for calls in which a name always stands for the same document: writes those that it has not
    // written before, and leaves them for later calls.
    SAnswer runOnKeptFiles(const SCall& call);

    // The formats that the library has traced with, each with its level.
    const fi_test::Formats& formats() const { return seenFormats; }

private:
    SAnswer answer(const SCall& call);

    fi_test::CTemporaryFolder folder;
    std::unordered_set<std::string> keptFiles;
    int captureFile = -1;
    fi_test::Formats seenFormats;
};

}  // namespace fi_model
