#include "fiid/CFiFiidLoader.h"

#include <stdio_ext.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>

#include "common/CFiDocumentLimits.h"
#include "common/CFiFileState.h"
#include "fiid/CFiFiidHandler.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "fiid/CFiXmlLimits.h"
#include "fiid/entry_exit_trace.h"
#include "fiid/host_library.h"

namespace {

// The loader's entry and exit lines carry no name.
constexpr const char* kNoName = "";

constexpr std::size_t kMostContent = kHardenedXml ? CFiDocumentLimits::kMostBytes : SIZE_MAX;

constexpr const char* kOpenMode = kInHostLibrary ? "re" : "r";

struct SFileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Hands the trees of a handler to the loader at the end of the scope, also when an exception ends it: a tree
// that is in no list would never be freed. The loader's list must have room for one more root, because a
// destructor must not fail to allocate it.
class CRootKeeper {
public:
    CRootKeeper(const CFiFiidHandler& handlerOfDocument, CFiFiidLoader& loaderOfCall)
        : handler(handlerOfDocument), loader(loaderOfCall) {}
    ~CRootKeeper() {
        if (handler.root != nullptr) {
            loader.nodes.push_back(handler.root);
        }
        // GCOVR_EXCL_START: in the host library only.
        if (handler.replaced != nullptr) {
            CFiFiidNode* first = handler.replaced;
            while (first->parent != nullptr) {
                first = first->parent;
            }
            first->parent = loader.replaced.front();
            loader.replaced.front() = handler.replaced;
        }
        // GCOVR_EXCL_STOP
    }
    CRootKeeper(const CRootKeeper&) = delete;
    CRootKeeper& operator=(const CRootKeeper&) = delete;

private:
    const CFiFiidHandler& handler;
    CFiFiidLoader& loader;
};

// GCOVR_EXCL_START: in the host library only.
// Traces which file was read, in which state, and whether to its end. It asks the open stream, because the
// name may be that of another file by now.
[[maybe_unused]] void traceWhatWasRead(std::FILE* stream) {
    struct stat seen {};
    const bool isWhole = std::ferror(stream) == 0 && fstat(fileno(stream), &seen) == 0;
    mofi_tracelog(kTraceProgress, "CFiFiidLoader::load : read [%s] whole [%d]",
                  CFiFileState(seen).state.c_str(), isWhole ? 1 : 0);
}
// GCOVR_EXCL_STOP

void parseDocument(const std::string& content, CFiFiidLoader& loader) {
    // The parser comes first and goes last: the handler allocates through the XML library, which the parser
    // keeps initialised.
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    const CRootKeeper keeper(handler, loader);
    parser.setHandler(&handler);
    parser.parse(content);
}

}  // namespace

// `file` is a copy because the signature of this operation is fixed.
std::int32_t CFiFiidLoader::load(std::string file, std::string& content) const {
    content.clear();
    traceEntering(kNoName);

    std::unique_ptr<std::FILE, SFileClose> stream(fopen64(file.c_str(), kOpenMode));
    if (stream == nullptr && errno == ENOMEM) {
        // The file may well be there. If the call went on without it and the files after it, their targets
        // would be taken for free.
        throw std::bad_alloc();
    }
    if (stream == nullptr) {
        if constexpr (!kInHostLibrary) {
            std::printf("ERROR: failed to load FIID file [%s]\n", file.c_str());
        }
        mofi_tracelog(kTraceFailure, "CFiFiidLoader::load: ERROR: failed to load FIID file");
        traceExiting(kNoName);
        return kCannotOpen;
    }

    // No other thread uses the stream, so it need not be locked for every line.
    __fsetlocking(stream.get(), FSETLOCKING_BYCALLER);
    char piece[2048];
    // A document beyond the limit is not parsed, so it need not be read to its end.
    while (content.size() <= kMostContent && std::fgets(piece, sizeof piece, stream.get()) != nullptr) {
        content += piece;
    }
    if constexpr (kInHostLibrary) {
        traceWhatWasRead(stream.get());
    }
    stream.reset();
    traceExiting(kNoName);
    return kLoaded;
}

std::int32_t CFiFiidLoader::import(const std::vector<std::string>& names) {
    traceEntering(kNoName);
    files = names;
    nodes.reserve(nodes.size() + names.size());

    std::string content;
    for (const std::string& name : names) {
        const std::int32_t status = load(name, content);
        if (status != kLoaded) {
            traceExiting(kNoName);
            return status;
        }
        const std::size_t before = nodes.size();
        parseDocument(content, *this);
        if (nodes.size() > before) {
            nodes.back()->fiidFile = name;
        }
    }
    traceExiting(kNoName);
    return kLoaded;
}
