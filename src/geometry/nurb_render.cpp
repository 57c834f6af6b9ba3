#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "nurb_span.h"

inline namespace tvmath {

using namespace nurb_detail;

namespace {

curve to_curve(std::vector<point> const& points) {
    return curve(idioms::array<point>(static_cast<unsigned int>(points.size()), points.data()));
}

// Largest extent of the control points along an axis: what tolerances are relative to.
double control_size(TQ3NURBCurveData const& d) {
    xyz low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high = low * -1;
    for (std::uint32_t i = 0; i < d.point_count; ++i) {
        xyz const p = location(d.control_points[i]);
        if (!p.is_finite()) continue;
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    xyz const size = high - low;
    return std::max({size.x, size.y, size.z, 0.0});  // minus infinity without a finite point
}

bool has_equal_weights(TQ3NURBCurveData const& d) {
    double const w = d.control_points[0].w;
    return w != 0 && std::all_of(d.control_points, d.control_points + d.point_count,
                                 [w](TQ3RationalPoint4D const& p) { return p.w == w; });
}

// A Bezier path that grows piece by piece.
class bezier_path {
public:
    // `apart` marks a piece that does not start where the last one ended: a straight piece leads there.
    void add(xyz const (&b)[4], bool apart) {
        if (points_.empty()) {
            push(b[0]);
        } else if (apart) {
            xyz const from = last_, way = b[0] - from;
            push(from + way * (1.0 / 3));
            push(from + way * (2.0 / 3));
            push(b[0]);
        }
        for (int i = 1; i < 4; ++i) push(b[i]);
    }
    curve get() const { return to_curve(points_); }

private:
    void push(xyz const& p) {
        points_.push_back(p.location(true));
        last_ = p;
    }
    std::vector<point> points_;
    xyz last_;
};

// A curve whose inner knots all occur `degree` times consists of Bezier pieces.
nurb with_bezier_pieces(nurb n) {
    TQ3NURBCurveData const& d = std::as_const(n);
    std::vector<double> missing;
    for_each_span(d, [&](unsigned int span) {
        double const* const k = d.knot_values;
        unsigned int found = 0;
        while (found < n.degree() && k[span - found] == k[span]) ++found;
        missing.insert(missing.end(), n.degree() - found, k[span]);
    });
    n.insert_knots(missing.data(), static_cast<unsigned int>(missing.size()));
    return n;
}

// Degree 1 to 3 and equal weights: the curve itself, lower degrees raised to 3.
curve exact_path(nurb n) {
    n.clip_evaluation_range(-HUGE_VAL, HUGE_VAL);  // ends at the first and the last point
    nurb const pieces = with_bezier_pieces(std::move(n));
    TQ3NURBCurveData const& d = pieces;
    bezier_path path;
    for_each_span(d, [&](unsigned int span) {
        TQ3RationalPoint4D const* const p = d.control_points + (span + 1 - d.order);
        xyz const first = location(p[0]), second = location(p[1]), last = location(p[d.order - 1]);
        bool const apart = starts_apart(d, span);
        if (d.order == 2) {
            path.add({first, (first * 2 + last) * (1.0 / 3), (first + last * 2) * (1.0 / 3), last}, apart);
        } else if (d.order == 3) {
            path.add({first, (first + second * 2) * (1.0 / 3), (second * 2 + last) * (1.0 / 3), last}, apart);
        } else {
            path.add({first, second, location(p[2]), last}, apart);
        }
    });
    return path.get();
}

xyz bezier_at(xyz const (&b)[4], double s) {
    double const r = 1 - s;
    return b[0] * (r * r * r) + b[1] * (3 * r * r * s) + b[2] * (3 * r * s * s) + b[3] * (s * s * s);
}

// Cubic pieces with the ends and the derivatives of the curve; their error falls with the fourth power of the
// width. Compared at equal parameters, which can only overestimate how far the paths are apart.
class hermite_follower {
public:
    hermite_follower(TQ3NURBCurveData const& d, bezier_path& path)
        : origin_(origin_near(d.control_points, d.point_count)),
          // Half of the promise, since the error is known at samples alone.
          bound_(0.5 * 1e-6 * control_size(d)),
          span_(d.order),
          path_(path) {}

    void follow(TQ3NURBCurveData const& d, unsigned int span) {
        span_.set(d, span, origin_);
        add(0, span_.place_at(0), 1, span_.place_at(1), starts_apart(d, span));
    }

private:
    void add(double s, place const& start, double t, place const& end, bool apart) {
        double const third = (t - s) * span_.width() / 3;
        xyz const b[4] = {start.position, start.position + start.derivative * third,
                          end.position - end.derivative * third, end.position};
        if (is_near(b, s, t) || t - s <= 1.0 / 1024) {
            path_.add({b[0] + origin_, b[1] + origin_, b[2] + origin_, b[3] + origin_}, apart);
            return;
        }
        double const middle = (s + t) / 2;
        place const halfway = span_.place_at(middle);
        add(s, start, middle, halfway, apart);
        add(middle, halfway, t, end, false);
    }

    // NaN, of a curve that is nowhere, counts as near: no halving would help.
    bool is_near(xyz const (&b)[4], double s, double t) {
        for (int i = 1; i < 8; ++i) {
            xyz const off = bezier_at(b, i / 8.0) - span_.at(s + (t - s) * i / 8);
            if (dot(off, off) > bound_ * bound_) return false;
        }
        return true;
    }

    xyz origin_;
    double bound_;
    span_curve span_;
    bezier_path& path_;
};

double squared_distance_from_chord(xyz const& p, xyz const& a, xyz const& b) {
    xyz const chord = b - a, to = p - a;
    double const length2 = dot(chord, chord);
    double const s = length2 > 0 ? std::clamp(dot(to, chord) / length2, 0.0, 1.0) : 0;
    xyz const off = to - chord * s;
    return dot(off, off);
}

// Chords of a curve, halved until three points between their ends lie near enough.
class chord_follower {
public:
    chord_follower(TQ3NURBCurveData const& d, point const& origin, double tolerance, unsigned int n)
        : pieces_(std::clamp(n, 1u, most_pieces)),
          local_(origin_near(d.control_points, d.point_count)),
          offset_(local_ - xyz(origin)),
          span_(d.order) {
        // Zero, negative and NaN ask for the finest, which is still well above rounding.
        double const finest = 1e-9 * control_size(d);
        tolerance_ = tolerance > finest ? tolerance : finest;
    }

    void follow(TQ3NURBCurveData const& d, unsigned int span) {
        span_.set(d, span, local_);
        xyz last = span_.at(0);
        if (points_.empty() || starts_apart(d, span)) push(last);
        for (unsigned int i = 1; i <= pieces_; ++i) {
            double const s = (i - 1.0) / pieces_, t = static_cast<double>(i) / pieces_;
            xyz const next = span_.at(t);
            add(s, last, span_.at((s + t) / 2), t, next);
            last = next;
        }
    }

    std::vector<point> const& points() const { return points_; }

private:
    static constexpr unsigned int most_pieces = 65536;  // for a span

    void add(double s, xyz const& start, xyz const& middle, double t, xyz const& end) {
        double const half = (s + t) / 2;
        xyz const before = span_.at((s + half) / 2), after = span_.at((half + t) / 2);
        double const off = std::max({squared_distance_from_chord(before, start, end),
                                     squared_distance_from_chord(middle, start, end),
                                     squared_distance_from_chord(after, start, end)});
        // A tenth is kept for what lies between the three.
        if (!(off > 0.81 * tolerance_ * tolerance_) || t - s < 2.0 / most_pieces) {
            push(end);
            return;
        }
        add(s, start, before, half, middle);
        add(half, middle, after, t, end);
    }
    void push(xyz const& p) { points_.push_back((p + offset_).location(true)); }

    unsigned int pieces_;
    xyz local_, offset_;
    double tolerance_;
    span_curve span_;
    std::vector<point> points_;
};

}  // namespace

curve nurb::render(int n, bool closed) const {
    TQ3NURBCurveData const& d = data();
    std::uint64_t spans = 0;
    for_each_span(d, [&](unsigned int) { ++spans; });
    unsigned int const steps = n < 1 ? 1 : static_cast<unsigned int>(n);
    std::uint64_t const size = spans * steps + (closed ? 0 : 1);
    if (spans == 0 || size > std::numeric_limits<unsigned int>::max()) return curve();

    curve list(static_cast<unsigned int>(size));
    xyz const origin = origin_near(d.control_points, d.point_count);
    span_curve span(d.order);
    point *const first = list.lazycopy_begin(), *to = first;
    for_each_span(d, [&](unsigned int index) {
        span.set(d, index, origin);
        if (to == first && !closed) *to++ = (span.at(0) + origin).location(true);
        for (unsigned int i = 1; i <= steps; ++i) {
            *to++ = (span.at(static_cast<double>(i) / steps) + origin).location(true);
        }
    });
    return list;
}

curve nurb::render_bezier() const {
    TQ3NURBCurveData const& d = data();
    if (d.order >= 2 && d.order <= 4 && d.point_count > 0 && has_equal_weights(d)) return exact_path(*this);
    bezier_path path;
    if (d.order == 0 || d.order > largest_polynomial_order) return path.get();
    hermite_follower follower(d, path);
    for_each_span(d, [&](unsigned int span) { follower.follow(d, span); });
    return path.get();
}

curve nurb::render_polyline(point origin, double tolerance, unsigned int n) const {
    TQ3NURBCurveData const& d = data();
    if (d.order == 0 || d.order > largest_polynomial_order) return curve();
    chord_follower follower(d, origin, tolerance, n);
    for_each_span(d, [&](unsigned int span) { follower.follow(d, span); });
    return to_curve(follower.points());
}

}  // namespace tvmath
