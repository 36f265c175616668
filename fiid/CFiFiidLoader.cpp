#include "fiid/CFiFiidLoader.h"

#include <stdio_ext.h>

#include <cstdio>
#include <memory>

#include "fiid/CFiFiidHandler.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "fiid/entry_exit_trace.h"

namespace {

// The loader's entry and exit lines carry no name.
constexpr const char* kNoName = "";

struct SFileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// The root of the document's tree; null when it holds no Node.
CFiFiidNode* parseDocument(const std::string& content) {
    // The handler allocates through the XML library, which lives as long as the parser.
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    parser.setHandler(&handler);
    parser.parse(content);
    return handler.root;
}

}  // namespace

std::int32_t CFiFiidLoader::load(std::string file, std::string& content) const {
    content.clear();
    traceEntering(kNoName);

    std::unique_ptr<std::FILE, SFileClose> stream(fopen64(file.c_str(), "r"));
    if (stream == nullptr) {
        std::printf("ERROR: failed to load FIID file [%s]\n", file.c_str());
        mofi_tracelog(kTraceFailure, "CFiFiidLoader::load: ERROR: failed to load FIID file");
        traceExiting(kNoName);
        return kCannotOpen;
    }

    // Nobody else knows the stream, so its lock, once a line, is saved.
    __fsetlocking(stream.get(), FSETLOCKING_BYCALLER);
    char piece[2048];
    while (std::fgets(piece, sizeof piece, stream.get()) != nullptr) {
        content += piece;
    }
    stream.reset();
    traceExiting(kNoName);
    return kLoaded;
}

std::int32_t CFiFiidLoader::import(const std::vector<std::string>& names) {
    traceEntering(kNoName);
    files = names;
    // A root must never be left without an owner's list because the list could not grow.
    nodes.reserve(nodes.size() + names.size());

    std::string content;
    for (const std::string& name : names) {
        const std::int32_t status = load(name, content);
        if (status != kLoaded) {
            traceExiting(kNoName);
            return status;
        }
        if (CFiFiidNode* root = parseDocument(content)) {
            nodes.push_back(root);
            root->fiidFile = name;
        }
    }
    traceExiting(kNoName);
    return kLoaded;
}
