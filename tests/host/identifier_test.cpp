#include "host/identifier.h"

#include <gtest/gtest.h>

namespace {

using fi_rotate::parseIdentifier;

TEST(HostIdentifier, NamesATarget) {
    const struct {
        const char* text;
        const char* enclosure;
        const char* device;
    } rows[] = {
        {"UDID##a##b##c##d", "c", "d"},
        {"UEID##a##b##c##d", "c", "d"},
        {"UDID##a##b##c", "", "c"},
        {"UEID##a##b##c", "c", ""},
        {"xUDID##a##b##c##d##e", "c", "d##e"},
        {"UEID##x##UDID##a##b##c", "", "c"},
        {"UDID####b##c##d", "c", "d"},
    };
    for (const auto& row : rows) {
        const fi_rotate::SIdentifier identifier = parseIdentifier(row.text);
        EXPECT_FALSE(identifier.fault.has_value()) << row.text;
        EXPECT_EQ(identifier.enclosure, row.enclosure) << row.text;
        EXPECT_EQ(identifier.device, row.device) << row.text;
    }
}

TEST(HostIdentifier, HasTheCodeOfItsFault) {
    const struct {
        const char* text;
        int code;
    } rows[] = {
        {"UDID##a##b##", 1}, {"UEID##a##b##", 1}, {"", 2},           {"udid##a##b##c", 2},
        {"UDID##a", 3},      {"UDID##", 3},       {"UDID##a##b", 4}, {"UEID##a##b#", 4},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parseIdentifier(row.text).fault, row.code) << row.text;
    }
}

}  // namespace
