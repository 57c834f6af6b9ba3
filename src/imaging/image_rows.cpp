#include <algorithm>
#include <utility>

#include "tvmath/image.h"

inline namespace tvmath {

image& image::remove_tearing() {
    unsigned int const r = rows(*this), c = cols(*this);
    if (r < 3) return *this;
    vector* const row = lazycopy_begin();
    vector above = row[0];  // the unfiltered rows stay alive by their handles
    for (unsigned int y = 1; y + 1 < r; ++y) {
        vector filtered(c);
        double const *const a = above.begin(), *const b = row[y].begin(), *const d = row[y + 1].begin();
        double* const to = filtered.lazycopy_begin();
        for (unsigned int x = 0; x < c; ++x) to[x] = (a[x] + 2 * b[x] + d[x]) * 0.25;
        above = std::exchange(row[y], std::move(filtered));
    }
    return *this;
}

image& image::mirror_x() {
    reverse_self();
    return *this;
}

image& image::mirror_y() {
    unsigned int const c = cols(*this);
    if (c < 2) return *this;
    for (vector *row = lazycopy_begin(), *end = row + capacity(); row != end; ++row) {
        double* const v = row->lazycopy_begin();
        std::reverse(v, v + c);
    }
    return *this;
}

}  // namespace tvmath
