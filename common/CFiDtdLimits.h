#pragma once

#include <cstddef>
#include <string_view>

// What a DTD may declare for a document to be read: no entity may make much text of little. The hardened
// library and fi-rotate refuse the same documents, so both ask here.
//
// References to entities are counted, but not those within a DTD; so an entity may not refer to another one,
// and neither an entity nor the default of an attribute may be long. Entities of the DTD itself (parameter
// entities) may not be declared at all. Attributes are counted, because every element costs a reader a look
// at all that are declared for it, and each element gets the defaults anew.
class CFiDtdLimits {
public:
    // References to entities that a document may make; the five predefined ones are not counted.
    static constexpr std::size_t kMostReferences = 100;
    // Characters that an entity or the default of an attribute may have.
    static constexpr std::size_t kLongestText = 256;
    // Attributes that a DTD may declare.
    static constexpr std::size_t kMostAttributes = 256;

    enum class EExcess { kNone, kAttributes, kLongDefault, kParameterEntity, kNestedEntity, kLongEntity };

    // Another document follows, with counts of its own.
    void startDocument() { attributes = 0; }

    // Of the declaration of an attribute with this default; null without one.
    EExcess declareAttribute(const char16_t* value) {
        ++attributes;
        if (attributes > kMostAttributes) {
            return EExcess::kAttributes;
        }
        return value != nullptr && isLong(value) ? EExcess::kLongDefault : EExcess::kNone;
    }

    // Of the declaration of an entity; the names of parameter entities begin with '%'.
    static EExcess declareEntity(std::u16string_view name, std::u16string_view value) {
        if (name.substr(0, 1) == u"%") {
            return EExcess::kParameterEntity;
        }
        if (value.find(u'&') != std::u16string_view::npos) {
            return EExcess::kNestedEntity;
        }
        return isLong(value) ? EExcess::kLongEntity : EExcess::kNone;
    }

private:
    static bool isLong(std::u16string_view text) { return text.size() > kLongestText; }

    std::size_t attributes = 0;
};
