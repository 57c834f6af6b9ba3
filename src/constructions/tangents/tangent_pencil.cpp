#include "tangent_pencil.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// In the frame whose unit circle the one ellipse is, with the other's centre q and half-diameters a and b,
// the tangents at n = (cos t, sin t) are common where
//
//     G(t) = (1 - q n)² - (a n)² - (b n)²
//
// is 0: the intersection of the dual conics. G is the difference of the supports times a factor that is
// positive unless a line separates the ellipses. With the tangent of half the angle, over two half turns, it
// is a quartic in Bernstein form, whose zeros number at most as many as its changes of sign (J. M. Lane, R.
// F. Riesenfeld, Bounds on a polynomial, BIT 21 (1981) 112-117). The halving works on the three quadratics
// and not on the quartic, in which squares of small differences would be lost.
class tangent_pencil {
public:
    tangent_pencil(flat_ellipse const& frame, flat_ellipse const& other, double noise)
        : q_(frame.location(other.center)),
          a_(frame.direction(other.u)),
          b_(frame.direction(other.v)),
          u_((1 / frame.determinant) * xy(frame.u)),
          v_((1 / frame.determinant) * xy(frame.v)),
          noise_(noise),
          rounding_(4 * std::numeric_limits<double>::epsilon() * (1 + size(q_) + size(a_) + size(b_))) {
        double const seam = best_seam();
        xy const e1(std::cos(seam + pi / 2), std::sin(seam + pi / 2)), e2(-e1.y, e1.x);
        isolate({at(-1.0 * e2, 1), at(e1, 0), at(e2, 1)}, 0, 1);
        isolate({at(e2, 1), at(-1.0 * e1, 0), at(-1.0 * e2, 1)}, 1, 1);
        close_doubt();
    }

    std::vector<support_crossing> crossings;

private:
    // A value, or a control point, of the quadratics (1 - q n, a n, b n) and of the normal in the plane of
    // the ellipses, each times 1 + tan².
    struct control {
        double t, x, y;
        xy normal;

        double size() const { return std::fabs(t) + std::fabs(x) + std::fabs(y); }
    };
    using quadratic = std::array<control, 3>;

    control at(xy const& n, double weight) const {
        xy const normal(n.x * v_.y - n.y * u_.y, n.y * u_.x - n.x * v_.x);
        return {weight - dot(q_, n), dot(a_, n), dot(b_, n), normal};
    }
    static double product(control const& p, control const& q) { return p.t * q.t - p.x * q.x - p.y * q.y; }
    static control middle(control const& p, control const& q) {
        return {(p.t + q.t) / 2, (p.x + q.x) / 2, (p.y + q.y) / 2, 0.5 * (p.normal + q.normal)};
    }

    // By how much G may be off on a stretch.
    double uncertainty(quadratic const& c) const {
        double most = 0, steepest = 0;
        for (control const& p : c) {
            most = std::max(most, p.size());
            steepest = std::max(steepest, size(p.normal));
        }
        double const each = rounding_ + noise_ * steepest;
        return each * (most + each);
    }

    // The half turns meet where G is farthest from 0, so that no touch lies across the joint.
    double best_seam() const {
        double best = 0, most = -1;
        for (int i = 0; i < 5; ++i) {
            double const angle = 0.618 + i * (2 * pi / 5);
            control const p = at({std::cos(angle), std::sin(angle)}, 1);
            double const value = std::fabs(product(p, p)) / p.size();
            if (!(value > most)) continue;
            most = value;
            best = angle;
        }
        return best;
    }

    void isolate(quadratic const& c, double from, double width) {
        // A half turn is always halved, so that the normal turns by less than that.
        if (width < 1 && settle(c, from, width)) return;
        control const left = middle(c[0], c[1]), right = middle(c[1], c[2]), center = middle(left, right);
        isolate({c[0], left, center}, from, width / 2);
        isolate({center, right, c[2]}, from + width / 2, width / 2);
    }

    bool settle(quadratic const& c, double from, double width) {
        double const ends = product(c[0], c[2]), g0 = product(c[0], c[0]), g4 = product(c[2], c[2]);
        double const g[] = {g0, product(c[0], c[1]), (ends + 2 * product(c[1], c[1])) / 3,
                            product(c[1], c[2]), g4};
        double const noise = uncertainty(c);
        // Sizes whose squares overflow tell nothing; NaN would be halved for ever.
        if (!std::isfinite(noise * 0x1p60)) return true;
        auto const [least, most] = std::minmax_element(std::begin(g), std::end(g));
        if (*least > noise || *most < -noise) return true;
        int changes = 0;
        for (int i = 1; i < 5; ++i) changes += (g[i - 1] < 0) != (g[i] < 0);
        if (changes == 1 && std::fabs(g0) > noise && std::fabs(g4) > noise) {
            add(c[0], c[2], g0 > 0, true);
            return true;
        }
        bool const is_noise = std::max(-*least, *most) <= 4 * noise;
        if (!is_noise && width > 0x1p-40) return false;
        doubt(c, {from, from + width}, g0 > 0, g4 > 0);
        return true;
    }

    void add(control const& first, control const& last, bool starts_positive, bool passes) {
        double const from = std::atan2(first.normal.y, first.normal.x);
        double const turn = std::atan2(cross(first.normal, last.normal), dot(first.normal, last.normal));
        crossings.push_back({from, from + turn, starts_positive, passes});
    }

    // Neighbouring stretches that cannot be told from 0 are one; the signs beside it tell what it is.
    void doubt(quadratic const& c, std::array<double, 2> const& stretch, bool before, bool after) {
        if (!in_doubt_ || stretch[0] != doubt_.to) {
            close_doubt();
            doubt_ = {c[0], c[2], stretch[0], stretch[1], before, after};
            in_doubt_ = true;
        }
        doubt_.last = c[2];
        doubt_.to = stretch[1];
        doubt_.after = after;
    }
    void close_doubt() {
        // One that goes on for a quarter turn belongs to ellipses that are the same.
        if (in_doubt_ && doubt_.to - doubt_.from < 0.5) {
            add(doubt_.first, doubt_.last, doubt_.before, doubt_.before != doubt_.after);
        }
        in_doubt_ = false;
    }

    struct doubtful {
        control first, last;
        double from, to;
        bool before, after;
    };

    xy q_, a_, b_, u_, v_;
    double noise_, rounding_;
    doubtful doubt_{};
    bool in_doubt_ = false;
};

}  // namespace

std::vector<support_crossing> support_crossings(flat_ellipse const& frame, flat_ellipse const& other,
                                                double noise) {
    return tangent_pencil(frame, other, noise).crossings;
}

}  // namespace tvmath
