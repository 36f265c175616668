#include "fuzz/Document.h"

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/require.h"

CDocument::CDocument(const std::string& content) : descriptor(memfd_create("document", 0)) {
    require(descriptor >= 0, "a file in memory can be made");
    const ssize_t written = write(descriptor, content.data(), content.size());
    require(written == static_cast<ssize_t>(content.size()), "a file in memory can be written");
}

CDocument::~CDocument() {
    if (descriptor >= 0) {
        close(descriptor);
    }
}

std::string CDocument::name() const {
    return "/proc/self/fd/" + std::to_string(descriptor);
}
