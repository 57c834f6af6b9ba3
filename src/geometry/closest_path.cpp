#include "closest_path.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "bernstein.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;

double squared_distance(xyz const& a, xyz const& b) {
    xyz const d = a - b;
    return dot(d, d);
}

// No point of a span is nearer than the box around its control points.
double squared_distance_to_box(xyz const& p, xyz const& low, xyz const& high) {
    auto const gap = [](double at, double lo, double hi) { return std::max({0.0, lo - at, at - hi}); };
    double const x = gap(p.x, low.x, high.x), y = gap(p.y, low.y, high.y), z = gap(p.z, low.z, high.z);
    return x * x + y * y + z * z;
}

double largest(numbers const& list) {
    double most = 0;
    for (double const value : list) most = std::max(most, std::fabs(value));
    return most;
}

// The derivative of a polynomial of plain Bernstein coefficients.
numbers slope_of(numbers const& c) {
    numbers slope(c.size() - 1);
    for (std::size_t k = 0; k < slope.size(); ++k) {
        slope[k] = static_cast<double>(slope.size()) * (c[k + 1] - c[k]);
    }
    return slope;
}

void scale_by(numbers& c, numbers const& factors) {
    for (std::size_t k = 0; k < c.size(); ++k) c[k] *= factors[k];
}

}  // namespace

span_path::span_path(curve const& bezier) {
    if (bezier.capacity() % 3 != 1) return;
    point const* const first = bezier.begin();
    for (unsigned int i = 0; i + 3 < bezier.capacity(); i += 3) {
        std::vector<control> controls;
        for (point const* p = first + i; p <= first + i + 3; ++p) {
            if (!p->is_trivial()) controls.push_back({xyz(*p), 1});
        }
        if (controls.size() == 4) add_span(controls);
    }
}

span_path::span_path(nurb const& curve_of_spans) {
    unsigned int const order = curve_of_spans.order(), count = curve_of_spans.control_points();
    if (order == 0 || count < order) return;
    // The coefficients of a span cancel: about the first control point they keep their digits.
    origin_ = xyz(point(curve_of_spans.get_control_point(0)));
    if (!origin_.is_finite()) origin_ = xyz();
    nurb const local = curve_of_spans - origin_.location(true);
    std::vector<TQ3RationalPoint4D> powers(order);
    std::vector<control> controls(order);
    numbers const all = binomial_row(order - 1);
    for (unsigned int i = order - 1; i < count; ++i) {
        double const from = local.get_knot(i), width = local.get_knot(i + 1) - from;
        if (!(width > 0)) continue;
        local.calc_poly(i, powers.data(), from);
        // b_j = sum over k of C(j, k) / C(n, k) a_k h^k, from powers to Bernstein coefficients over the span.
        double power_of_width = 1;
        for (unsigned int k = 0; k < order; ++k, power_of_width *= width) {
            double const s = power_of_width / all[k];
            powers[k] = {powers[k].x * s, powers[k].y * s, powers[k].z * s, powers[k].w * s};
        }
        for (unsigned int j = 0; j < order; ++j) {
            numbers const row = binomial_row(j);
            xyz sum;
            double weight = 0;
            for (unsigned int k = 0; k <= j; ++k) {
                sum = sum + row[k] * xyz(powers[k].x, powers[k].y, powers[k].z);
                weight += row[k] * powers[k].w;
            }
            controls[j] = {(1 / weight) * sum, weight};
        }
        add_span(controls);
    }
}

void span_path::add_span(std::vector<control> const& controls) {
    span s = {controls_.size(), controls.size() - 1, false, controls[0].position, controls[0].position};
    for (control const& c : controls) {
        if (!c.position.is_finite() || !std::isfinite(c.weight)) return;
        s.is_rational = s.is_rational || c.weight != controls[0].weight;
        s.low = {std::min(s.low.x, c.position.x), std::min(s.low.y, c.position.y),
                 std::min(s.low.z, c.position.z)};
        s.high = {std::max(s.high.x, c.position.x), std::max(s.high.y, c.position.y),
                  std::max(s.high.z, c.position.z)};
    }
    controls_.insert(controls_.end(), controls.begin(), controls.end());
    spans_.push_back(s);
}

