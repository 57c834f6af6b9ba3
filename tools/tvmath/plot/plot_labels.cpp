#include "plot_labels.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tvmath/scalar.h"

inline namespace tvmath {

void label_placer::keep_clear(spot at, double radius) {
    taken_.push_back({at.x - radius, at.y - radius, at.x + radius, at.y + radius});
}

// The area that a label there would share with others or with the outside of the panel.
double label_placer::overlap(box const& b) const {
    double const inside_x = std::min(b.right, panel_.corner.x + panel_.width - 3) -
                            std::max(b.left, panel_.corner.x + 3),
                 inside_y = std::min(b.bottom, panel_.corner.y + panel_.height - 3) -
                            std::max(b.top, panel_.corner.y + 3);
    double area = (b.right - b.left) * (b.bottom - b.top) - std::max(inside_x, 0.0) * std::max(inside_y, 0.0);
    for (box const& other : taken_) {
        double const x = std::min(b.right, other.right) - std::max(b.left, other.left),
                     y = std::min(b.bottom, other.bottom) - std::max(b.top, other.top);
        if (x > 0 && y > 0) area += x * y;
    }
    return area;
}

void label_placer::place(spot at, spot way, std::string const& words, text_style style) {
    double const width = c_.text_width(words, style), height = 0.8 * style.size;
    double const wanted = way.x == 0.0 && way.y == 0.0 ? -pi / 4 : std::atan2(way.y, way.x);
    double least = std::numeric_limits<double>::infinity();
    box best{};
    for (double const gap : {9.0, 18.0, 30.0}) {
        for (int k = 0; k < 12; ++k) {
            // From the wanted direction alternately to both sides.
            double const turn = (k % 2 == 0 ? 1 : -1) * ((k + 1) / 2) * (pi / 6), a = wanted + turn;
            spot const near = {at.x + gap * std::cos(a), at.y + gap * std::sin(a)};
            double const left = near.x - width * (1 - std::cos(a)) / 2,
                         top = near.y - height * (1 - std::sin(a)) / 2;
            box const b = {left - 2, top - 2, left + width + 2, top + height + 2};
            double const cost = overlap(b) + 0.5 * k + 0.2 * gap;
            if (cost < least) {
                least = cost;
                best = b;
            }
        }
    }
    taken_.push_back(best);
    // A label that had to go far away gets a line to its point.
    spot const edge = {std::clamp(at.x, best.left, best.right), std::clamp(at.y, best.top, best.bottom)};
    double const distance = std::hypot(edge.x - at.x, edge.y - at.y);
    if (distance > 11) {
        canvas_path leader;
        leader.move_to(at + (5.5 / distance) * (edge - at));
        leader.line_to(edge);
        c_.stroke(leader, {style.ink, 0.6});
    }
    c_.text({best.left + 2, best.bottom - 2}, words, style);
}

}  // namespace tvmath
