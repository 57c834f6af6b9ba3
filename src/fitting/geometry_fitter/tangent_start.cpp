#include <algorithm>
#include <cmath>
#include <limits>

#include "circle_lsf.h"
#include "tvmath/polynomial.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

// A line in XY: a point of it, its unit direction (ex, ey) and its unit normal (-ey, ex).
struct directed_line {
    double x, y, ex, ey;

    explicit directed_line(transform const& l) {
        point const o = l.basis(0), d = l.basis(1);
        double const length = std::hypot(d.x(), d.y());
        x = o.x();
        y = o.y();
        ex = d.x() / length;
        ey = d.y() / length;
    }
    double along(double px, double py) const { return (px - x) * ex + (py - y) * ey; }
    double across(double px, double py) const { return (py - y) * ex - (px - x) * ey; }
    // The same line from the foot of a point, on the side where `height` is positive.
    directed_line from_foot_of(point const& p) const {
        directed_line l = *this;
        double const t = along(p.x(), p.y());
        l.x += t * ex;
        l.y += t * ey;
        if (across(p.x(), p.y()) < 0) {
            l.ex = -ex;
            l.ey = -ey;
        }
        return l;
    }
};

// Circles with one unknown a, by which the power of a point, its squared distance from the centre less the
// squared radius, is A - 2 B a + C a². In the frame of `axis` the centre is (a, k(a)), and the radius is
// |k(a) + radius + slope a|, with k(a) = (k0 - 2 k1 a + k2 a²) / 2.
struct pencil {
    directed_line axis;
    double k0 = 0, k1 = 0, k2 = 0;  // centres off the axis: circles that touch it
    double radius = 0, slope = 0;   // centres on the axis: circles that touch two lines alike

    struct coefficients {
        double a, b, c;
    };
    coefficients power_of(point const& p) const {
        double const x = axis.along(p.x(), p.y()), y = axis.across(p.x(), p.y());
        return {x * x + y * y - y * k0 - radius * radius, x - y * k1 + radius * slope,
                1 - y * k2 - slope * slope};
    }
    planar_circle at(double a) const {
        double const k = (k0 - 2 * k1 * a + k2 * a * a) / 2;
        return {axis.x + a * axis.ex - k * axis.ey, axis.y + a * axis.ey + k * axis.ex,
                std::fabs(k + radius + slope * a)};
    }
};

double sum_of_squares(planar_circle const& c, std::vector<point> const& points) {
    double sum = 0;
    for (point const& p : points) {
        double const dx = p.x() - c.x, dy = p.y() - c.y, r = std::sqrt(dx * dx + dy * dy) - c.radius;
        sum += r * r;
    }
    return sum;
}

// The best of the circles shown to it.
struct best_circle {
    planar_circle circle;
    double badness = std::numeric_limits<double>::infinity();

    void consider(planar_circle const& c, double how_bad) {
        if (!c.is_usable() || !(how_bad < badness)) return;
        circle = c;
        badness = how_bad;
    }
};

// Where the sum of the squared powers is stationary, a cubic is zero; of its roots the one with the least
// sum of squared distances is best.
void consider_stationary(pencil const& circles, std::vector<point> const& fit, best_circle& best) {
    double ab = 0, ac_bb = 0, bc = 0, cc = 0, xx = 0;
    for (point const& p : fit) {
        auto const [a, b, c] = circles.power_of(p);
        ab += a * b;
        ac_bb += a * c + 2 * b * b;
        bc += b * c;
        cc += c * c;
        xx += b * b + std::fabs(a);
    }
    // In units of the size of the data, so that the coefficients are of one magnitude.
    double const size = std::sqrt(xx / static_cast<double>(fit.size()));
    double roots[3];
    int const n = cubic(-ab / (size * size * size), ac_bb / (size * size), -3 * bc / size, cc, roots);
    for (int i = 0; i < n; ++i) {
        planar_circle const c = circles.at(size * roots[i]);
        best.consider(c, sum_of_squares(c, fit));
    }
}

// The circles of power 0 of the one point: C a² - 2 B a + A = 0. The quarter discriminant B² - A C comes from
// the caller, who knows it without cancellation. The smaller circle is taken, the first of equal ones.
void consider_exact(pencil const& circles, point const& p, double discriminant, best_circle& best) {
    if (!(discriminant >= 0)) return;
    auto const [a, b, c] = circles.power_of(p);
    double const q = b + std::copysign(std::sqrt(discriminant), b);
    for (double const root : {q / c, a / q}) {
        planar_circle const found = circles.at(root);
        best.consider(found, found.radius);
    }
}

// Circles that touch the line and pass the point.
pencil touching_through(directed_line const& touched, point const& p) {
    pencil circles{touched.from_foot_of(p)};
    double const h = circles.axis.across(p.x(), p.y());
    circles.k0 = h;
    circles.k2 = 1 / h;
    return circles;
}

