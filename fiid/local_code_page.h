#pragma once

#include <string>

#include <xercesc/util/XercesDefs.hpp>

// Sets `result` to `text`, up to its NUL, in the local code page. Returns false, and leaves `result` as it
// was, when the conversion gives nothing.
//
// ASCII is the same in every local code page that the XML library offers, and nearly all of a document is
// ASCII, so it is copied; everything else goes through the library's transcoder, which costs more than
// parsing the document does.
bool toLocalCodePage(const XMLCh* text, std::string& result);
