#pragma once

#include <cstdint>

#include "tvmath/export.h"

// The platform's own names for a bitmap and for the device context that draws on it. At file level, because
// on Windows they are those of its headers.
struct HBITMAP__;
struct HDC__;

inline namespace tvmath {

// Bitmaps, of the platform or of a small surface of the library's own where the platform has none.
//
// A pixel stands at column x, from the left, and row y, counted from the bottom as in the device-independent
// form: row `height` - 1 is the uppermost one. A colour is a number 0xBBGGRR, red in the lowest byte; higher
// bits do not count.
//
// Whoever receives a bitmap owns it until he passes it to `release_bitmap`. Bitmaps may be used from any
// thread, each from one at a time.

/// Width and height in pixels; 0 for the null handle.
TVMATH_API int bitmap_width(HBITMAP__ const* bitmap);
TVMATH_API int bitmap_height(HBITMAP__ const* bitmap);
/// The colour of a pixel; 0 outside the bitmap and for the null handle.
TVMATH_API unsigned long bitmap_pixel(HBITMAP__ const* bitmap, int x, int y);
/// Frees the bitmap; the handle is invalid afterwards. The null handle does nothing.
TVMATH_API void release_bitmap(HBITMAP__* bitmap);

// Drawing on a device context, for the `draw` of an overlay. Nothing is blended: a pixel gets the colour or
// stays. Any coordinates will do, those beyond 2^40 either way count as 2^40; the pixels on the bitmap are
// those of the line in full, and the time depends on the size of the bitmap alone.

/// A solid pen; a width below 1 counts as 1.
struct drawing_pen {
    unsigned long colour = 0;
    int width = 1;
};

/// Draws lines with `pen` from now on. Returns the pen before, at first a black one of width 1.
TVMATH_API drawing_pen select_pen(HDC__* device, drawing_pen pen);
/// Sets the present position, at first (0, 0).
TVMATH_API void move_to(HDC__* device, std::int64_t x, std::int64_t y);

/// Draws a line from the present position up to (x, y), which is left off, and moves there. So lines that are
/// joined draw no pixel twice, and a line without length draws none.
///
/// A pen of width 1 draws one pixel for each step of the longer axis, the one nearest to the line. Of two
/// equally near ones it takes that of smaller y where the line runs more along x, and that of smaller x
/// where it runs more along y, in each octant; lines at 45 degrees have no such pixels. So a line covers the
/// same pixels in both directions, but for the ends.
///
/// A wider pen is a disc, of `width` pixels across, whose middle runs from the first of those pixels to the
/// last on the straight line: it draws all pixels whose centre it touches. For an even width the middle lies
/// half a pixel towards smaller x and y, so that lines along the axes are `width` pixels wide.
///
/// Source: J. E. Bresenham, Algorithm for computer control of a digital plotter, IBM Systems Journal 4 (1965)
/// 25-30.
TVMATH_API void line_to(HDC__* device, std::int64_t x, std::int64_t y);

/// Gives one pixel the colour, whatever the pen.
TVMATH_API void set_pixel(HDC__* device, std::int64_t x, std::int64_t y, unsigned long colour);

}  // namespace tvmath
