#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/base/text.h"

// Values as JSON.
namespace fi_rotate {

// Keys in the order in which they are set.
using Json = nlohmann::ordered_json;

template <typename Value>
Json orNull(const std::optional<Value>& value) {
    if constexpr (std::is_convertible_v<Value, std::string_view>) {
        return value.has_value() ? Json(asUtf8(*value)) : Json(nullptr);
    } else {
        return value.has_value() ? Json(*value) : Json(nullptr);
    }
}

inline Json listOf(const std::vector<std::string>& texts) {
    Json list = Json::array();
    for (const std::string& text : texts) {
        list.push_back(asUtf8(text));
    }
    return list;
}

}  // namespace fi_rotate
