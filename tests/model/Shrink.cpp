#include "tests/model/Shrink.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "tests/model/Answer.h"

namespace fi_model {
namespace {

using Kind = Token::Kind;

class Shrinker {
public:
    Shrinker(Call call, const Keeps& keeps) : call_(std::move(call)), keeps_(keeps) {}

    Call run() {
        bool smaller = true;
        while (smaller) {
            smaller = dropEntries();
            smaller = shortenConfiguration() || smaller;
            smaller = shrinkDocuments() || smaller;
            smaller = clearFlags() || smaller;
        }
        return call_;
    }

private:
    bool take(const Call& candidate) {
        if (!keeps_(candidate)) {
            return false;
        }
        call_ = candidate;
        return true;
    }

    bool dropEntries() {
        bool dropped = false;
        for (std::size_t index = call_.entries.size(); index-- > 0;) {
            dropped = take(withoutEntry(index)) || dropped;
        }
        return dropped;
    }

    [[nodiscard]] Call withoutEntry(std::size_t index) const {
        Call candidate = call_;
        const std::string name = candidate.entries[index].name;
        candidate.entries.erase(candidate.entries.begin() + static_cast<std::ptrdiff_t>(index));
        if (candidate.listSize > static_cast<std::int32_t>(index)) {
            --candidate.listSize;
        }
        bool stillNamed = false;
        for (const Entry& entry : candidate.entries) {
            stillNamed = stillNamed || entry.name == name;
        }
        if (!stillNamed) {
            candidate.files.erase(name);
        }
        return candidate;
    }

    bool shortenConfiguration() {
        return call_.configuration && shorten([](Call& call) -> std::string& { return *call.configuration; });
    }

    // Cuts ever smaller pieces out of a text of the call.
    template <typename Access>
    bool shorten(Access access) {
        bool shortened = false;
        for (std::size_t length = access(call_).size(); length > 0; length /= 2) {
            for (std::size_t position = 0; position + length <= access(call_).size();) {
                const bool taken =
                    isWhole(access(call_), position, length) && takeWithout(access, position, length);
                shortened = shortened || taken;
                position += taken ? 0 : length;
            }
        }
        return shortened;
    }

    // Half a character would make another kind of document.
    static bool isWhole(const std::string& text, std::size_t position, std::size_t length) {
        const auto isStart = [&](std::size_t index) {
            return index == text.size() || (text[index] & 0xC0) != 0x80;
        };
        return isStart(position) && isStart(position + length);
    }

    template <typename Access>
    bool takeWithout(Access access, std::size_t position, std::size_t length) {
        Call candidate = call_;
        access(candidate).erase(position, length);
        return take(candidate);
    }

    bool shrinkDocuments() {
        std::vector<std::string> names;
        for (const auto& [name, document] : call_.files) {
            names.push_back(name);
        }
        bool smaller = false;
        for (const std::string& name : names) {
            smaller = dropTokens(name) || smaller;
            smaller = shortenTokens(name) || smaller;
        }
        return smaller;
    }

    bool dropTokens(const std::string& name) {
        bool dropped = false;
        for (std::size_t index = 0; index < call_.files[name].tokens.size();) {
            const bool taken = take(withoutElement(name, index)) || take(unwrapped(name, index));
            dropped = dropped || taken;
            index += taken ? 0U : 1U;
        }
        return dropped;
    }

    // The end tag of a start tag, so that what is left stays well-formed where it was; of any
    // other token, and where there is no end tag, the token itself.
    static std::size_t lastOf(const std::vector<Token>& tokens, std::size_t index) {
        std::size_t depth = 0;
        for (std::size_t last = index; last < tokens.size(); ++last) {
            if (tokens[last].kind == Kind::kOpen) {
                ++depth;
            } else if (tokens[last].kind == Kind::kClose && depth > 0) {
                --depth;
            }
            if (depth == 0) {
                return last;
            }
        }
        return index;
    }

    [[nodiscard]] Call withoutElement(const std::string& name, std::size_t index) const {
        Call candidate = call_;
        std::vector<Token>& tokens = candidate.files[name].tokens;
        const auto last = static_cast<std::ptrdiff_t>(lastOf(tokens, index));
        tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(index), tokens.begin() + last + 1);
        return candidate;
    }

    [[nodiscard]] Call unwrapped(const std::string& name, std::size_t index) const {
        Call candidate = call_;
        std::vector<Token>& tokens = candidate.files[name].tokens;
        const std::size_t last = lastOf(tokens, index);
        if (last > index) {
            tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(last));
        }
        tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(index));
        return candidate;
    }

    bool shortenTokens(const std::string& name) {
        bool shortened = false;
        for (std::size_t index = 0; index < call_.files[name].tokens.size(); ++index) {
            const auto token = [&name, index](Call& call) -> Token& {
                return call.files[name].tokens[index];
            };
            if (!token(call_).attributes.empty()) {
                Call candidate = call_;
                token(candidate).attributes.clear();
                shortened = take(candidate) || shortened;
            }
            const Kind kind = token(call_).kind;
            if (kind == Kind::kText || kind == Kind::kCdata || kind == Kind::kComment) {
                shortened =
                    shorten([&](Call& call) -> std::string& { return token(call).text; }) || shortened;
            }
        }
        return shortened;
    }

    bool clearFlags() {
        bool cleared = false;
        for (std::size_t index = 0; index < call_.entries.size(); ++index) {
            if (call_.entries[index].flag != 0) {
                Call candidate = call_;
                candidate.entries[index].flag = 0;
                cleared = take(candidate) || cleared;
            }
        }
        return cleared;
    }

    Call call_;
    const Keeps& keeps_;
};

std::string describeFile(const Call& call, const std::string& name) {
    const auto file = call.files.find(name);
    if (file == call.files.end()) {
        return "(missing)";
    }
    return file->second.isDirectory ? "(folder)" : asLiteral(xmlText(file->second));
}

}  // namespace

Call shrink(Call call, const Keeps& keeps) {
    return Shrinker(std::move(call), keeps).run();
}

std::string describe(const Call& call) {
    std::string text = "call made by seed " + std::to_string(call.seed) + "\n";
    text += "  configuration: " + (call.configuration ? asLiteral(*call.configuration) : "null");
    text += "\n  list size: " + std::to_string(call.listSize);
    text += call.hasFlags ? "" : ", flags: null";
    text += call.hasResult ? "" : ", result: null";
    text += "\n";
    for (const Entry& entry : call.entries) {
        text += "  backup " + asLiteral(entry.name) + " flag " + std::to_string(entry.flag) +
                "\n    document: " + describeFile(call, entry.name) + "\n";
    }
    return text;
}

std::string explainDifference(const Call& call, const Subject& subject) {
    const auto differs = [&](const Call& candidate) {
        return !compare(candidate, subject).difference.empty();
    };
    const Call smallest = shrink(call, differs);
    return describe(smallest) + compare(smallest, subject).difference;
}

}  // namespace fi_model
