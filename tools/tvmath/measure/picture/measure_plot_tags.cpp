#include <algorithm>
#include <cmath>

#include "fit/fit_plot_parts.h"
#include "measure/picture/measure_plot_parts.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr text_style tag_style = {.size = 8.5, .bold = true};
constexpr double pad = 3.2, letters = 0.73 * tag_style.size;
constexpr double inset = 4;  // from the border of the image
constexpr double apart = 2;  // of two boxes
constexpr double cost_of_avoided = 1.2;
constexpr int places_around = 32;
constexpr double line_from = 13;     // A box farther away has a line to what it names.
constexpr double most_beside = 9;    // cost of a name that is only put beside
constexpr double cost_beside = 2.5;  // against the middle of what is named

spot unit(spot a) {
    double const l = std::hypot(a.x, a.y);
    return l > 0 ? (1 / l) * a : spot{};
}

// Places at equal distances along the outline, with the way to its positive side.
struct rim {
    std::vector<spot> at, out;
};

rim rim_of(outline const& o, int count) {
    rim r;
    std::size_t const n = o.at.size(), edges = o.closed ? n : n - 1;
    double total = 0;
    for (std::size_t i = 0; i < edges; ++i) {
        spot const d = o.at[(i + 1) % n] - o.at[i];
        total += std::hypot(d.x, d.y);
    }
    if (!(total > 0)) return r;
    // An open line is named at its middle rather than at its ends.
    double const step = total / count;
    double next = step / 2, run = 0;
    for (std::size_t i = 0; i < edges; ++i) {
        spot const from = o.at[i], d = o.at[(i + 1) % n] - from;
        double const l = std::hypot(d.x, d.y);
        for (; next <= run + l && l > 0; next += step) {
            r.at.push_back(from + ((next - run) / l) * d);
            spot const across = {-d.y / l, d.x / l};
            double const side = across.x * o.out[i].x + across.y * o.out[i].y < 0 ? -1 : 1;
            r.out.push_back(side * across);
        }
        run += l;
    }
    return r;
}

canvas_path rectangle_path(double left, double top, double right, double bottom) {
    canvas_path path;
    path.move_to({left, top});
    path.line_to({right, top});
    path.line_to({right, bottom});
    path.line_to({left, bottom});
    path.close();
    return path;
}

}  // namespace

void tag_placer::block(spot middle, double width, double height) {
    taken_.push_back(
        {middle.x - width / 2, middle.y - height / 2, middle.x + width / 2, middle.y + height / 2});
}

bool tag_placer::is_free(box const& b) const {
    spot const end = place_.corner + spot{place_.width, place_.height};
    if (b.left < place_.corner.x + inset || b.top < place_.corner.y + inset || b.right > end.x - inset ||
        b.bottom > end.y - inset)
        return false;
    return std::none_of(taken_.begin(), taken_.end(), [&b](box const& other) {
        return b.left < other.right + apart && other.left < b.right + apart && b.top < other.bottom + apart &&
               other.top < b.bottom + apart;
    });
}

void tag_placer::consider(spot middle, spot from, double cost) {
    if (cost >= best_.cost) return;
    box const b = {middle.x - width_ / 2, middle.y - height_ / 2, middle.x + width_ / 2,
                   middle.y + height_ / 2};
    if (!is_free(b)) return;
    for (spot const& p : avoided_) {
        if (p.x > b.left - 2 && p.x < b.right + 2 && p.y > b.top - 2 && p.y < b.bottom + 2)
            cost += cost_of_avoided;
    }
    if (cost < best_.cost) best_ = {b, from, cost};
}

void tag_placer::draw(name_tag const& tag) const {
    box const& b = best_.at;
    spot const edge = {std::clamp(best_.from.x, b.left, b.right), std::clamp(best_.from.y, b.top, b.bottom)};
    spot const way = edge - best_.from;
    if (std::hypot(way.x, way.y) > line_from) {
        canvas_path leader;
        leader.move_to(best_.from);
        leader.line_to(edge);
        c_.stroke(leader, {{1, 1, 1, 0.8}, 2.4});
        c_.stroke(leader, {tag.ink, 0.8});
    }
    canvas_path const path = rectangle_path(b.left, b.top, b.right, b.bottom);
    c_.stroke(path, {{1, 1, 1, 0.75}, 3});
    c_.fill(path, tag.is_filled ? tag.ink : color{1, 1, 1, 0.92});
    c_.stroke(path, {tag.ink, 0.7});
    text_style style = tag_style;
    style.ink = tag.is_filled ? color{1, 1, 1} : tag.ink;
    c_.text({b.left + pad, b.bottom - pad}, tag.words, style);
}

void tag_placer::put(name_tag const& tag, bool only_beside) {
    width_ = c_.text_width(tag.words, tag_style) + 2 * pad;
    height_ = letters + 2 * pad;
    best_ = {};
    best_.cost = infinity;
    view_extent extent;
    for (outline const& o : tag.outlines) extent.include(o);
    bool const is_closed = tag.outlines.size() == 1 && tag.outlines.front().closed;
    spot const middle = 0.5 * (extent.low + extent.high);
    if (is_closed && extent.width() > width_ + 8 && extent.height() > height_ + 8) {
        // Below the cross of the middle where there is room.
        bool const is_high = !tag.marks.empty() && extent.height() > 3 * height_ + 16;
        consider(middle + spot{0, is_high ? height_ / 2 + 8 : 0}, middle, 0);
    }
    for (double const gap : {5.0, 9.0, 14.0, 22.0, 34.0, 50.0, 75.0, 110.0}) {
        auto const beside = [&](spot at, spot out, double cost) {
            double const half = std::fabs(out.x) * width_ / 2 + std::fabs(out.y) * height_ / 2;
            consider(at + (gap + half) * out, at, cost + 0.25 * gap);
        };
        for (outline const& o : tag.outlines) {
            rim const r = rim_of(o, places_around);
            for (std::size_t i = 0; i < r.at.size(); ++i) {
                double const off_middle =
                    o.closed ? 0 : std::fabs(static_cast<double>(i) - (places_around - 1) / 2.0) * 0.15;
                for (double const side : {1.0, -1.0})
                    beside(r.at[i], side * r.out[i], cost_beside + off_middle + (side < 0 ? 0.4 : 0));
            }
        }
        if (!tag.outlines.empty()) continue;
        for (spot const& mark : tag.marks) {
            for (int k = 0; k < 12; ++k)
                beside(mark, unit({std::cos(k * pi / 6 - pi / 4), std::sin(k * pi / 6 - pi / 4)}), 0.1 * k);
        }
    }
    if (!(best_.cost < (only_beside ? most_beside : infinity))) return;
    taken_.push_back(best_.at);
    draw(tag);
}

}  // namespace tvmath
