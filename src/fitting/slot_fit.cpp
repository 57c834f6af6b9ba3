#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "planar_starts.h"
#include "tvmath/quick_fit.h"
#include "tvmath/scalar.h"
#include "tvmath/shape_fit.h"

inline namespace tvmath {
namespace {

constexpr unsigned int unknowns = 5;
using five = std::array<double, unknowns>;

// Centre, direction, half the length between the centres of the ends, radius.
struct planar_slot {
    xy center, axis{1, 0};
    double half = 0, radius = 0;
};

// Normal equations of one round, with the sum of squared distances. The unknowns are, all as lengths: the
// centre along and across, the turn times `half` + `radius`, the half length, the radius.
struct normal_equations {
    std::array<five, unknowns> matrix{};
    five gradient{};
    double squares = 0;
    std::size_t left = 0, right = 0;
};

normal_equations evaluate(std::vector<xy> const& points, planar_slot const& s) {
    normal_equations e;
    double const size = s.half + s.radius;
    for (xy const& p : points) {
        xy const d = p - s.center;
        double const along = dot(d, s.axis), across = dot(d, quarter_turned(s.axis));
        // The foot on the middle line; beyond its ends, the distance from the end.
        double const t = std::clamp(along, -s.half, s.half), over = along - t;
        double const distance = std::hypot(over, across);
        if (!(distance > 0)) continue;  // on the middle line: no direction to go, and no point of an outline
        double const nu = over / distance, nv = across / distance, r = distance - s.radius;
        double const side = over > 0 ? 1 : over < 0 ? -1 : 0;
        five const row = {-nu, -nv, -t * nv / size, -side * nu, -1};
        for (unsigned int i = 0; i < unknowns; ++i) {
            for (unsigned int j = i; j < unknowns; ++j) e.matrix[i][j] += row[i] * row[j];
            e.gradient[i] += r * row[i];
        }
        e.squares += r * r;
    }
    return e;
}

double squares_of(std::vector<xy> const& points, planar_slot const& s) {
    double squares = 0;
    for (xy const& p : points) {
        xy const d = p - s.center;
        double const along = dot(d, s.axis);
        double const over = along - std::clamp(along, -s.half, s.half);
        squares += sqr(std::hypot(over, dot(d, quarter_turned(s.axis))) - s.radius);
    }
    return squares;
}

// Solves (matrix + damping) x = right by Cholesky's method. False when a pivot is lost in rounding.
bool solve(normal_equations const& e, double damping, five right, five& x) {
    std::array<five, unknowns> l{};
    for (unsigned int i = 0; i < unknowns; ++i) {
        for (unsigned int j = 0; j <= i; ++j) {
            double sum = e.matrix[j][i] * (i == j ? 1 + damping : 1);
            double const whole = sum;
            for (unsigned int k = 0; k < j; ++k) sum -= l[i][k] * l[j][k];
            if (i == j) {
                if (!(sum > 1e-13 * whole)) return false;
                l[i][i] = std::sqrt(sum);
            } else {
                l[i][j] = sum / l[j][j];
            }
        }
    }
    for (unsigned int i = 0; i < unknowns; ++i) {
        for (unsigned int k = 0; k < i; ++k) right[i] -= l[i][k] * right[k];
        right[i] /= l[i][i];
    }
    for (unsigned int i = unknowns; i-- > 0;) {
        for (unsigned int k = i + 1; k < unknowns; ++k) right[i] -= l[k][i] * right[k];
        right[i] /= l[i][i];
    }
    x = right;
    return true;
}

planar_slot stepped(planar_slot s, five const& step) {
    double const turn = step[2] / (s.half + s.radius), n = std::hypot(1, turn);
    s.center = s.center + step[0] * s.axis + step[1] * quarter_turned(s.axis);
    s.axis = 1 / n * (s.axis + turn * quarter_turned(s.axis));
    s.half += step[3];
    s.radius += step[4];
    return s;
}

struct fitted_slot {
    planar_slot slot;
    normal_equations equations;
    double squares() const { return equations.squares; }
};

double relative_length(five const& step, planar_slot const& s) {
    double length = 0;
    for (double const x : step) length = std::max(length, std::fabs(x));
    return length / (s.half + s.radius);
}

// One damped step; the step's length relative to the slot's, infinite when there is none.
double try_step(fitted_slot const& from, double damping, planar_slot& next) {
    five step{}, right{};
    for (unsigned int i = 0; i < unknowns; ++i) right[i] = -from.equations.gradient[i];
    if (!solve(from.equations, damping, right, step)) return std::numeric_limits<double>::infinity();
    next = stepped(from.slot, step);
    bool const is_slot = next.half >= 0 && next.radius > 0;
    return is_slot ? relative_length(step, from.slot) : std::numeric_limits<double>::infinity();
}

// Undamped steps for as long as they shrink. Steps this small are not seen in the sum of squares any more.
bool polish(std::vector<xy> const& points, fitted_slot& fitted) {
    double last = 1e-4;
    for (int round = 0; round < 50; ++round) {
        planar_slot next;
        double const length = try_step(fitted, 0, next);
        if (!std::isfinite(length)) return false;
        if (length >= last) return round > 0;
        fitted = {next, evaluate(points, next)};
        if (length <= 1e-15) return true;
        last = length;
    }
    return true;
}

// Levenberg and Marquardt's damped steps as far as one of 1e-6 of the size, then undamped ones.
bool settle(std::vector<xy> const& points, fitted_slot& fitted) {
    double damping = 1e-3;
    fitted.equations = evaluate(points, fitted.slot);
    for (int round = 0; round < 100 && damping < 1e8; ++round) {
        planar_slot next;
        double const length = try_step(fitted, damping, next);
        if (length < 1e-6 && damping <= 1) return polish(points, fitted);
        if (std::isfinite(length) && squares_of(points, next) <= fitted.squares()) {
            fitted = {next, evaluate(points, next)};
            damping *= 0.01;
        } else {
            damping = std::max(damping * 10, 1e-4);
        }
    }
    return false;
}

// Whether the points tell the slot, as the header states it. The scatter is at least the rounding.
bool is_told(planar_points const& points, fitted_slot const& fitted, double rounding) {
    std::size_t const n = points.at.size();
    double const redundancy = n > unknowns ? static_cast<double>(n - unknowns) : 1;
    double const variance = std::max(fitted.squares() / redundancy, sqr(rounding));
    // Of the ends, which are the centre along the axis, plus and minus the half length; then of the turn, the
    // half length and the radius.
    five const combinations[] = {
        {1, 0, 0, 1, 0}, {1, 0, 0, -1, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0}, {0, 0, 0, 0, 1}};
    auto const deviation = [&](five const& combination) {
        five x{};
        if (!solve(fitted.equations, 0, combination, x)) return std::numeric_limits<double>::infinity();
        double form = 0;
        for (unsigned int i = 0; i < unknowns; ++i) form += combination[i] * x[i];
        return std::sqrt(variance * form);
    };
    planar_slot const& s = fitted.slot;
    bool told = s.half > 3 * deviation({0, 0, 0, 1, 0});
    for (five const& combination : combinations) told &= deviation(combination) < 0.1 * s.radius;
    return told;
}

planar_slot slot_in(planar_box const& box) {
    planar_box const lying = box.right - box.left < box.top - box.bottom ? box.turned() : box;
    double const radius = (lying.top - lying.bottom) / 2;
    return {lying.center(), lying.axis, (lying.right - lying.left) / 2 - radius, radius};
}

// The starts in the order of their sums of squares, the best of them only unless the points are few.
std::vector<fitted_slot> starts_of(std::vector<xy> const& sample) {
    std::vector<fitted_slot> starts;
    for (planar_box const& box : start_boxes(sample)) {
        planar_slot const s = slot_in(box);
        if (s.radius > 0) starts.push_back({s, {}});
    }
    if (sample.size() <= 8) return starts;
    for (fitted_slot& start : starts) start.equations.squares = squares_of(sample, start.slot);
    std::stable_sort(starts.begin(), starts.end(),
                     [](auto const& a, auto const& b) { return a.squares() < b.squares(); });
    starts.resize(std::min<std::size_t>(starts.size(), 6));
    return starts;
}

bool fit(planar_points const& points, fitted_slot& best) {
    std::vector<xy> const sample = sample_of(points.at);
    planar_scatter const scatter = scatter_of(sample);
    double const rounding = points.resolution + 1e-15 * scatter.along;
    if (!(scatter.across > 4 * rounding)) return false;
    double const floor = 16 * sqr(rounding) * static_cast<double>(sample.size());
    bool found = false;
    double least = 0;
    for (fitted_slot& start : starts_of(sample)) {
        if (!settle(sample, start)) continue;
        double const squares = std::max(start.squares(), floor);
        bool better = !found || squares < least * (1 - 1e-9);
        if (!better && squares <= least * (1 + 1e-9))
            better = start.slot.radius < best.slot.radius * (1 - 1e-9);
        if (!better) continue;
        best = start;
        least = squares;
        found = true;
    }
    return found && settle(points.at, best) && is_told(points, best, rounding);
}

slot placed(planar_points const& points, planar_slot const& s) {
    xy const axis = is_rightward(s.axis) ? s.axis : -1 * s.axis;
    return slot(points.place(s.center, s.half * axis, s.radius * quarter_turned(axis)));
}

}  // namespace

slot slot_fit(idioms::array<point> points) {
    planar_points const relative = relative_to(point_fit(points), span_of(points));
    fitted_slot fitted;
    return relative.at.size() >= unknowns && fit(relative, fitted) ? placed(relative, fitted.slot) : slot();
}

}  // namespace tvmath
