#include <algorithm>
#include <array>
#include <cmath>

#include "circle_answers.h"
#include "tvmath/construction_choice.h"
#include "tvmath/tangent_circle.h"

inline namespace tvmath {
namespace {

using three_lines = std::array<flat_line, 3>;
using three_signs = std::array<double, 3>;

// The circles that touch three lines. Where line i has the unit direction u_i and the circle, of radius r, on
// its side s_i, the distance d_i of the centre from it is s_i r. The sines S_i = u_j x u_k (i, j, k cyclic)
// weigh the distances of any place so that it drops out of their sum. So, of a place at the right distances
// from two of the lines,
//     S_i (d_i - s_i r) = (s_1 S_1 + s_2 S_2 + s_3 S_3) dr
// with what is missing from the radius. The divisor, s_1 s_2 s_3 times the cross product of the differences
// of s_i u_i, is twice the area of a triangle in the unit circle, that is half of the product of its sides:
// these differences, unlike the sum, keep their digits when lines are nearly parallel.
class triangle {
public:
    explicit triangle(three_lines const& lines) : lines_(lines) {
        for (std::size_t i = 0; i < 3; ++i) {
            sines_[i] = cross(lines[(i + 1) % 3].u, lines[(i + 2) % 3].u);
            if (std::fabs(sines_[i]) > std::fabs(sines_[third_])) third_ = i;
        }
        first_ = (third_ + 1) % 3;
        second_ = (third_ + 2) % 3;
        vertex_ = place_beside(lines[first_], 0, lines[second_], 0, lines[first_].at);
    }

    // Whether the lines, with coordinates of size `far`, form a triangle at all.
    bool exists(double far) const {
        double reach = far + size(vertex_);
        for (flat_line const& l : lines_) reach += size(l.at);
        return std::fabs(lines_[third_].distance(vertex_)) > rounding_at(reach);
    }

    // The sides, up to a common sign, on which the three lines have the inside of the triangle: those that
    // make all sines of s_i u_i have one sign.
    three_signs inside() const {
        three_signs g;
        for (std::size_t i = 0; i < 3; ++i) g[i] = sines_[i] < 0 ? -1 : 1;
        return {1, g[0] * g[1], g[0] * g[2]};
    }

    struct circle_at {
        bool exists;
        xy center;
        double radius;
        three_signs sides;
    };
    circle_at on_sides(three_signs s) const {
        std::array<xy, 3> d;
        for (std::size_t i = 0; i < 3; ++i) {
            d[i] = s[(i + 1) % 3] * lines_[(i + 1) % 3].u - s[(i + 2) % 3] * lines_[(i + 2) % 3].u;
        }
        double const a = length(d[0]), b = length(d[1]), c = length(d[2]);
        if (std::min({a, b, c}) < parallel_sine) return {false, {}, 0, s};
        double const divisor = (cross(d[0], d[1]) < 0 ? -0.5 : 0.5) * s[0] * s[1] * s[2] * a * b * c;
        double r = 0;
        xy at = vertex_;
        for (int step = 0; step < 2;
             ++step) {  // the second one removes what the first has left of its rounding
            r += sines_[third_] * (lines_[third_].distance(at) - s[third_] * r) / divisor;
            at = place_beside(lines_[first_], s[first_] * r, lines_[second_], s[second_] * r, at);
        }
        if (r < 0) s = {-s[0], -s[1], -s[2]};
        return {true, at, std::fabs(r), s};
    }

    // The line that crosses two parallel ones, or 3.
    std::size_t transversal() const {
        for (std::size_t i = 0; i < 3; ++i) {
            if (std::fabs(sines_[i]) < parallel_sine) return i;
        }
        return 3;
    }

private:
    three_lines const& lines_;
    three_signs sines_{};
    std::size_t first_ = 0, second_ = 0, third_ = 0;  // the first two meet at the largest angle
    xy vertex_;
};

void circles_of(three_lines const& lines, double far, circle_answers& answers) {
    triangle const t(lines);
    if (!t.exists(far)) return;
    std::array<triangle::circle_at, 4> found;
    std::size_t count = 0;
    for (std::size_t beyond = 0; beyond < 4; ++beyond) {
        three_signs sides = t.inside();
        if (beyond > 0) sides[beyond - 1] *= -1;
        triangle::circle_at const next = t.on_sides(sides);
        if (next.exists) found[count++] = next;
    }
    // Between parallel lines both have one radius, and which of them is the inside is a matter of rounding.
    std::size_t const k = t.transversal();
    if (k < 3 && count == 2 && found[0].sides[k] < 0) std::swap(found[0], found[1]);
    for (std::size_t i = 0; i < count; ++i) {
        double height = 0;
        for (flat_line const& l : lines) height += l.height_at(found[i].center) / 3;
        answers.add(found[i].radius, found[i].center, height);
    }
}

}  // namespace

idioms::ref<multi_solution> circle_tangent_tangent_tangent(line a, line b, line c,
                                                           std::vector<Circle_Description>& circles) {
    if (is_empty(a) || is_empty(b) || is_empty(c)) {
        return circle_answers(false, xyz()).remembered<circle_tan_tan_tan_multi>(circles);
    }
    xyz const origin(a.basis(0));
    circle_answers answers(a.is_3d() || b.is_3d() || c.is_3d(), origin);
    three_lines const lines = {flat_line(a, origin), flat_line(b, origin), flat_line(c, origin)};
    if (std::all_of(lines.begin(), lines.end(), [](flat_line const& l) { return l.has_direction(); })) {
        circles_of(lines, size(xy(origin)), answers);
    }
    return answers.remembered<circle_tan_tan_tan_multi>(circles);
}

}  // namespace tvmath
