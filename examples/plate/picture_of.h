#pragma once

#include <tvmath/image.h>

#include "plate_drawing.h"

namespace plate {

/// The picture whose pixels have the grey values `grey(column, row)`.
template <class function>
image picture_of(function const& grey) {
    image out(rows, columns);
    vector* const row = out.lazycopy_begin();
    for (unsigned int y = 0; y < rows; ++y) {
        double* const values = row[y].lazycopy_begin();
        for (unsigned int x = 0; x < columns; ++x) values[x] = grey(x, y);
    }
    return out;
}

}  // namespace plate
