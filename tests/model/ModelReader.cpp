#include "tests/model/ModelReader.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace fi_model {
namespace {

using Kind = Token::Kind;

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

class Reader {
public:
    std::vector<Event> read(const std::vector<Token>& tokens) {
        for (std::size_t index = 0; index < tokens.size() && !failed_; ++index) {
            read(tokens[index]);
        }
        if (!failed_ && (!seenElement_ || !open_.empty())) {
            fail();
        }
        return events_;
    }

private:
    void report(Event::Kind kind, const std::string& text = "") { events_.push_back({kind, text}); }

    void fail() {
        failed_ = true;
        report(Event::Kind::kFatalError);
    }

    void endRun() {
        const std::string piece = referenced_ + withLineFeeds(run_);
        referenced_.clear();
        run_.clear();
        if (!piece.empty()) {
            report(Event::Kind::kCharacters, piece);
        }
    }

    void read(const Token& token) {
        switch (token.kind) {
            case Kind::kText:
                return text(token.text);
            case Kind::kNulLine:
                return text("\n");
            case Kind::kReference:
                return reference(token.text);
            case Kind::kCdata:
                return cdata(token.text);
            case Kind::kOpen:
                return open(token.text);
            case Kind::kClose:
                return close(token.text);
            case Kind::kEmpty:
                open(token.text);
                return failed_ ? void() : close(token.text);
            case Kind::kDoctypeTwice:
                hasHostEntity_ = true;
                return report(Event::Kind::kWarning);
            case Kind::kDoctype:
                hasHostEntity_ = true;
                return;
            case Kind::kComment:
            case Kind::kInstruction:
                return endRun();
            case Kind::kDamage:
            case Kind::kInvalidByte:
                return fail();
            case Kind::kDeclaration:
                return;
        }
    }

    void text(const std::string& characters) {
        if (!open_.empty()) {
            run_ += characters;
        } else if (!isWhiteSpace(characters)) {
            fail();
        }
    }

    // A reference to a character begins a piece, together with the text after it; an entity of the
    // document's own is a piece by itself.
    void reference(const std::string& name) {
        if (open_.empty() || (name == "host" && !hasHostEntity_)) {
            return fail();
        }
        endRun();
        if (name == "host") {
            return report(Event::Kind::kCharacters, kHostEntityText);
        }
        referenced_ = referencedText(name);
    }

    void cdata(const std::string& characters) {
        if (open_.empty()) {
            return fail();
        }
        endRun();
        report(Event::Kind::kCharacters, withLineFeeds(characters));
    }

    void open(const std::string& name) {
        if (open_.empty() && seenElement_) {
            return fail();
        }
        endRun();
        seenElement_ = true;
        open_.push_back(name);
        report(Event::Kind::kStart, name);
    }

    void close(const std::string& name) {
        if (open_.empty() || open_.back() != name) {
            return fail();
        }
        endRun();
        open_.pop_back();
        report(Event::Kind::kEnd, name);
    }

    std::vector<Event> events_;
    std::vector<std::string> open_;
    std::string referenced_;
    std::string run_;
    bool seenElement_ = false;
    bool hasHostEntity_ = false;
    bool failed_ = false;
};

bool hasInvalidByte(const Document& document) {
    return std::any_of(document.tokens.begin(), document.tokens.end(),
                       [](const Token& token) { return token.kind == Kind::kInvalidByte; });
}

}  // namespace

std::vector<Event> readEvents(const Document& document) {
    // The reader decodes a whole block before it reports anything of it.
    if (hasInvalidByte(document)) {
        return {{Event::Kind::kFatalError, ""}};
    }
    return Reader().read(document.tokens);
}

}  // namespace fi_model
