#pragma once

#include <string>

// A file in memory, with a name as long as this object exists.
class CDocument {
public:
    explicit CDocument(const std::string& content);
    ~CDocument();
    CDocument(CDocument&& other) noexcept : descriptor(other.descriptor) { other.descriptor = -1; }
    CDocument(const CDocument&) = delete;
    CDocument& operator=(const CDocument&) = delete;
    CDocument& operator=(CDocument&&) = delete;

    [[nodiscard]] std::string name() const;

private:
    int descriptor;
};
