#pragma once

#include "tvmath/ellipse.h"
#include "xyz.h"

inline namespace tvmath {

/// An ellipse in space by its true axes, for questions about distance. Half-diameters may be oblique, and the
/// ellipse may be flat (a segment) or a point.
///
/// Answers are within about 1e-15 of the size of the ellipse where the question determines them that well;
/// near the evolute, where two answers merge, the distance still is.
class true_ellipse {
public:
    explicit true_ellipse(ellipse const& e);

    /// The nearest point of the whole ellipse, in space.
    xyz closest(xyz const& p) const;
    /// The nearest point of the arc between the parameters `a1` and `a2` of the ellipse itself, in either
    /// order; the whole ellipse for a sweep of 2 pi or more.
    xyz closest_on_arc(xyz const& p, double a1, double a2) const;

private:
    struct angle_at {
        double cosine, sine;
    };
    // Coordinates of p along the true axes, in units of a_.
    void into_frame(xyz const& p, double& x, double& y) const;
    xyz at(angle_at const& t) const { return center_ + (a_ * t.cosine) * e1_ + (a_ * ratio_ * t.sine) * e2_; }
    angle_at nearest_angle(double x, double y) const;
    bool other_minimum(double x, double y, angle_at const& first, angle_at& t) const;

    xyz center_, e1_, e2_;  // unit vectors; e2 is 0 for a flat ellipse
    double a_, ratio_;      // longer half-axis; the shorter one as a part of it, 0 to 1
    double phase_;          // parameter of the ellipse where e1 is
};

}  // namespace tvmath
