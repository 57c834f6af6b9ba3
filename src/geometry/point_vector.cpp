#include "tvmath/point.h"
#include "tvmath/vector.h"

inline namespace tvmath {

// Lists of other sizes are no valid input; the trivial point keeps them from being read beyond their end.
point::point(bool location, vector v) {
    unsigned int const n = dim(v);
    if (n != 2 && n != 3) return;
    *this = n == 2 ? point(location, v[0], v[1]) : point(location, v[0], v[1], v[2]);
}

vector::vector(point const& p) : array(p.dimension()) {
    double* const a = lazycopy_begin();
    for (unsigned int i = 0; i < p.dimension(); ++i) a[i] = p[i + 1];
}

}  // namespace tvmath
