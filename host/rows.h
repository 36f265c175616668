#pragma once

#include <cstddef>

namespace fi_rotate {

// For tables with a row for each enumerator: whether each row stands at the place of the enumerator that it
// names in its member `kind`, so that no row is missing.
template <typename Rows, typename Row, typename Kind>
constexpr bool areInOrder(const Rows& rows, Kind Row::*kind) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].*kind != static_cast<Kind>(i)) {
            return false;
        }
    }
    return true;
}

}  // namespace fi_rotate
