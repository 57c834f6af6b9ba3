#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/bracketed_root.h"
#include "least_tangent.h"
#include "line_about.h"
#include "tangent_pencil.h"
#include "tvmath/tangent.h"

inline namespace tvmath {
namespace {

// The place of an ellipse, from its centre, where its outward normal is `n`, and how far along it that is.
struct support {
    xyz offset;
    double reach;

    support(flat_ellipse const& e, xy const& n) {
        double const alpha = dot(xy(e.u), n), beta = dot(xy(e.v), n);
        reach = std::sqrt(alpha * alpha + beta * beta);
        offset = (alpha / reach) * e.u + (beta / reach) * e.v;
    }
};

xy normal_at(double angle) {
    return {std::cos(angle), std::sin(angle)};
}
xy left_of(xy const& n) {
    return {-n.y, n.x};
}

// A tangent by the angle of its normal, which points out of the first ellipse.
struct common_tangent {
    double angle;
    double side;   // 1 when both ellipses lie on one side of it, -1 when it runs between them
    bool touches;  // both places on it are one
};

// Two ellipses seen along Z. Their common tangents are the zeros of the clearance: how far the second one
// reaches beyond the tangent of the first with the normal n,
//
//     gap n + side reach(second) - reach(first),    gap from the first centre to the second.
class ellipse_pair {
public:
    ellipse_pair(flat_ellipse const& first, flat_ellipse const& second)
        : first_(first),
          second_(second),
          gap_(second.center - first.center),
          towards_(std::atan2(gap_.y, gap_.x)),
          distance_(std::hypot(gap_.x, gap_.y)) {
        extent_ = std::sqrt(first.squared_size()) + std::sqrt(second.squared_size());
        double const coordinates = size(xy(first.center)) + size(xy(second.center));
        noise_ = 4 * std::numeric_limits<double>::epsilon() * (coordinates + extent_);
    }

    std::vector<common_tangent> tangents() const {
        if (!std::isfinite(noise_ + distance_)) return {};
        double between = towards_;
        double room = clearance(between, -1).value;
        if (!(room > noise_) && distance_ > 0) {
            between = widest();
            room = clearance(between, -1).value;
        }
        return room >= -noise_ && distance_ > 0 ? apart(between, room <= noise_) : together();
    }

    // From place to place. Its direction is told by the normal: the places of a short one are too near to
    // each other for that.
    line line_of(common_tangent const& tangent, bool solid) const {
        xy const n = normal_at(tangent.angle), along = left_of(n);
        xyz const from = support(first_, n).offset, to = tangent.side * support(second_, n).offset;
        xyz const way = gap_ + to - from;
        double half = 0.5 * dot(xy(way), along), rise = 0.5 * way.z;
        xyz const middle = first_.center + from + xyz(half * along.x, half * along.y, rise);
        if (tangent.touches || std::fabs(half) <= noise_) {
            half = least_half_length;
            rise = 0;
        }
        return line_about(middle, {half * along.x, half * along.y, rise}, solid);
    }

private:
    value_and_slope clearance(double angle, double side) const {
        xy const n = normal_at(angle);
        support const one(first_, n), two(second_, n);
        xyz const way = gap_ + side * two.offset - one.offset;
        return {dot(xy(gap_), n) + side * two.reach - one.reach, dot(xy(way), left_of(n))};
    }

    double zero(double positive, double negative, double side) const {
        double const sign = positive < negative ? -1 : 1;
        auto const rising = [&](double angle) {
            value_and_slope const at = clearance(angle, side);
            return value_and_slope{sign * at.value, sign * at.slope};
        };
        return bracketed_root(rising, std::min(positive, negative), std::max(positive, negative),
                              positive + (negative - positive) / 2);
    }

    // The normal of the widest gap between the ellipses. On the lines gap + tau gap' of normals the sum of
    // both reaches is a convex function of tau, and it is least where the places of both balance across the
    // gap.
    double widest() const {
        xy const across = left_of(normal_at(towards_));
        double const d1 = first_.determinant, d2 = second_.determinant;
        auto const balance = [&](double s) {
            support const one(first_, normal_at(towards_ + s)), two(second_, normal_at(towards_ + s));
            double const bend =  // the sum of the radii of curvature
                d1 * d1 / (one.reach * one.reach * one.reach) + d2 * d2 / (two.reach * two.reach * two.reach);
            return value_and_slope{dot(xy(one.offset + two.offset), across), bend * std::cos(s)};
        };
        return towards_ + bracketed_root(balance, -pi / 2, pi / 2, 0);
    }

    // Two outer and two inner tangents, one of each with its normal on either side of the gap: the normals of
    // the lines that separate the ellipses form one cone. The inner ones are one where the ellipses touch.
    std::vector<common_tangent> apart(double between, bool touching) const {
        std::vector<common_tangent> found = {{zero(between, between + pi, 1), 1, false},
                                             {zero(between, between - pi, 1), 1, false}};
        if (touching) {
            found.push_back({between, -1, true});
        } else {
            found.push_back({zero(between, towards_ + pi / 2, -1), -1, false});
            found.push_back({zero(between, towards_ - pi / 2, -1), -1, false});
        }
        return found;
    }

    // Ellipses that overlap have outer tangents only, up to four.
    std::vector<common_tangent> together() const {
        // The frame in which the other ellipse keeps most of its digits.
        bool const exchanged = spread(second_, first_) < spread(first_, second_);
        flat_ellipse const& frame = exchanged ? second_ : first_;
        std::vector<common_tangent> found;
        for (support_crossing const& c : support_crossings(frame, exchanged ? first_ : second_, noise_)) {
            // The clearance is the support of the second less that of the first.
            bool const falls = c.starts_positive == exchanged;
            double const angle = !c.passes ? flat_place(c)
                                 : falls   ? zero(c.from, c.to, 1)
                                           : zero(c.to, c.from, 1);
            // Ellipses that barely overlap seem to touch: that is a zero of the other clearance, whose normal
            // points out of the frame.
            double const outwards = exchanged ? angle + pi : angle;
            if (std::fabs(clearance(angle, 1).value) > std::fabs(clearance(outwards, -1).value)) continue;
            found.push_back({angle, 1, !c.passes});
        }
        double const start = found.size() <= 2 && distance_ > 1e-6 * extent_ ? towards_ : body_angle();
        auto const turn = [&](common_tangent const& t) { return modulus(t.angle - start, 2 * pi); };
        std::sort(found.begin(), found.end(),
                  [&](auto const& a, auto const& b) { return turn(a) < turn(b); });
        return found;
    }

    static double spread(flat_ellipse const& frame, flat_ellipse const& other) {
        return std::sqrt(frame.squared_size()) *
               (1 + size(frame.location(other.center)) + size(frame.direction(other.u)) +
                size(frame.direction(other.v)));
    }

    // A touch keeps half of its digits in the value, but all of them in the slope.
    double flat_place(support_crossing const& c) const {
        double const low = clearance(c.from, 1).slope, high = clearance(c.to, 1).slope;
        double const flat = c.from + (c.to - c.from) * (low / (low - high));
        bool const is_within = (flat - c.from) * (flat - c.to) <= 0;
        return is_within ? flat : c.from + (c.to - c.from) / 2;
    }

    // An angle that turns with the features and that no tangent of a regular figure has: beside the first
    // axis of the first ellipse, or of the second one when the first is nearly round.
    double body_angle() const {
        bool const is_round = 2 * std::fabs(first_.determinant) > 0.99 * first_.squared_size();
        xyz const& axis = is_round ? second_.u : first_.u;
        return std::atan2(axis.y, axis.x) + 0.618;
    }

    flat_ellipse const &first_, &second_;
    xyz gap_;
    double towards_, distance_, extent_, noise_;
};

}  // namespace

idioms::array<line> line_tangent(ellipse a, ellipse b, bool& inner) {
    inner = false;
    if (is_empty(a) || is_empty(b)) return {};
    flat_ellipse const first(a), second(b);
    if (first.is_flat() || second.is_flat()) return {};
    ellipse_pair const pair(first, second);
    std::vector<common_tangent> const found = pair.tangents();
    idioms::array<line> lines(static_cast<unsigned int>(found.size()));
    line* to = lines.lazycopy_begin();
    bool between = false;
    for (common_tangent const& tangent : found) {
        *to = pair.line_of(tangent, a.is_3d() || b.is_3d());
        if ((to++)->is_trivial()) return {};
        between = between || tangent.side < 0;
    }
    inner = between;
    return lines;
}

}  // namespace tvmath
