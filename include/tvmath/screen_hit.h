#pragma once

#include <cstdint>

#include "tvmath/export.h"

inline namespace tvmath {

/// A pixel of the screen.
struct tagPOINT {
    std::int32_t x, y;
};

/// True when p lies within `tolerance` pixels of the polyline through `count` points: inside the bounding box
/// of a segment enlarged by the tolerance, and that near to its line. A segment of length 0 is hit in its
/// box. False for fewer than 2 points. Any coordinates are allowed.
TVMATH_API bool IsPtOnPath(tagPOINT p, tagPOINT const* path, int count, int tolerance);

/// True when the segment from (x0, y0) to (x1, y1) has a point in common with the rectangle, its sides
/// included. The sides may come in either order. Exact for any coordinates.
///
/// Source: region codes of D. Cohen and I. Sutherland, in Newman and Sproull, Principles of Interactive
/// Computer Graphics (1973).
TVMATH_API bool line_intersects_rect(int x0, int y0, int x1, int y1, int left, int top, int right,
                                     int bottom);

}  // namespace tvmath
