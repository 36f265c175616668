#pragma once

#include <memory>

// Holds the XML library initialised for a scope. The library counts its initialisations, and the first
// costs far more than parsing a small document; while one is held, those that each parser makes for
// itself cost nothing.
//
// Unless the host holds the library itself, it gets its memory from here, so that a shortage of memory
// neither ends the process nor leaves anything behind.
//
// In the host library the first scope holds it for the rest of the process.
class CFiXmlLibrary {
public:
    // An XMLException is dropped, and nothing is held then: the parsers meet it again and deal with it. What
    // else goes wrong is thrown, a failure for which the library would end the process as a
    // std::runtime_error. The set-up is then half done; the next of these objects undoes it first, and
    // throws too as long as there is no memory for that. Without a converter for the local code page the
    // library is lost for the process, and this throws ever after.
    CFiXmlLibrary();
    ~CFiXmlLibrary();
    CFiXmlLibrary(const CFiXmlLibrary&) = delete;
    CFiXmlLibrary& operator=(const CFiXmlLibrary&) = delete;

private:
    struct SSurroundings;
    struct SProcess;

    static void freeWhatWasLeft();
    void finishHalfSetUp();
    void initialize();
    void terminate();

    std::unique_ptr<SSurroundings> surroundings;
};
