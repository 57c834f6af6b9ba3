#include <algorithm>
#include <cmath>
#include <limits>

#include "linalg/romberg.h"
#include "nurb_span.h"

inline namespace tvmath {

using namespace nurb_detail;

namespace {

// The elements of a closed integrand, and their integrals: length, area, moments of the area.
struct elements {
    double e[4];
    elements& operator+=(elements const& other) {
        for (int i = 0; i < 4; ++i) e[i] += other.e[i];
        return *this;
    }
};
elements operator*(elements a, double s) {
    for (double& x : a.e) x *= s;
    return a;
}
elements operator/(elements a, double s) {
    for (double& x : a.e) x /= s;
    return a;
}
elements operator+(elements a, elements const& b) {
    return a += b;
}
elements operator-(elements const& a, elements const& b) {
    return a + b * -1.0;
}

// Green's theorem for the region under the radius from the origin of the positions, per step of the
// parameter: dA = (x dy - y dx) / 2, and the integrals of x and y over the region are those of 2/3 x dA and
// 2/3 y dA.
elements green(xyz const& p, xyz const& derivative) {
    double const area = (p.x * derivative.y - p.y * derivative.x) / 2;
    return {{std::sqrt(dot(derivative, derivative)), area, area * p.x * (2.0 / 3), area * p.y * (2.0 / 3)}};
}

// The straight line from a to b, exactly; it bounds the region but is no part of the curve.
elements green_line(xyz const& a, xyz const& b) {
    double const area = (a.x * b.y - a.y * b.x) / 2;
    return {{0, area, area * (a.x + b.x) / 3, area * (a.y + b.y) / 3}};
}

// Romberg's method for all elements at once. Each has to settle within 1e-6 as a single integral does: the
// length of its own value, the others, whose integrals may be 0, of the largest element met times the width.
elements integrate_span(span_curve& span) {
    double peak[4] = {};
    auto const f = [&](double s) {
        place const p = span.place_at(s);
        elements const value = green(p.position, p.derivative);
        for (int i = 1; i < 4; ++i) peak[i] = std::max(peak[i], std::fabs(value.e[i]));
        return value;
    };
    auto const settled = [&](elements const& now, elements const& before) {
        peak[0] = std::fabs(now.e[0]);
        for (int i = 0; i < 4; ++i) {
            if (!(std::fabs(now.e[i] - before.e[i]) <= 1e-6 * peak[i])) return false;
        }
        return true;
    };
    return romberg(f, 0, 1, settled) * span.width();
}

point promoted(point p) {
    p.promote3d();
    return p;
}

// Follows curves along one outline. Where the next span does not start at the end of the last, a straight
// line joins them.
class outline_moments {
public:
    void add(nurb const& n) {
        TQ3NURBCurveData const& d = n;
        if (n.is_trivial()) return;
        span_curve span(d.order);
        for_each_span(d, [&](unsigned int index) {
            // About a point of the outline, so that a small outline far away keeps its digits.
            if (!started_) origin_ = origin_near(d.control_points, d.point_count);
            span.set(d, index, origin_);
            join(span.at(0));
            sum_ += integrate_span(span);
            end_ = span.at(1);
        });
    }

    void get(double& area, double& perimeter, point& centroid) {
        if (started_) join(start_);
        perimeter = sum_.e[0];
        area = sum_.e[1];
        // The area of a curve along a straight line is what rounding leaves of 0, a part of the square of
        // its length, and has no centroid.
        double const rounding = 4 * std::numeric_limits<double>::epsilon() * perimeter * perimeter;
        bool const has_centroid = area != 0 && !(std::fabs(area) <= rounding);
        centroid =
            has_centroid ? point(true, origin_.x + sum_.e[2] / area, origin_.y + sum_.e[3] / area) : point();
    }

private:
    void join(xyz const& next) {
        if (started_) {
            sum_ += green_line(end_, next);
        } else {
            start_ = next;
        }
        started_ = true;
    }

    bool started_ = false;
    xyz origin_, start_, end_;
    elements sum_ = {};
};

}  // namespace

nurb_integrand::nurb_integrand(nurb const& n, unsigned int span) : nurb_integrand(n, span, point()) {}

nurb_integrand::nurb_integrand(nurb const& n, unsigned int span, point const& origin) {
    TQ3NURBCurveData const& d = n;
    if (!is_span(d, span)) return;
    lower_ = d.knot_values[span];
    upper_ = d.knot_values[span + 1];
    middle_ = lower_ + (upper_ - lower_) / 2;
    coefficients_.redim(d.order);
    xyz const from =
        origin.is_trivial() ? origin_near(d.control_points + (span + 1 - d.order), d.order) : xyz(origin);
    span_coefficients(d, span, middle_, from, coefficients_.lazycopy_begin());
}

void nurb_integrand::evaluate(double t, double (&position)[3], double (&derivative)[3]) const {
    place p;
    if (!coefficients_.is_trivial()) {
        p = place_at(coefficients_.begin(), coefficients_.capacity(), t - middle_);
    }
    position[0] = p.position.x;
    position[1] = p.position.y;
    position[2] = p.position.z;
    derivative[0] = p.derivative.x;
    derivative[1] = p.derivative.y;
    derivative[2] = p.derivative.z;
}

double nurb_integrand::operator()(double t) const {
    double position[3], derivative[3];
    evaluate(t, position, derivative);
    return green({}, {derivative[0], derivative[1], derivative[2]}).e[0];
}

vector open_nurb_integrand::value(double t) const {
    return vector(1, operator()(t));
}

closed_nurb_integrand::closed_nurb_integrand(nurb const& n, unsigned int span, point const& origin)
    : nurb_integrand(n, span, promoted(origin)) {}

vector closed_nurb_integrand::value(double t) const {
    double p[3], d[3];
    evaluate(t, p, d);
    return vector(4, green({p[0], p[1], p[2]}, {d[0], d[1], d[2]}).e);
}

void nurb::compute_moments(double& length) const {
    double sum = 0;
    for_each_span(data(), [&](unsigned int span) { sum += integrate(open_nurb_integrand(*this, span)); });
    length = sum;
}

void nurb::compute_moments(double& area, double& perimeter, point& centroid) const {
    outline_moments moments;
    moments.add(*this);
    moments.get(area, perimeter, centroid);
}

void compute_moments(idioms::array<nurb> const& outline, double& length) {
    double sum = 0;
    for (nurb const& n : outline) {
        double part = 0;
        n.compute_moments(part);
        sum += part;
    }
    length = sum;
}

void compute_moments(idioms::array<nurb> const& outline, double& area, double& perimeter, point& centroid) {
    outline_moments moments;
    for (nurb const& n : outline) moments.add(n);
    moments.get(area, perimeter, centroid);
}

}  // namespace tvmath
