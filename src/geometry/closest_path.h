#pragma once

#include <cstddef>
#include <vector>

#include "tvmath/curve.h"
#include "tvmath/nurb.h"
#include "xyz.h"

inline namespace tvmath {

/// A path of polynomial or rational Bezier spans, made once for many questions about distance.
///
/// The nearest point of a span is where the derivative of the squared distance rises through 0, or an end;
/// all such zeros are found, so that none is missed, and the parameter is as exact as rounding of the
/// coordinates relative to the point leaves it. Weights must be above 0.
///
/// Spans with control points that are trivial or not finite are left out.
class span_path {
public:
    /// A cubic Bezier path; without spans when the size is not 3 n + 1.
    explicit span_path(curve const& bezier);
    /// The spans of a NURBS curve between its distinct knots.
    explicit span_path(nurb const& curve_of_spans);

    bool is_empty() const { return spans_.empty(); }
    /// The nearest point in space. There must be a span.
    xyz closest(xyz const& p) const;

private:
    struct control {
        xyz position;  // divided by the weight
        double weight;
    };
    struct span {
        std::size_t first, degree;
        bool is_rational;
        xyz low, high;
    };
    void add_span(std::vector<control> const& controls);
    xyz evaluate(span const& s, double t) const;
    std::vector<double> candidates(span const& s, xyz const& p) const;

    xyz origin_;  // what the control points are relative to
    std::vector<control> controls_;
    std::vector<span> spans_;
};

}  // namespace tvmath
