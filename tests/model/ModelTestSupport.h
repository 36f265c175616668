#pragma once

#include <string>
#include <vector>

#include "tests/model/Answer.h"
#include "tests/model/Document.h"

// Short ways to write documents and to look at traces in the model's tests.

namespace fi_model {

inline std::vector<std::string> textsOf(const fi_test::Trace& trace) {
    std::vector<std::string> texts;
    texts.reserve(trace.size());
    for (const fi_test::STraceLine& line : trace) {
        texts.push_back(line.text);
    }
    return texts;
}

inline SToken open(const std::string& name) {
    return {SToken::EKind::kOpen, name, ""};
}
inline SToken close(const std::string& name) {
    return {SToken::EKind::kClose, name, ""};
}
inline SToken text(const std::string& characters) {
    return {SToken::EKind::kText, characters, ""};
}

using Tokens = std::vector<SToken>;

inline Tokens joined(const std::vector<Tokens>& parts) {
    Tokens tokens;
    for (const Tokens& part : parts) {
        tokens.insert(tokens.end(), part.begin(), part.end());
    }
    return tokens;
}

inline Tokens element(const std::string& name, const Tokens& content) {
    return joined({{open(name)}, content, {close(name)}});
}

inline Tokens data(const std::string& name, const std::string& value) {
    return element(name, {text(value)});
}

}  // namespace fi_model
