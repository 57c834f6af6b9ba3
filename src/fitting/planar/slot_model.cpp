#include "slot_model.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr unsigned int unknowns = slot_unknowns;

slot_equations evaluate(std::vector<xy> const& points, planar_slot const& s) {
    slot_equations e;
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
        slot_row const row = {-nu, -nv, -t * nv / size, -side * nu, -1};
        for (unsigned int i = 0; i < unknowns; ++i) {
            for (unsigned int j = i; j < unknowns; ++j) e.matrix[i][j] += row[i] * row[j];
            e.gradient[i] += r * row[i];
        }
        e.squares += r * r;
    }
    return e;
}

// Solves (matrix + damping) x = right by Cholesky's method. False when a pivot is lost in rounding.
bool solve(slot_equations const& e, double damping, slot_row right, slot_row& x) {
    double const least = 1e-6 * e.matrix[unknowns - 1][unknowns - 1];  // of the radius: the number of points
    std::array<slot_row, unknowns> l{};
    for (unsigned int i = 0; i < unknowns; ++i) {
        for (unsigned int j = 0; j <= i; ++j) {
            double sum = e.matrix[j][i];
            if (i == j) sum += damping * std::max(sum, least);
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

planar_slot stepped(planar_slot s, slot_row const& step) {
    double const turn = step[2] / (s.half + s.radius), n = std::hypot(1, turn);
    s.center = s.center + step[0] * s.axis + step[1] * quarter_turned(s.axis);
    s.axis = 1 / n * (s.axis + turn * quarter_turned(s.axis));
    s.half += step[3];
    s.radius += step[4];
    return s;
}

double relative_length(slot_row const& step, planar_slot const& s) {
    double length = 0;
    for (double const x : step) length = std::max(length, std::fabs(x));
    return length / (s.half + s.radius);
}

// One damped step; the step's length relative to the slot's, infinite when there is none.
double try_step(fitted_slot const& from, double damping, planar_slot& next) {
    slot_row step{}, right{};
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

// How far the points past an end leave the straight sides: the largest, of the end where that is less. A
// point of a side whose scatter lets it pass for one of the end does not leave it by more.
double least_bend(std::vector<xy> const& points, planar_slot const& s) {
    double left = 0, right = 0;
    for (xy const& p : points) {
        xy const d = p - s.center;
        double const along = dot(d, s.axis), across = dot(d, quarter_turned(s.axis));
        double const over = std::fabs(along) - s.half;
        if (!(over > 0)) continue;
        double& bend = along < 0 ? left : right;
        bend = std::max(bend, s.radius * (1 - std::fabs(across) / std::hypot(over, across)));
    }
    return std::min(left, right);
}

}  // namespace

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

bool is_told(std::vector<xy> const& points, fitted_slot const& fitted, double rounding) {
    std::size_t const n = points.size();
    double const redundancy = n > unknowns ? static_cast<double>(n - unknowns) : 1;
    double const scatter = std::max(std::sqrt(fitted.squares() / redundancy), rounding);
    planar_slot const& s = fitted.slot;
    if (!(least_bend(points, s) > 6 * scatter)) return false;

    auto const deviation = [&](slot_row const& combination) {
        slot_row x{};
        if (!solve(fitted.equations, 0, combination, x)) return std::numeric_limits<double>::infinity();
        double form = 0;
        for (unsigned int i = 0; i < unknowns; ++i) form += combination[i] * x[i];
        return scatter * std::sqrt(form);
    };
    // The ends lie at the centre along the axis, plus and minus the half length.
    slot_row const combinations[] = {
        {1, 0, 0, 1, 0}, {1, 0, 0, -1, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0}, {0, 0, 0, 0, 1}};
    bool told = s.half > 3 * deviation({0, 0, 0, 1, 0});
    for (slot_row const& combination : combinations) told &= deviation(combination) < 0.1 * s.radius;
    return told;
}

}  // namespace tvmath
