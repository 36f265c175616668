#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "host/configuration_text.h"

namespace {

using fi_rotate::findLongEnclosure;

std::string enclosureOf(std::size_t length) {
    return std::string(length, 'e');
}

TEST(HostConfigurationText, EnclosuresUpToTheLimitAreNotLong) {
    const std::string longest = enclosureOf(256);
    for (const std::string& text :
         {longest + "##d;s", "a##d;" + longest + "##s&" + longest + "##d", std::string(), std::string("####"),
          // Devices and what is no target may be long.
          "a##" + enclosureOf(1000) + ";" + enclosureOf(1000), enclosureOf(1000),
          "##" + enclosureOf(300) + "##d",
          // A reference is one character, and a separator begins anew.
          enclosureOf(252) + "&lt;&gt;&#39;&quot;##d", enclosureOf(200) + "&amp;" + longest + "##d",
          enclosureOf(200) + ";" + longest + "##d", enclosureOf(200) + "\r" + longest + "##d",
          "a##d" + std::string(1, '\0') + enclosureOf(300) + "##d"}) {
        EXPECT_FALSE(findLongEnclosure(text).has_value()) << text;
    }
}

TEST(HostConfigurationText, TheFirstLongEnclosureIsFoundWithItsPlaceAndDecodedLength) {
    const struct {
        std::string text;
        std::size_t offset;
        std::size_t length;
    } rows[] = {
        {enclosureOf(257) + "##d", 0, 257},
        {"a##d;" + enclosureOf(300) + "##s;" + enclosureOf(400) + "##s", 5, 300},
        {"a##d\n" + enclosureOf(256) + "&lt;##d", 5, 257},
        {"a&amp;" + enclosureOf(257) + "##d", 6, 257},
        {"a##d;;&" + enclosureOf(257) + "##d", 7, 257},
        {enclosureOf(256) + "#x##d", 0, 258},
    };
    for (const auto& row : rows) {
        const auto found = findLongEnclosure(row.text);
        ASSERT_TRUE(found.has_value()) << row.text;
        EXPECT_EQ(found->offset, row.offset) << row.text;
        EXPECT_EQ(found->length, row.length) << row.text;
    }
}

}  // namespace
