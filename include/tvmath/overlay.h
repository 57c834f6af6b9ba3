#pragma once

#include <cstdint>
#include <vector>

#include "tvmath/array.h"
#include "tvmath/bitmap.h"
#include "tvmath/ctl_ref.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/image.h"
#include "tvmath/pixel.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Something that is drawn over an image, in the image's coordinates: y downward from its first row. The
/// image stands upright on the bitmap, whose rows count from the bottom, so `draw` turns a row y of the image
/// to y' = `height` - 1 - y.
///
/// Points become pixels by dropping their fractions, towards 0; coordinates beyond 32 bits become the
/// outermost ones there are.
class TVMATH_API IDrawCallback {
public:
    virtual ~IDrawCallback() = default;
    /// Draws on a bitmap of that size by `select_pen`, `line_to` and the like, and leaves the device with the
    /// pen that it had.
    virtual void draw(HDC__* device, int width, int height) = 0;
};

/// A polyline through pixels, each line without its last pixel; `closed` joins the last one to the first.
class TVMATH_API DrawCurveCallback : public IDrawCallback {
public:
    DrawCurveCallback(std::uint32_t colour, int pen_width, bool closed, std::vector<pixel> pixels);
    void draw(HDC__* device, int width, int height) override;

private:
    std::uint32_t colour_;
    int pen_width_;
    bool closed_;
    std::vector<pixel> pixels_;
};

/// An arrow: the shaft, and from its tip two lines that reach `head` + 1 back along the shaft and as far to
/// its sides. Without length, or with an undefined point, nothing.
class TVMATH_API DrawArrowCallback : public IDrawCallback {
public:
    DrawArrowCallback(std::uint32_t colour, int pen_width, int head, point from, point to);
    void draw(HDC__* device, int width, int height) override;

private:
    std::uint32_t colour_;
    int pen_width_;
    int head_;
    point from_, to_;
};

/// A cross that reaches `radius` pixels to each side of the point's pixel; a radius of 0 colours that pixel
/// alone, whatever the pen. With an undefined point nothing.
class TVMATH_API DrawPointCallback : public IDrawCallback {
public:
    DrawPointCallback(std::uint32_t colour, int pen_width, int radius, point location);
    void draw(HDC__* device, int width, int height) override;

private:
    std::uint32_t colour_;
    int pen_width_;
    int radius_;
    point location_;
};

// Overlays of points in the image, each moved by `shift` first; an undefined `shift` moves nothing. A colour
// is a number 0xBBGGRR. The null handle for an empty list and for an undefined point: a trivial one, or one
// with a coordinate that is NaN.

/// A polyline with these corners.
TVMATH_API ctl::ref<IDrawCallback> create_IDrawCallback(std::vector<point> const& points,
                                                        unsigned long colour, int pen_width, bool closed,
                                                        point shift);
/// The points of the list as the corners of a polyline; a Bezier path is not subdivided.
TVMATH_API ctl::ref<IDrawCallback> create_IDrawCallback(curve path, unsigned long colour, int pen_width,
                                                        bool closed, point shift);
/// A cross.
TVMATH_API ctl::ref<IDrawCallback> create_IDrawCallback(point location, unsigned long colour, int pen_width,
                                                        int radius, point shift);
/// An arrow with its head at `to`.
TVMATH_API ctl::ref<IDrawCallback> create_IDrawArrowCallback(point from, point to, unsigned long colour,
                                                             int pen_width, int head, point shift);

/// A grey image as a bitmap in device-independent form, the form of bitmap files: a header of 40 bytes, a
/// table of 256 grey levels of 4 bytes, then 8 bits for each pixel, the rows from the bottom to the top and
/// padded to multiples of 4 bytes. A copy-on-write handle.
class TVMATH_API CDib {
public:
    /// The bitmap without pixels.
    CDib() = default;
    /// Grey levels of 1/256, 0 to 255; what lies outside, and NaN as black, is cut. Without pixels for an
    /// image without rows or columns and for one of more than 2^28 pixels, where each row counts as 8 more.
    explicit CDib(image const& source);

    bool is_trivial() const { return bytes_.is_trivial(); }
    int width() const { return width_; }
    int height() const { return height_; }
    /// All of it, from the header on; `size` bytes.
    unsigned char const* begin() const { return bytes_.begin(); }
    unsigned int size() const { return bytes_.capacity(); }
    /// Row y, counted from the bottom, 0 to `height` - 1: row `height` - 1 - y of the image.
    unsigned char const* row(int y) const;

private:
    int width_ = 0, height_ = 0;
    idioms::array<unsigned char> bytes_;
};

// The image as a bitmap of the platform: row y of the bitmap, which counts from the bottom, shows row
// `height` - 1 - y of the image, in 256 levels of grey as `CDib` has them. Overlays are drawn over it in the
// order of the list; null ones are passed over.
//
// The caller owns the bitmap and frees it by `release_bitmap`. Null for an image without rows or columns, for
// one that `CDib` refuses, and when the platform gives no bitmap. What an overlay of the caller's own
// raises, comes through.

TVMATH_API HBITMAP__* create_bitmap(image source);
TVMATH_API HBITMAP__* create_bitmap(image source, ctl::ref<IDrawCallback> overlay);
TVMATH_API HBITMAP__* create_bitmap(image source, std::vector<ctl::ref<IDrawCallback>> const& overlays);

}  // namespace tvmath
