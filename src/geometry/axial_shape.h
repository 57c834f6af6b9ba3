#pragma once

#include <algorithm>

#include "tvmath/ellipse.h"

inline namespace tvmath {

// What the shapes with an axis share.

/// Extent of both ends. Not by `UnionRect`, to which the tip of a cone at the origin is the null rectangle.
inline CRealRect ends_rect(ellipse const& one, ellipse const& other) {
    CRealRect const a = one.get_bounding_rect(), b = other.get_bounding_rect();
    return CRealRect(std::min(a.left, b.left), std::min(a.bottom, b.bottom), std::max(a.right, b.right),
                     std::max(a.top, b.top));
}

}  // namespace tvmath
