#include "tvmath/overlay.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

inline namespace tvmath {
namespace {

bool is_undefined(point const& p) {
    return p.is_trivial() || std::isnan(p.x()) || std::isnan(p.y());
}

// The 2D location, within the coordinates that a pixel can have.
point within_pixels(point const& p) {
    constexpr double least = std::numeric_limits<std::int32_t>::min(),
                     most = std::numeric_limits<std::int32_t>::max();
    return point(true, std::clamp(p.x(), least, most), std::clamp(p.y(), least, most));
}

// The trivial point for an undefined one.
point shifted(point const& p, point const& shift) {
    if (is_undefined(p)) return point();
    point const moved = shift.is_trivial() ? p : point(true, p.x() + shift.x(), p.y() + shift.y());
    return is_undefined(moved) ? point() : within_pixels(moved);
}

pixel truncated(point const& p) {
    return pixel(static_cast<int>(p.x()), static_cast<int>(p.y()));
}

// A place on the device. Wider than a pixel, for the turn and for what is added to it.
struct device_place {
    std::int64_t x, y;

    device_place(pixel p, int height) : x(p.x), y(std::int64_t{height} - 1 - p.y) {}
    device_place(point const& p, int height)
        : x(static_cast<std::int64_t>(p.x())),
          y(std::int64_t{height} - 1 - static_cast<std::int64_t>(p.y())) {}
};

// A pen that is put back at the end.
class pen_in_hand {
public:
    pen_in_hand(HDC__* device, std::uint32_t colour, int width)
        : device_(device), before_(select_pen(device, {colour, width})) {}
    pen_in_hand(pen_in_hand const&) = delete;
    ~pen_in_hand() { select_pen(device_, before_); }

private:
    HDC__* device_;
    drawing_pen before_;
};

template <class list>
ctl::ref<IDrawCallback> curve_through(list const& points, unsigned long colour, int pen_width, bool closed,
                                      point const& shift) {
    std::vector<pixel> pixels;
    for (point const& p : points) {
        point const moved = shifted(p, shift);
        if (moved.is_trivial()) return {};
        pixels.push_back(truncated(moved));
    }
    if (pixels.empty()) return {};
    return ctl::make_ref<DrawCurveCallback>(static_cast<std::uint32_t>(colour), pen_width, closed,
                                            std::move(pixels));
}

}  // namespace

DrawCurveCallback::DrawCurveCallback(std::uint32_t colour, int pen_width, bool closed,
                                     std::vector<pixel> pixels)
    : colour_(colour), pen_width_(pen_width), closed_(closed), pixels_(std::move(pixels)) {}

void DrawCurveCallback::draw(HDC__* device, int, int height) {
    if (pixels_.empty()) return;
    pen_in_hand const pen(device, colour_, pen_width_);
    device_place const first(pixels_.front(), height);
    move_to(device, first.x, first.y);
    for (std::size_t i = 1; i < pixels_.size(); ++i) {
        device_place const next(pixels_[i], height);
        line_to(device, next.x, next.y);
    }
    if (closed_) line_to(device, first.x, first.y);
}

DrawArrowCallback::DrawArrowCallback(std::uint32_t colour, int pen_width, int head, point from, point to)
    : colour_(colour), pen_width_(pen_width), head_(head), from_(from), to_(to) {}

void DrawArrowCallback::draw(HDC__* device, int, int height) {
    if (is_undefined(from_) || is_undefined(to_)) return;
    point const from = within_pixels(from_), to = within_pixels(to_);
    point const back = normalize(to - from) * (head_ + 1.0);
    device_place const a(from, height), t(to, height), b(to - back, height);
    // The shaft from the tip to the base of the head, turned by a quarter.
    std::int64_t const side_x = b.y - t.y, side_y = t.x - b.x;

    pen_in_hand const pen(device, colour_, pen_width_);
    move_to(device, a.x, a.y);
    line_to(device, t.x, t.y);
    line_to(device, b.x - side_x, b.y - side_y);
    move_to(device, t.x, t.y);
    line_to(device, b.x + side_x, b.y + side_y);
}

DrawPointCallback::DrawPointCallback(std::uint32_t colour, int pen_width, int radius, point location)
    : colour_(colour), pen_width_(pen_width), radius_(radius), location_(location) {}

void DrawPointCallback::draw(HDC__* device, int, int height) {
    if (is_undefined(location_)) return;
    device_place const p(truncated(within_pixels(location_)), height);
    if (radius_ == 0) {
        set_pixel(device, p.x, p.y, colour_);
        return;
    }
    // One more at the far ends, which a line leaves off.
    pen_in_hand const pen(device, colour_, pen_width_);
    move_to(device, p.x - radius_, p.y);
    line_to(device, p.x + radius_ + 1, p.y);
    move_to(device, p.x, p.y - radius_);
    line_to(device, p.x, p.y + radius_ + 1);
}

ctl::ref<IDrawCallback> create_IDrawCallback(std::vector<point> const& points, unsigned long colour,
                                             int pen_width, bool closed, point shift) {
    return curve_through(points, colour, pen_width, closed, shift);
}

ctl::ref<IDrawCallback> create_IDrawCallback(curve path, unsigned long colour, int pen_width, bool closed,
                                             point shift) {
    return curve_through(path, colour, pen_width, closed, shift);
}

ctl::ref<IDrawCallback> create_IDrawCallback(point location, unsigned long colour, int pen_width, int radius,
                                             point shift) {
    point const moved = shifted(location, shift);
    if (moved.is_trivial()) return {};
    return ctl::make_ref<DrawPointCallback>(static_cast<std::uint32_t>(colour), pen_width, radius, moved);
}

ctl::ref<IDrawCallback> create_IDrawArrowCallback(point from, point to, unsigned long colour, int pen_width,
                                                  int head, point shift) {
    point const start = shifted(from, shift), tip = shifted(to, shift);
    if (start.is_trivial() || tip.is_trivial()) return {};
    return ctl::make_ref<DrawArrowCallback>(static_cast<std::uint32_t>(colour), pen_width, head, start, tip);
}

}  // namespace tvmath
