#pragma once

// Holds the XML library initialised for a scope. The library counts its initialisations, and the first
// costs far more than parsing a small document; while one is held, those that each parser makes for
// itself cost nothing.
class CFiXmlLibrary {
public:
    // A failure is dropped: the parsers meet it again and deal with it.
    CFiXmlLibrary();
    ~CFiXmlLibrary();
    CFiXmlLibrary(const CFiXmlLibrary&) = delete;
    CFiXmlLibrary& operator=(const CFiXmlLibrary&) = delete;
};
