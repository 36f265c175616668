#pragma once

#include <cstddef>

namespace fi_rotate {

// For a table with a row for each enumerator: whether the index of each row is the value of its enumerator,
// so that none is missing. `kind` points to the member of the row that names the enumerator.
template <typename Rows, typename Member>
constexpr bool areInOrder(const Rows& rows, Member kind) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (static_cast<std::size_t>(rows[i].*kind) != i) {
            return false;
        }
    }
    return true;
}

}  // namespace fi_rotate