// Relative to the first control point; the ends are control points to the last bit.
xyz span_path::evaluate(span const& s, double t) const {
    control const* const c = controls_.data() + s.first;
    if (t <= 0) return c[0].position;
    if (t >= 1) return c[s.degree].position;
    // Horner's scheme in (1 - t), with the powers of t and the binomials beside it.
    xyz sum;
    double weight = 0, factor = 1;
    for (std::size_t k = 0; k <= s.degree; ++k) {
        double const b = factor * c[k].weight;
        sum = (1 - t) * sum + b * (c[k].position - c[0].position);
        weight = (1 - t) * weight + b;
        factor *= t * static_cast<double>(s.degree - k) / static_cast<double>(k + 1);
    }
    return c[0].position + (1 / weight) * sum;
}

// With the homogeneous Y = w (position - p), of Bernstein coefficients w_k (position_k - p), the squared
// distance is Y Y / w² and its derivative has the sign of (Y Y') w - (Y Y) w', of degree 3 n - 1; of Y Y'
// alone, of degree 2 n - 1, when w is constant.
std::vector<double> span_path::candidates(span const& s, xyz const& p) const {
    std::size_t const n = s.degree;
    std::array<numbers, 3> y, dy;
    numbers w;
    for (std::size_t k = 0; k <= n; ++k) {
        control const& c = controls_[s.first + k];
        double const weight = s.is_rational ? c.weight : 1;
        xyz const d = weight * (c.position - p);
        y[0].push_back(d.x);
        y[1].push_back(d.y);
        y[2].push_back(d.z);
        w.push_back(weight);
    }
    numbers const upper = binomial_row(static_cast<unsigned int>(n));
    numbers const lower = binomial_row(static_cast<unsigned int>(n - 1));
    double far = 0, fast = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        dy[axis] = slope_of(y[axis]);
        far += largest(y[axis]);
        fast += largest(dy[axis]);
        scale_by(y[axis], upper);
        scale_by(dy[axis], lower);
    }
    numbers slope(2 * n);  // Y Y'
    for (std::size_t axis = 0; axis < 3; ++axis) add_product(slope, 1, y[axis], dy[axis]);
    double bound = far * fast;
    if (s.is_rational) {
        numbers dw = slope_of(w), square(2 * n + 1), all(3 * n);
        bound = bound * largest(w) + far * far * largest(dw);
        scale_by(w, upper);
        scale_by(dw, lower);
        for (std::size_t axis = 0; axis < 3; ++axis) add_product(square, 1, y[axis], y[axis]);
        add_product(all, 1, slope, w);
        add_product(all, -1, square, dw);
        slope = all;
    }
    numbers const row = binomial_row(static_cast<unsigned int>(slope.size() - 1));
    for (std::size_t k = 0; k < slope.size(); ++k) slope[k] /= row[k];
    return rising_zeros(slope, 16 * std::numeric_limits<double>::epsilon() * bound);
}

xyz span_path::closest(xyz const& point_in_space) const {
    xyz const p = point_in_space - origin_;
    xyz best = evaluate(spans_.front(), 0);
    double best_distance = squared_distance(best, p);
    auto const search = [&](span const& s) {
        auto const consider = [&](double t) {
            xyz const q = evaluate(s, t);
            double const distance = squared_distance(q, p);
            if (!(distance < best_distance)) return;
            best_distance = distance;
            best = q;
        };
        consider(0);
        consider(1);
        if (s.degree == 0) return;
        for (double const t : candidates(s, p)) consider(t);
    };
    // First the span whose box is nearest, so that most of the others need not be searched.
    auto const to_box = [&p](span const& s) { return squared_distance_to_box(p, s.low, s.high); };
    auto const nearest = std::min_element(
        spans_.begin(), spans_.end(), [&](span const& a, span const& b) { return to_box(a) < to_box(b); });
    search(*nearest);
    for (span const& s : spans_) {
        if (&s != &*nearest && to_box(s) < best_distance) search(s);
    }
    return origin_ + best;
}

}  // namespace tvmath
