#include "cli/outcome/request.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cli/base/json.h"
#include "cli/base/text.h"

namespace fi_rotate {
namespace {

[[noreturn]] void reject(const std::string& fault) {
    throw std::invalid_argument(fault);
}

void requireKeys(const Json& object, const std::string& place, std::initializer_list<std::string_view> keys) {
    if (!object.is_object()) {
        reject(place + " is not an object");
    }
    for (const auto& [key, value] : object.items()) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
            reject(fmt::format("{} has the unknown key \"{}\"", place, asPrintable(key)));
        }
    }
    for (const std::string_view key : keys) {
        if (!object.contains(key)) {
            reject(fmt::format("{} has no \"{}\"", place, key));
        }
    }
}

// The library would read a text only up to its first NUL.
std::string textAt(const Json& object, const std::string& place, const char* key) {
    const Json& value = object.at(key);
    if (!value.is_string()) {
        reject(fmt::format("\"{}\" of {} is not a string", key, place));
    }
    std::string text = value.get<std::string>();
    if (text.find('\0') != std::string::npos) {
        reject(fmt::format("\"{}\" of {} contains a NUL character", key, place));
    }
    return text;
}

std::int32_t flagWordAt(const Json& object, const std::string& place) {
    const Json& value = object.at("flag_word");
    const bool isSmall =
        value.is_number_integer() &&
        (!value.is_number_unsigned() ||
         value.get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<std::int32_t>::max()}) &&
        value.get<std::int64_t>() >= std::numeric_limits<std::int32_t>::min();
    if (!isSmall) {
        reject(fmt::format("\"flag_word\" of {} is not a whole number of 32 bits", place));
    }
    return value.get<std::int32_t>();
}

Json parsed(const std::string& text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        reject(fmt::format("it is not JSON; the error is at byte {}", error.byte));
    }
}

std::string requireUtf8(std::string text) {
    if (asUtf8(text) != text) {
        reject(fmt::format("\"{}\" is not UTF-8", asPrintable(text)));
    }
    return text;
}

}  // namespace

SCall parseRequest(const std::string& text) {
    const Json request = parsed(text);
    requireKeys(request, "the request", {"configuration", "backups"});
    SCall call;
    call.configuration = textAt(request, "the request", "configuration");
    const Json& backups = request.at("backups");
    if (!backups.is_array()) {
        reject("\"backups\" of the request is not an array");
    }
    for (const Json& entry : backups) {
        const std::string place = fmt::format("backup {}", call.backups.size() + 1);
        requireKeys(entry, place, {"file", "flag_word"});
        SBackup backup;
        backup.file = textAt(entry, place, "file");
        backup.flagWord = flagWordAt(entry, place);
        call.backups.push_back(backup);
    }
    return call;
}

std::string toRequest(const SCall& call) {
    Json backups = Json::array();
    for (const SBackup& backup : call.backups) {
        backups.push_back({{"file", requireUtf8(backup.file)}, {"flag_word", backup.flagWord}});
    }
    const Json request = {{"configuration", requireUtf8(call.configuration)}, {"backups", backups}};
    return request.dump(2) + "\n";
}

bool isRequest(std::string_view text) {
    try {
        parseRequest(std::string(text));
        return true;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

}  // namespace fi_rotate
