#pragma once

#include <cstddef>

namespace fi_rotate {

// For tables with a row for each enumerator: whether each row stands at the place of the enumerator that it
// names in its member `kind` (a pointer to it), so that no row is missing.
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
