#include "picture.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

inline namespace tvmath {
namespace {

// In points; a drawing of one cell is a picture of this size.
constexpr double cell_width = 300, cell_height = 250, margin = 26, title_height = 16;

struct pen {
    double red, green, blue, width;
    double dash;  // 0 draws a solid line
};

pen pen_of(stroke_role role) {
    switch (role) {
        case stroke_role::outline:
            return {0.05, 0.10, 0.35, 1.6, 0};
        case stroke_role::bezier:
            return {1.00, 0.65, 0.10, 0.7, 0};
        case stroke_role::parallel:
            return {0.10, 0.55, 0.75, 0.9, 0};
        case stroke_role::bounds:
            return {0.55, 0.55, 0.55, 0.6, 0};
        case stroke_role::wide_bounds:
            return {0.55, 0.55, 0.55, 0.6, 4};
        case stroke_role::axis:
            return {0.75, 0.15, 0.15, 0.7, 0};
        case stroke_role::control:
            return {0.30, 0.60, 0.30, 0.5, 2};
        case stroke_role::mark:
            break;
    }
    return {0.75, 0.15, 0.15, 0.9, 0};
}

// Maps the extent of a drawing into its cell, evenly scaled, y upward.
struct cell_map {
    double scale, left, bottom, x, y;

    double to_x(point const& p) const { return x + (p.x() - left) * scale; }
    double to_y(point const& p) const { return y - (p.y() - bottom) * scale; }
};

cell_map map_into(CRealRect const& r, double left, double top) {
    double const room_x = cell_width - 2 * margin, room_y = cell_height - 2 * margin - title_height;
    // A single point, or a straight line, has no size of its own in one direction or both.
    double const size = std::max(r.Width(), r.Height()), width = std::max(r.Width(), size * 1e-9),
                 height = std::max(r.Height(), size * 1e-9);
    double const scale = size > 0 ? std::min(room_x / width, room_y / height) : 1;
    return {scale, r.left, r.bottom, left + margin + (room_x - r.Width() * scale) / 2,
            top + title_height + margin + (room_y + r.Height() * scale) / 2};
}

bool is_drawable(point const& p) {
    return !p.is_trivial() && std::isfinite(p.x()) && std::isfinite(p.y());
}

void add_polyline(cairo_t* c, cell_map const& map, stroke const& s) {
    for (point const& p : s.path) {
        if (!is_drawable(p)) {
            cairo_new_sub_path(c);  // a trivial point breaks a path
        } else {
            cairo_line_to(c, map.to_x(p), map.to_y(p));
        }
    }
    if (s.closed) cairo_close_path(c);
}

void add_bezier(cairo_t* c, cell_map const& map, curve const& path) {
    if (path.is_trivial() || !std::all_of(path.begin(), path.end(), is_drawable)) return;
    point const* p = path.begin();
    cairo_move_to(c, map.to_x(p[0]), map.to_y(p[0]));
    for (; path.end() - p > 3; p += 3) {
        cairo_curve_to(c, map.to_x(p[1]), map.to_y(p[1]), map.to_x(p[2]), map.to_y(p[2]), map.to_x(p[3]),
                       map.to_y(p[3]));
    }
}

void add_mark(cairo_t* c, cell_map const& map, point const& p) {
    if (!is_drawable(p)) return;
    double const x = map.to_x(p), y = map.to_y(p), arm = 3.5;
    cairo_move_to(c, x - arm, y);
    cairo_line_to(c, x + arm, y);
    cairo_move_to(c, x, y - arm);
    cairo_line_to(c, x, y + arm);
}

void draw_stroke(cairo_t* c, cell_map const& map, stroke const& s) {
    pen const with = pen_of(s.role);
    cairo_set_source_rgb(c, with.red, with.green, with.blue);
    cairo_set_line_width(c, with.width);
    cairo_set_dash(c, &with.dash, with.dash > 0 ? 1 : 0, 0);
    cairo_new_path(c);
    if (s.role == stroke_role::mark) {
        for (point const& p : s.path) add_mark(c, map, p);
    } else if (s.role == stroke_role::bezier) {
        add_bezier(c, map, s.path);
    } else {
        add_polyline(c, map, s);
    }
    cairo_stroke(c);
}

void write(cairo_t* c, double x, double y, double size, std::string const& text) {
    cairo_set_font_size(c, size);
    cairo_move_to(c, x, y);
    cairo_show_text(c, text.c_str());
}

void draw_cell(cairo_t* c, drawing const& d, double left, double top) {
    CRealRect const extent = extent_of(d);
    cell_map const map = map_into(extent, left, top);
    cairo_save(c);
    cairo_rectangle(c, left, top, cell_width, cell_height);
    cairo_clip(c);
    for (stroke const& s : d.strokes) draw_stroke(c, map, s);
    cairo_set_source_rgb(c, 0, 0, 0);
    write(c, left + 8, top + 15, 10, d.title);
    char numbers[160];
    std::snprintf(numbers, sizeof numbers, "x %.6g ... %.6g   y %.6g ... %.6g", extent.left, extent.right,
                  extent.bottom, extent.top);
    cairo_set_source_rgb(c, 0.35, 0.35, 0.35);
    write(c, left + 8, top + cell_height - 8, 8, numbers);
    cairo_restore(c);
    cairo_set_source_rgb(c, 0.85, 0.85, 0.85);
    cairo_set_line_width(c, 0.5);
    cairo_set_dash(c, nullptr, 0, 0);
    cairo_rectangle(c, left, top, cell_width, cell_height);
    cairo_stroke(c);
}

cairo_status_t append(void* text, unsigned char const* bytes, unsigned int count) {
    static_cast<std::string*>(text)->append(reinterpret_cast<char const*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
}

cairo_surface_t* make_surface(std::string const& suffix, double width, double height, std::string& bytes) {
    if (suffix == ".svg") return cairo_svg_surface_create_for_stream(append, &bytes, width, height);
    if (suffix == ".pdf") return cairo_pdf_surface_create_for_stream(append, &bytes, width, height);
    return cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(2 * width),
                                      static_cast<int>(2 * height));
}

}  // namespace

bool is_picture_suffix(std::string const& suffix) {
    return suffix == ".svg" || suffix == ".png" || suffix == ".pdf";
}

std::string picture_bytes(std::vector<drawing> const& drawings, int columns, std::string const& suffix) {
    int const count = static_cast<int>(drawings.size()), rows = (count + columns - 1) / columns;
    double const width = cell_width * std::min(columns, count), height = cell_height * rows;
    std::string bytes;
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> const surface(
        make_surface(suffix, width, height, bytes), cairo_surface_destroy);
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> const context(cairo_create(surface.get()),
                                                                     cairo_destroy);
    cairo_t* const c = context.get();
    if (suffix == ".png") cairo_scale(c, 2, 2);
    cairo_set_source_rgb(c, 1, 1, 1);
    cairo_paint(c);
    cairo_set_line_join(c, CAIRO_LINE_JOIN_ROUND);
    cairo_select_font_face(c, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    for (int i = 0; i < count; ++i) {
        draw_cell(c, drawings[static_cast<std::size_t>(i)], cell_width * (i % columns),
                  cell_height * (i / columns));
    }
    if (cairo_status(c) != CAIRO_STATUS_SUCCESS) return {};
    if (suffix == ".png") {
        if (cairo_surface_write_to_png_stream(surface.get(), append, &bytes) != CAIRO_STATUS_SUCCESS)
            return {};
    } else {
        cairo_surface_finish(surface.get());
    }
    return bytes;
}

}  // namespace tvmath
