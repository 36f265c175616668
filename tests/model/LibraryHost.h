#ifndef FI_MODEL_LIBRARY_HOST_H
#define FI_MODEL_LIBRARY_HOST_H

#include <string>

#include "Answer.h"
#include "Call.h"

namespace fi_model {

// The host's side of a call: a folder for the documents, the trace facility and the standard
// output. While it lives, its folder is the process's working folder, so that documents have short
// names which are the same in every run. One at a time.
class LibraryHost {
public:
    LibraryHost();
    ~LibraryHost();
    LibraryHost(const LibraryHost&) = delete;
    LibraryHost& operator=(const LibraryHost&) = delete;

    // Writes the documents, calls the library, and removes the documents.
    Answer run(const Call& call);

private:
    std::string folder_;
    std::string formerFolder_;
    int captureFile_ = -1;
};

}  // namespace fi_model

#endif
