#pragma once

#include <string>

class CCmnStringTool {
public:
    // Returns `input` with the five escapes &#39; &quot; &gt; &lt; &amp; replaced by the characters
    // that they stand for. Every other reference stays as it is. "&amp;" is replaced last, so a
    // text that was escaped twice is decoded once. The result ends at the first NUL byte of
    // `input`.
    static std::string convertFromXmlSpecialCharacters(const std::string& input);
};
