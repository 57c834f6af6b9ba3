#include "measure/picture/measure_overlay.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "files/png_file.h"
#include "measure/picture/measure_drawing.h"
#include "tvmath/overlay.h"

inline namespace tvmath {
namespace {

// As the overlays take them: 0xBBGGRR.
constexpr unsigned long good_colour = 0x46D200, bad_colour = 0x2828FF, whisker_colour = 0xFFB428,
                        kept_colour = 0x00E1FF, dropped_colour = 0xFF00FF, axis_colour = 0x0090FF;

constexpr double room = 30;              // pixels for the longest residual,
constexpr double pixels_of_room = 1280;  // and as much again for each time that the image is longer
constexpr double pixels_of_width = 800;  // the longer side of an image for each pixel of a line's width
constexpr double least_spacing = 9;      // pixels between edge points that have a cross

using overlay_list = std::vector<ctl::ref<IDrawCallback>>;

point at(spot p) {
    return point(true, p.x, p.y);
}

double length_of(std::vector<outline> const& outlines) {
    double sum = 0;
    for (outline const& o : outlines)
        for_each_edge(o, [&sum](spot from, spot to) { sum += std::hypot(to.x - from.x, to.y - from.y); });
    return sum;
}

// Draws everything in lines that are as many times wider as the image is larger.
class overlay_drawer {
public:
    explicit overlay_drawer(int width) : width_(width) {}

    overlay_list overlays;

    void add(drawn_feature const& f, measure_drawing const& drawing) {
        for (drawn_edge const& e : f.edges) {
            if (e.kept && drawing.factor > 0) line({e.foot, drawing.tip(e)}, whisker_colour, width_);
        }
        unsigned long const colour = f.is_good() ? good_colour : bad_colour;
        for (outline const& o : f.outlines) {
            if (f.state == verdict::not_measured) {
                dashes(o, colour);
            } else {
                line(o.at, colour, 2 * width_, o.closed);
            }
        }
        for (spot const& p : f.marks) cross(p, f.outlines.empty() ? 5 : 3, colour);
        // Where edge points are close a cross at each would hide the line.
        double const spacing = length_of(f.outlines) / static_cast<double>(f.edges.size());
        int const arm = f.outlines.empty() || spacing >= least_spacing * width_ ? 1 : 0;
        for (drawn_edge const& e : f.edges)
            cross(e.at, e.kept ? arm : 4, e.kept ? kept_colour : dropped_colour);
    }

    // The zero of the results and the ways of their axes.
    void add_axes(measure_frame const& frame) {
        double const arm = 40 * width_ * frame.pixel_length();
        point const zero = frame.to_image(point(true, 0, 0));
        for (point const& end : {point(true, arm, 0), point(true, 0, arm)}) {
            overlays.push_back(create_IDrawArrowCallback(zero, frame.to_image(end), axis_colour, width_,
                                                         5 * width_, point()));
        }
    }

private:
    void line(std::vector<spot> const& places, unsigned long colour, int width, bool closed = false) {
        std::vector<point> points;
        for (spot const& p : places) points.push_back(at(p));
        // An even pen lies half a pixel to the left and, since bitmaps count upward, below its pixel.
        point const shift = width % 2 == 0 ? point(false, 0.5, -0.5) : point();
        overlays.push_back(create_IDrawCallback(points, colour, width, closed, shift));
    }

    void cross(spot p, int arm, unsigned long colour) {
        overlays.push_back(create_IDrawCallback(at(p), colour, width_, arm * width_, point()));
    }

    // Pieces of 6 pixels and as long gaps.
    void dashes(outline const& o, unsigned long colour) {
        double const dash = 6.0 * width_;
        for_each_edge(o, [&](spot from, spot to) {
            spot const way = to - from;
            double const size = std::hypot(way.x, way.y);
            int const pieces = static_cast<int>(std::clamp(std::ceil(size / (2 * dash)), 1.0, 1000.0));
            for (int k = 0; k < pieces; ++k) {
                double const start = 1.0 * k / pieces, end = start + std::min(dash / size, 0.5 / pieces);
                line({from + start * way, from + end * way}, colour, 2 * width_);
            }
        });
    }

    int width_;
};

struct bitmap_owner {
    void operator()(HBITMAP__* bitmap) const { release_bitmap(bitmap); }
};

rgb_picture picture_of(HBITMAP__ const* bitmap) {
    rgb_picture picture;
    int const width = bitmap_width(bitmap), height = bitmap_height(bitmap);
    picture.width = static_cast<unsigned int>(width);
    picture.height = static_cast<unsigned int>(height);
    picture.rgb.reserve(std::size_t{3} * picture.width * picture.height);
    for (int y = height - 1; y >= 0; --y) {  // a bitmap counts its rows from the bottom
        for (int x = 0; x < width; ++x) {
            unsigned long const colour = bitmap_pixel(bitmap, x, y);
            for (int shift = 0; shift <= 16; shift += 8)
                picture.rgb.push_back(static_cast<unsigned char>(colour >> shift & 0xFF));
        }
    }
    return picture;
}

}  // namespace

std::string overlay_png(image const& scene, measure_frame const& frame, measure_report const& report) {
    double const size = std::max(report.width, report.height);
    int const width = std::max(1, static_cast<int>(std::lround(size / pixels_of_width)));
    measure_drawing const drawing =
        make_measure_drawing(frame, report, room * std::max(1.0, size / pixels_of_room));
    overlay_drawer drawer(width);
    if (report.job->from_screen) drawer.add_axes(frame);
    for (drawn_feature const& f : drawing.features) drawer.add(f, drawing);
    std::unique_ptr<HBITMAP__, bitmap_owner> const bitmap(create_bitmap(scene, drawer.overlays));
    return bitmap ? png_bytes(picture_of(bitmap.get())) : std::string();
}

}  // namespace tvmath
