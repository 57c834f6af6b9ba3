#include "picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

inline namespace tvmath {
namespace {

// In points; a drawing of one cell is a picture of this size.
constexpr double cell_width = 300, cell_height = 250, margin = 26, title_height = 16;

pen pen_of(stroke_role role) {
    switch (role) {
        case stroke_role::outline:
            return {{0.05, 0.10, 0.35}, 1.6};
        case stroke_role::bezier:
            return {{1.00, 0.65, 0.10}, 0.7};
        case stroke_role::parallel:
            return {{0.10, 0.55, 0.75}, 0.9};
        case stroke_role::bounds:
            return {{0.55, 0.55, 0.55}, 0.6};
        case stroke_role::wide_bounds:
            return {{0.55, 0.55, 0.55}, 0.6, 4};
        case stroke_role::axis:
            return {{0.75, 0.15, 0.15}, 0.7};
        case stroke_role::control:
            return {{0.30, 0.60, 0.30}, 0.5, 2};
        case stroke_role::mark:
            break;
    }
    return {{0.75, 0.15, 0.15}, 0.9};
}

// Maps the extent of a drawing into its cell, evenly scaled, y upward.
struct cell_map {
    double scale, left, bottom, x, y;

    spot operator()(point const& p) const {
        return {x + (p.x() - left) * scale, y - (p.y() - bottom) * scale};
    }
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

canvas_path polyline(cell_map const& map, stroke const& s) {
    canvas_path path;
    for (point const& p : s.path) {
        if (!is_drawable(p)) {
            path.interrupt();  // a trivial point breaks a path
        } else {
            path.line_to(map(p));
        }
    }
    if (s.closed && !path.is_empty()) path.close();
    return path;
}

canvas_path bezier(cell_map const& map, curve const& points) {
    canvas_path path;
    if (points.is_trivial() || !std::all_of(points.begin(), points.end(), is_drawable)) return path;
    point const* p = points.begin();
    path.move_to(map(p[0]));
    for (; points.end() - p > 3; p += 3) path.curve_to(map(p[1]), map(p[2]), map(p[3]));
    return path;
}

canvas_path crosses(cell_map const& map, curve const& points) {
    canvas_path path;
    double const arm = 3.5;
    for (point const& p : points) {
        if (!is_drawable(p)) continue;
        spot const at = map(p);
        path.move_to({at.x - arm, at.y});
        path.line_to({at.x + arm, at.y});
        path.move_to({at.x, at.y - arm});
        path.line_to({at.x, at.y + arm});
    }
    return path;
}

void draw_cell(canvas& c, drawing const& d, double left, double top) {
    CRealRect const extent = extent_of(d);
    cell_map const map = map_into(extent, left, top);
    c.begin_clip({left, top}, cell_width, cell_height);
    for (stroke const& s : d.strokes) {
        c.stroke(s.role == stroke_role::mark     ? crosses(map, s.path)
                 : s.role == stroke_role::bezier ? bezier(map, s.path)
                                                 : polyline(map, s),
                 pen_of(s.role));
    }
    c.text({left + 8, top + 15}, d.title, {.size = 10});
    char numbers[160];
    std::snprintf(numbers, sizeof numbers, "x %.6g ... %.6g   y %.6g ... %.6g", extent.left, extent.right,
                  extent.bottom, extent.top);
    c.text({left + 8, top + cell_height - 8}, numbers, {.size = 8, .ink = {0.35, 0.35, 0.35}});
    c.end_clip();
    canvas_path frame;
    frame.move_to({left, top});
    frame.line_to({left + cell_width, top});
    frame.line_to({left + cell_width, top + cell_height});
    frame.line_to({left, top + cell_height});
    frame.close();
    c.stroke(frame, {{0.85, 0.85, 0.85}, 0.5});
}

}  // namespace

std::string picture_bytes(std::vector<drawing> const& drawings, int columns, std::string const& suffix) {
    int const count = static_cast<int>(drawings.size()), rows = (count + columns - 1) / columns;
    auto const c = make_canvas(suffix, cell_width * std::min(columns, count), cell_height * rows);
    if (!c) return {};
    for (int i = 0; i < count; ++i) {
        draw_cell(*c, drawings[static_cast<std::size_t>(i)], cell_width * (i % columns),
                  cell_height * (i / columns));
    }
    return c->finish();
}

}  // namespace tvmath
