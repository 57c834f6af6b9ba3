#pragma once

#include <vector>

#include "tvmath/image.h"

inline namespace tvmath {

/// Makes `fresh` a black image of that size whose rows have a block each, and returns where they stand.
inline std::vector<double*> rows_to_write(image& fresh, unsigned int rows, unsigned int cols) {
    fresh = matrix(rows, vector());
    std::vector<double*> lines;
    lines.reserve(rows);
    for (vector *row = fresh.lazycopy_begin(), *end = row + rows; row != end; ++row) {
        *row = vector(cols);
        lines.push_back(row->lazycopy_begin());
    }
    return lines;
}

}  // namespace tvmath