// Of the circles that touch the line, for each place a of the contact the one with the least sum of squared
// powers.
pencil touching_best(directed_line const& touched, std::vector<point> const& fit) {
    pencil circles{touched.from_foot_of(point_fit(fit))};
    double sy = 0, xy = 0, y1 = 0, yy = 0;
    for (point const& p : fit) {
        double const x = circles.axis.along(p.x(), p.y()), y = circles.axis.across(p.x(), p.y());
        sy += (x * x + y * y) * y;
        xy += x * y;
        y1 += y;
        yy += y * y;
    }
    circles.k0 = sy / yy;
    circles.k1 = xy / yy;
    circles.k2 = y1 / yy;
    return circles;
}

void consider_one_line(circle_conditions const& known, best_circle& best) {
    directed_line const touched(known.touched[0]);
    std::vector<point> const& fit = known.fit;
    if (!known.through.empty()) {
        consider_stationary(touching_through(touched, known.through[0]), fit, best);
    } else if (fit.size() > 2) {
        consider_stationary(touching_best(touched, fit), fit, best);
    } else {
        auto const height = [&](point const& p) { return std::fabs(touched.across(p.x(), p.y())); };
        bool const first = height(fit[0]) >= height(fit[1]);
        point const &high = fit[first ? 0 : 1], &low = fit[first ? 1 : 0];
        pencil const circles = touching_through(touched, high);
        double const h = circles.k0, x = circles.axis.along(low.x(), low.y()),
                     y = circles.axis.across(low.x(), low.y());
        consider_exact(circles, low, y / h * (x * x + (h - y) * (h - y)), best);
    }
}

// The circles that touch both lines have their centres on a bisector, where the distances from the lines are
// equal, across(first) = sign across(second). It is taken from the point next to the data and not from the
// apex, so that parallel lines are no special case.
void consider_bisector(directed_line const& first, directed_line const& second, double sign,
                       std::vector<point> const& fit, best_circle& best) {
    point const middle = point_fit(fit);
    double const s1 = first.across(middle.x(), middle.y()), s2 = sign * second.across(middle.x(), middle.y());
    // Normal of the bisector: the gradient of the difference of the two.
    double const nx = -first.ey + sign * second.ey, ny = first.ex - sign * second.ex, n = std::hypot(nx, ny);
    // Of parallel lines only one bisector exists. The other is sought no farther than 1e8 times the distance
    // of the lines: beyond, no digit of a circle there would be true.
    if (!(n > 1e-8)) return;
    pencil circles{first};
    circles.axis.x = middle.x() - (s1 - s2) / n * (nx / n);
    circles.axis.y = middle.y() - (s1 - s2) / n * (ny / n);
    circles.axis.ex = ny / n;
    circles.axis.ey = -nx / n;
    circles.radius = first.across(circles.axis.x, circles.axis.y);
    circles.slope = first.ex * circles.axis.ey - first.ey * circles.axis.ex;
    if (fit.size() > 1) {
        consider_stationary(circles, fit, best);
    } else {
        consider_exact(circles, fit[0], s1 * s2, best);
    }
}

// The in-circle: its centre is the mean of the corners weighted by the opposite sides.
void consider_in_circle(circle_conditions const& known, best_circle& best) {
    directed_line const side[] = {directed_line(known.touched[0]), directed_line(known.touched[1]),
                                  directed_line(known.touched[2])};
    double x[3], y[3];
    for (int i = 0; i < 3; ++i) {
        directed_line const &a = side[(i + 1) % 3], &b = side[(i + 2) % 3];
        double const t = b.across(a.x, a.y) / (a.ey * b.ex - a.ex * b.ey);
        x[i] = a.x - t * a.ex;
        y[i] = a.y - t * a.ey;
    }
    double const l0 = std::hypot(x[1] - x[2], y[1] - y[2]), l1 = std::hypot(x[2] - x[0], y[2] - y[0]),
                 l2 = std::hypot(x[0] - x[1], y[0] - y[1]), round = l0 + l1 + l2;
    planar_circle c;
    c.x = x[0] + (l1 * (x[1] - x[0]) + l2 * (x[2] - x[0])) / round;
    c.y = y[0] + (l1 * (y[1] - y[0]) + l2 * (y[2] - y[0])) / round;
    c.radius = std::fabs(side[0].across(c.x, c.y));
    best.consider(c, c.radius);
}

}  // namespace

bool starting_tangent_circle(circle_conditions const& known, planar_circle& start) {
    best_circle best;
    if (known.touched.size() == 1) {
        consider_one_line(known, best);
    } else if (known.touched.size() == 2) {
        directed_line const first(known.touched[0]), second(known.touched[1]);
        for (double const sign : {-1.0, 1.0}) consider_bisector(first, second, sign, known.fit, best);
    } else {
        consider_in_circle(known, best);
    }
    start = best.circle;
    return start.is_usable();
}

}  // namespace geometry_fitter
}  // namespace tvmath
