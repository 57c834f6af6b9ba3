#pragma once

#include <array>
#include <vector>

#include "geometry/xyz.h"
#include "tvmath/curve.h"

inline namespace tvmath {

/// One cubic Bezier span.
struct cubic_span {
    std::array<xyz, 4> control;

    /// Relative to the first control point, so that rounding follows the size of the span; the ends are
    /// control points to the last bit.
    xyz at(double t) const;
};

/// The spans of a Bezier path of 3 n + 1 points whose control points are all there and finite; none for any
/// other size.
class span_list {
public:
    explicit span_list(curve const& c);

    bool is_empty() const { return spans_.empty(); }
    /// True when a control point of the path is 3D.
    bool is_3d() const { return is_3d_; }
    std::vector<cubic_span> const& spans() const { return spans_; }

    struct place {
        bool found;
        xyz position;
        double squared_distance;
    };
    /// The nearest place, if it is nearer than `limit`, a squared distance.
    place nearest(xyz const& p, double limit) const;
    /// The farthest place, if it is farther than `limit`.
    place farthest(xyz const& p, double limit) const;

private:
    struct box {
        xyz low, high;
    };
    std::vector<cubic_span> spans_;
    std::vector<box> boxes_;
    bool is_3d_ = false;
};

}  // namespace tvmath
