#include "tests/model/ModelReader.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace fi_model {
namespace {

using EKind = SToken::EKind;

bool isWhiteSpace(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

std::string withLineFeeds(const std::string& text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool beforeLineFeed = index + 1 < text.size() && text[index + 1] == '\n';
        if (text[index] != '\r') {
            result += text[index];
        } else if (!beforeLineFeed) {
            result += '\n';
        }
    }
    return result;
}

std::string numberedCharacter(const std::string& digits, int base) {
    const long code = std::stol(digits, nullptr, base);
    if (code < 0x80) {
        return std::string(1, static_cast<char>(code));
    }
    return {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
}

std::string referencedText(const std::string& name) {
    static const std::map<std::string, std::string> kPredefined = {
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}};
    const auto predefined = kPredefined.find(name);
    if (predefined != kPredefined.end()) {
        return predefined->second;
    }
    const bool isHexadecimal = name.rfind("#x", 0) == 0;
    return isHexadecimal ? numberedCharacter(name.substr(2), 16) : numberedCharacter(name.substr(1), 10);
}

class CReader {
public:
    std::vector<SEvent> read(const std::vector<SToken>& tokens) {
        for (std::size_t index = 0; index < tokens.size() && !failed; ++index) {
            read(tokens[index]);
        }
        if (!failed && (!seenElement || !openElements.empty())) {
            fail();
        }
        return events;
    }

private:
    void report(SEvent::EKind kind, const std::string& text = "") { events.push_back({kind, text}); }

    void fail() {
        failed = true;
        report(SEvent::EKind::kFatalError);
    }

    void endRun() {
        const std::string piece = referenced + withLineFeeds(run);
        referenced.clear();
        run.clear();
        if (!piece.empty()) {
            report(SEvent::EKind::kCharacters, piece);
        }
    }

    void read(const SToken& token) {
        switch (token.kind) {
            case EKind::kText:
                return text(token.text);
            case EKind::kNulLine:
                return text("\n");
            case EKind::kReference:
                return reference(token.text);
            case EKind::kCdata:
                return cdata(token.text);
            case EKind::kOpen:
                return open(token.text);
            case EKind::kClose:
                return close(token.text);
            case EKind::kEmpty:
                open(token.text);
                return failed ? void() : close(token.text);
            case EKind::kDoctypeTwice:
                hasHostEntity = true;
                return report(SEvent::EKind::kWarning);
            case EKind::kDoctype:
                hasHostEntity = true;
                return;
            case EKind::kComment:
            case EKind::kInstruction:
                return endRun();
            case EKind::kDamage:
            case EKind::kInvalidByte:
                return fail();
            case EKind::kDeclaration:
                return;
        }
    }

    void text(const std::string& characters) {
        if (!openElements.empty()) {
            run += characters;
        } else if (!isWhiteSpace(characters)) {
            fail();
        }
    }

    // The character of a reference and the text after it are one piece. An entity that the document declares
    // is a piece by itself.
    void reference(const std::string& name) {
        if (openElements.empty() || (name == "host" && !hasHostEntity)) {
            return fail();
        }
        endRun();
        if (name == "host") {
            return report(SEvent::EKind::kCharacters, kHostEntityText);
        }
        referenced = referencedText(name);
    }

    void cdata(const std::string& characters) {
        if (openElements.empty()) {
            return fail();
        }
        endRun();
        report(SEvent::EKind::kCharacters, withLineFeeds(characters));
    }

    void open(const std::string& name) {
        if (openElements.empty() && seenElement) {
            return fail();
        }
        endRun();
        seenElement = true;
        openElements.push_back(name);
        report(SEvent::EKind::kStart, name);
    }

    void close(const std::string& name) {
        if (openElements.empty() || openElements.back() != name) {
            return fail();
        }
        endRun();
        openElements.pop_back();
        report(SEvent::EKind::kEnd, name);
    }

    std::vector<SEvent> events;
    std::vector<std::string> openElements;
    std::string referenced;
    std::string run;
    bool seenElement = false;
    bool hasHostEntity = false;
    bool failed = false;
};

bool hasInvalidByte(const SDocument& document) {
    return std::any_of(document.tokens.begin(), document.tokens.end(),
                       [](const SToken& token) { return token.kind == EKind::kInvalidByte; });
}

}  // namespace

std::vector<SEvent> readEvents(const SDocument& document) {
    // The reader decodes a whole block before it reports anything of it.
    if (hasInvalidByte(document)) {
        return {{SEvent::EKind::kFatalError, ""}};
    }
    return CReader().read(document.tokens);
}

}  // namespace fi_model
