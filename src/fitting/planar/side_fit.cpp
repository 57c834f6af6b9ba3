#include "side_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

inline namespace tvmath {
namespace {

// Sides that a point is assigned to, as bits: past a corner there are two.
enum : std::uint8_t { at_left = 1, at_right = 2, at_bottom = 4, at_top = 8 };

struct side_sums {
    double count = 0, x = 0, y = 0, xx = 0, xy_ = 0, yy = 0;

    void add(xy p) {
        ++count;
        x += p.x;
        y += p.y;
        xx += p.x * p.x;
        xy_ += p.x * p.y;
        yy += p.y * p.y;
    }
    xy mean() const { return {x / count, y / count}; }
};

// One pass over the points: sides, distances, and what the best box for these sides needs.
class assignment {
public:
    assignment(std::vector<xy> const& points, box_sides sides)
        : points_(points), sides_(sides), codes_(points.size()) {}

    /// Assigns each point to the sides of `box` that it is nearest to. True when no point changed sides.
    bool assign(planar_box const& box) {
        sums_ = {};
        squares_ = 0;
        inward_ = {};
        bool unchanged = true;
        for (std::size_t i = 0; i < points_.size(); ++i) {
            std::uint8_t const code = nearest_sides(box, points_[i]);
            unchanged &= code == codes_[i];
            codes_[i] = code;
            for (unsigned int k = 0; k < 4; ++k) {
                if (code >> k & 1) sums_[k].add(points_[i]);
            }
        }
        return unchanged;
    }

    double squares() const { return squares_; }
    /// How far the point of a side that is farthest from the next sides is from them: the least over sides.
    double support() const {
        return sides_ == box_sides::all ? *std::min_element(inward_.begin(), inward_.end())
                                        : std::numeric_limits<double>::infinity();
    }

    /// The box of least squares for this assignment. False when a side has no point or no direction shows.
    bool best_box(planar_box& box) const {
        unsigned int const first = sides_ == box_sides::all ? 0 : 2;
        double xx = 0, xy_ = 0, yy = 0, total = 0;
        for (unsigned int k = first; k < 4; ++k) {
            side_sums const& s = sums_[k];
            if (s.count == 0) return false;
            xy const m = s.mean();
            double const mxx = s.xx - s.x * m.x, mxy = s.xy_ - s.x * m.y, myy = s.yy - s.y * m.y;
            // The sides across count with their scatter turned by a quarter.
            xx += k < 2 ? myy : mxx;
            xy_ += k < 2 ? -mxy : mxy;
            yy += k < 2 ? mxx : myy;
            total += s.xx + s.yy;
        }
        // Below this the direction would be made of rounding.
        if (!(std::hypot(xx - yy, 2 * xy_) > 1e-14 * total)) return false;
        xy const axis = principal_axis(xx, xy_, yy), across = quarter_turned(axis);
        double const sign = dot(axis, box.axis) < 0 ? -1 : 1;
        box.axis = sign * axis;
        if (first == 0) {
            box.left = sign * dot(sums_[0].mean(), axis);
            box.right = sign * dot(sums_[1].mean(), axis);
        }
        box.bottom = sign * dot(sums_[2].mean(), across);
        box.top = sign * dot(sums_[3].mean(), across);
        return true;
    }

private:
    // Also adds the squared distance from the outline.
    std::uint8_t nearest_sides(planar_box const& box, xy p) {
        double const n = box.across(p);
        std::uint8_t const v_side = 2 * n < box.bottom + box.top ? at_bottom : at_top;
        double const v_off = v_side == at_bottom ? box.bottom - n : n - box.top;
        if (sides_ == box_sides::bottom_and_top) {
            squares_ += v_off * v_off;
            return v_side;
        }
        double const t = box.along(p);
        std::uint8_t const u_side = 2 * t < box.left + box.right ? at_left : at_right;
        double const u_off = u_side == at_left ? box.left - t : t - box.right;
        if (u_off > 0 && v_off > 0) {
            squares_ += u_off * u_off + v_off * v_off;
            return u_side | v_side;
        }
        // Outside it is the side that the point is outside of, inside the nearer one.
        bool const on_u = u_off > v_off;
        double const off = on_u ? u_off : v_off;
        squares_ += off * off;
        unsigned int const index = on_u ? (u_side == at_left ? 0 : 1) : (v_side == at_bottom ? 2 : 3);
        inward_[index] = std::max(inward_[index], -(on_u ? v_off : u_off));
        return on_u ? u_side : v_side;
    }

    std::vector<xy> const& points_;
    box_sides sides_;
    std::vector<std::uint8_t> codes_;
    std::array<side_sums, 4> sums_{};
    std::array<double, 4> inward_{};
    double squares_ = 0;
};

// Assigns and fits in turn until no point changes sides: the box then is the exact minimum. Points at corners
// may change to and fro without end; after 100 rounds the best box stands.
bool settle(std::vector<xy> const& points, box_sides sides, double resolution, fitted_box& fitted) {
    assignment state(points, sides);
    planar_box box = fitted.box;
    double least = std::numeric_limits<double>::infinity();
    double const unknowns = sides == box_sides::all ? 5 : 3;
    double const redundancy = std::max(static_cast<double>(points.size()) - unknowns, 1.0);
    for (int round = 0; round < 100; ++round) {
        bool const settled = state.assign(box) && round > 0;
        if (round > 0 && (state.squares() < least || settled)) {
            least = state.squares();
            double const scatter = std::sqrt(least / redundancy);
            double const width = sides == box_sides::all ? box.right - box.left : box.top - box.bottom;
            fitted = {box, least,
                      state.support() > 3 * scatter + 4 * resolution &&
                          std::min(width, box.top - box.bottom) > 6 * scatter + 8 * resolution};
        }
        if (settled) return true;
        if (!state.best_box(box)) break;
    }
    return least < std::numeric_limits<double>::infinity();
}

double area(planar_box const& box) {
    return (box.right - box.left) * (box.top - box.bottom);
}

}  // namespace

bool fit_box(planar_points const& points, box_sides sides, planar_box const* nominal, fitted_box& best) {
    std::vector<xy> const sample = sample_of(points.at);
    std::vector<planar_box> starts = start_boxes(sample);
    if (sides == box_sides::bottom_and_top) {
        std::size_t const n = starts.size();
        for (std::size_t i = 0; i < n; ++i) starts.push_back(starts[i].turned());
    }
    if (nominal) starts.insert(starts.begin(), *nominal);

    // Sums of squares below the rounding of the points are equal.
    planar_scatter const scatter = scatter_of(sample);
    double const rounding = 4 * points.resolution + 1e-14 * scatter.along;
    if (!(scatter.across > rounding)) return false;
    double const floor = rounding * rounding * static_cast<double>(sample.size());
    bool found = false;
    std::size_t best_start = 0;
    for (std::size_t i = 0; i < starts.size(); ++i) {
        fitted_box fitted{starts[i], 0, false};
        if (!settle(sample, sides, points.resolution, fitted)) continue;
        fitted.squares = std::max(fitted.squares, floor);
        bool better = !found || fitted.squares < best.squares * (1 - 1e-9);
        bool const equal = found && !better && fitted.squares <= best.squares * (1 + 1e-9);
        if (equal && fitted.is_told != best.is_told) better = fitted.is_told;
        // Among equals the first start, the nominal one or the first pair, comes before a smaller box.
        else if (equal && best_start > 0)
            better = area(fitted.box) < area(best.box) * (1 - 1e-9);
        if (!better) continue;
        best = fitted;
        best_start = i;
        found = true;
    }
    if (!found) return false;
    return settle(points.at, sides, points.resolution, best) && best.is_told;
}

}  // namespace tvmath
