#pragma once

#include <cstdint>
#include <string>
#include <vector>

class CFiFiidNode;

// Reads the documents of earlier backups into trees. Used once: a second import appends.
class CFiFiidLoader {
public:
    enum EStatus : std::int32_t {
        kLoaded = 0,
        kCannotOpen = 6,
    };

    // Reads `file` whole into `content`, each line up to its first NUL. A file that cannot be opened is
    // reported in the trace, by the first library on standard output too, and leaves `content` empty; when
    // it cannot be opened because memory ran out, std::bad_alloc is thrown. A read error ends the text
    // silently.
    std::int32_t load(std::string file, std::string& content) const;

    // Loads `names` in order and appends the root of each document to `nodes`, named after its
    // file; a document without a Node adds nothing, a malformed one the tree built before the
    // fault. Stops at the first file that cannot be opened and returns its status.
    std::int32_t import(const std::vector<std::string>& names);

    // Roots of the loaded documents in the order of import. Not owned: the loader deletes none of them. A
    // CFiTreeDeleter does, which refers to this vector and so must end before the loader.
    std::vector<CFiFiidNode*> nodes;
    // Used in the host library only. Its one element is the first of a list of roots that a later root of
    // their document replaced, or null; the next in the list is the `parent` of each. A vector, because
    // CFiTreeDeleter deletes what a vector holds, as it does with these.
    std::vector<CFiFiidNode*> replaced{nullptr};
    // The list last given to import.
    std::vector<std::string> files;
};
