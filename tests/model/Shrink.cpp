#include "tests/model/Shrink.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "tests/model/Answer.h"

namespace fi_model {
namespace {

using EKind = SToken::EKind;

class CShrinker {
public:
    CShrinker(SCall large, const Keeps& condition) : call(std::move(large)), keeps(condition) {}

    SCall run() {
        bool smaller = true;
        while (smaller) {
            smaller = dropEntries();
            smaller = shortenConfiguration() || smaller;
            smaller = shrinkDocuments() || smaller;
            smaller = clearFlags() || smaller;
        }
        return call;
    }

private:
    bool take(const SCall& candidate) {
        if (!keeps(candidate)) {
            return false;
        }
        call = candidate;
        return true;
    }

    bool dropEntries() {
        bool dropped = false;
        for (std::size_t index = call.entries.size(); index-- > 0;) {
            dropped = take(withoutEntry(index)) || dropped;
        }
        return dropped;
    }

    [[nodiscard]] SCall withoutEntry(std::size_t index) const {
        SCall candidate = call;
        const std::string name = candidate.entries[index].name;
        candidate.entries.erase(candidate.entries.begin() + static_cast<std::ptrdiff_t>(index));
        if (candidate.listSize > static_cast<std::int32_t>(index)) {
            --candidate.listSize;
        }
        bool stillNamed = false;
        for (const SEntry& entry : candidate.entries) {
            stillNamed = stillNamed || entry.name == name;
        }
        if (!stillNamed) {
            candidate.files.erase(name);
        }
        return candidate;
    }

    bool shortenConfiguration() {
        return call.configuration && shorten([](SCall& any) -> std::string& { return *any.configuration; });
    }

    // Cuts ever smaller pieces out of a text of the call.
    template <typename Access>
    bool shorten(Access access) {
        bool shortened = false;
        for (std::size_t length = access(call).size(); length > 0; length /= 2) {
            for (std::size_t position = 0; position + length <= access(call).size();) {
                const bool taken =
                    isWhole(access(call), position, length) && takeWithout(access, position, length);
                shortened = shortened || taken;
                position += taken ? 0 : length;
            }
        }
        return shortened;
    }

    // Whether the piece begins and ends between characters. A cut inside a character would make the document
    // ill-formed.
    static bool isWhole(const std::string& text, std::size_t position, std::size_t length) {
        const auto isStart = [&](std::size_t index) {
            return index == text.size() || (text[index] & 0xC0) != 0x80;
        };
        return isStart(position) && isStart(position + length);
    }

    template <typename Access>
    bool takeWithout(Access access, std::size_t position, std::size_t length) {
        SCall candidate = call;
        access(candidate).erase(position, length);
        return take(candidate);
    }

    bool shrinkDocuments() {
        std::vector<std::string> names;
        for (const auto& [name, document] : call.files) {
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
        for (std::size_t index = 0; index < call.files[name].tokens.size();) {
            const bool taken = take(withoutElement(name, index)) || take(unwrapped(name, index));
            dropped = dropped || taken;
            index += taken ? 0U : 1U;
        }
        return dropped;
    }

    // The place of the end tag that belongs to a start tag, so that both are removed together and the
    // document stays well-formed. For any other token, and without an end tag, the place of the token itself.
    static std::size_t lastOf(const std::vector<SToken>& tokens, std::size_t index) {
        std::size_t depth = 0;
        for (std::size_t last = index; last < tokens.size(); ++last) {
            if (tokens[last].kind == EKind::kOpen) {
                ++depth;
            } else if (tokens[last].kind == EKind::kClose && depth > 0) {
                --depth;
            }
            if (depth == 0) {
                return last;
            }
        }
        return index;
    }

    [[nodiscard]] SCall withoutElement(const std::string& name, std::size_t index) const {
        SCall candidate = call;
        std::vector<SToken>& tokens = candidate.files[name].tokens;
        const auto last = static_cast<std::ptrdiff_t>(lastOf(tokens, index));
        tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(index), tokens.begin() + last + 1);
        return candidate;
    }

    [[nodiscard]] SCall unwrapped(const std::string& name, std::size_t index) const {
        SCall candidate = call;
        std::vector<SToken>& tokens = candidate.files[name].tokens;
        const std::size_t last = lastOf(tokens, index);
        if (last > index) {
            tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(last));
        }
        tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(index));
        return candidate;
    }

    bool shortenTokens(const std::string& name) {
        bool shortened = false;
        for (std::size_t index = 0; index < call.files[name].tokens.size(); ++index) {
            const auto token = [&name, index](SCall& any) -> SToken& {
                return any.files[name].tokens[index];
            };
            if (!token(call).attributes.empty()) {
                SCall candidate = call;
                token(candidate).attributes.clear();
                shortened = take(candidate) || shortened;
            }
            const EKind kind = token(call).kind;
            if (kind == EKind::kText || kind == EKind::kCdata || kind == EKind::kComment) {
                shortened = shorten([&](SCall& any) -> std::string& { return token(any).text; }) || shortened;
            }
        }
        return shortened;
    }

    bool clearFlags() {
        bool cleared = false;
        for (std::size_t index = 0; index < call.entries.size(); ++index) {
            if (call.entries[index].flag != 0) {
                SCall candidate = call;
                candidate.entries[index].flag = 0;
                cleared = take(candidate) || cleared;
            }
        }
        return cleared;
    }

    SCall call;
    const Keeps& keeps;
};

std::string describeFile(const SCall& call, const std::string& name) {
    const auto file = call.files.find(name);
    if (file == call.files.end()) {
        return "(missing)";
    }
    return file->second.isDirectory ? "(folder)" : asLiteral(xmlText(file->second));
}

}  // namespace

SCall shrink(SCall call, const Keeps& keeps) {
    return CShrinker(std::move(call), keeps).run();
}

std::string describe(const SCall& call) {
    std::string text = "call made by seed " + std::to_string(call.seed) + "\n";
    text += "  configuration: " + (call.configuration ? asLiteral(*call.configuration) : "null");
    text += "\n  list size: " + std::to_string(call.listSize);
    text += call.hasFlags ? "" : ", flags: null";
    text += call.hasResult ? "" : ", result: null";
    text += "\n";
    for (const SEntry& entry : call.entries) {
        text += "  backup " + asLiteral(entry.name) + " flag " + std::to_string(entry.flag) +
                "\n    document: " + describeFile(call, entry.name) + "\n";
    }
    return text;
}

std::string explainDifference(const SCall& call, const Subject& subject) {
    const auto differs = [&](const SCall& candidate) {
        return !compare(candidate, subject).difference.empty();
    };
    const SCall smallest = shrink(call, differs);
    return describe(smallest) + compare(smallest, subject).difference;
}

}  // namespace fi_model
