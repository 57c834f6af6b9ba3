#pragma once

#include "tvmath/bitmap.h"

inline namespace tvmath {

/// A bitmap of that size, at least 1 by 1, that a device can draw on; what it shows is not defined. Null when
/// the system gives none. Freed by `release_bitmap`.
HBITMAP__* make_bitmap(int width, int height);

/// A device context that draws on the bitmap. Null when the system gives none. The bitmap stays the
/// caller's, and must outlive the device.
HDC__* open_device(HBITMAP__* bitmap);
void close_device(HDC__* device);

/// Draws all of a bitmap in device-independent form, 8 bits to a pixel, with its lowest row at row 0. It must
/// have the size of the device's bitmap.
void draw_dib(HDC__* device, unsigned char const* dib);

}  // namespace tvmath
