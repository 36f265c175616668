#pragma once

#include <memory>

// Holds the XML library initialised for a scope. The XML library counts its initialisations, and the first
// costs far more than parsing a small document; while one is held, those that each parser makes for
// itself cost nothing.
//
// Unless the host holds the XML library itself, that library gets its memory from here, so that a shortage of
// memory neither ends the process nor leaves anything behind.
//
// In the host library the first scope holds the XML library for the rest of the process.
class CFiXmlLibrary {
public:
    // Throws std::bad_alloc or the XML library's OutOfMemoryException when memory runs out, and
    // std::runtime_error where the XML library would otherwise end the process (its panic).
    //
    // When the set-up was left half done, the next of these objects completes and terminates it first, and
    // throws if memory does not suffice for that. Only if the converter for the local code page is missing,
    // the set-up cannot be completed: each further object in the process then throws std::runtime_error.
    //
    // An XMLException is dropped in the first library, and nothing is held then: its parsers set the XML
    // library up themselves, meet the exception again and deal with it. In the host library it becomes a
    // std::runtime_error.
    CFiXmlLibrary();
    ~CFiXmlLibrary();
    CFiXmlLibrary(const CFiXmlLibrary&) = delete;
    CFiXmlLibrary& operator=(const CFiXmlLibrary&) = delete;

private:
    struct SSurroundings;
    struct SProcess;

    static void freeWhatWasLeft();
    void undoHalfSetUp();
    void initialize();
    void terminate();

    std::unique_ptr<SSurroundings> surroundings;
};
