#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "geometry/xy.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// The meeting points, as seen along Z, of two cubic Bezier spans; reusable, so that memory is kept.
///
/// Both spans are halved as long as the bounding rectangles of their control points overlap and neither lies
/// on one side of the other's band (T. W. Sederberg, T. Nishita, Curve intersection using Bezier clipping,
/// CAD 22 (1990) 538-549). Two pieces whose directions have no direction in common meet at most once: then
/// Newton's iteration ends the search. Pieces that are straight and equal within rounding touch: a
/// neighbourhood of such pieces is one meeting point, and a long one is a common stretch, which has none.
class span_pair {
public:
    /// Appends the mean of both spans' points at each meeting, in the direction of the first span.
    void meet(point const* first, point const* second, std::vector<point>& hits);

private:
    using controls = std::array<xy, 4>;
    struct piece {
        controls p;
        double from, width;
    };
    struct contact {
        double s, t, reach;  // reach is 0 for a crossing, else the width of the piece of the first span
    };

    void search(piece const& a, piece const& b);
    bool cross_once(piece const& a, piece const& b);
    void merge_touches();
    void settle_touch(contact& c) const;

    controls first_, second_;
    double noise_ = 0;
    int steps_left_ = 0;
    std::vector<contact> contacts_;
};

}  // namespace tvmath
