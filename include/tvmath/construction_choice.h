#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/circle.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/line.h"
#include "tvmath/multi_solution.h"
#include "tvmath/point.h"

inline namespace tvmath {

// The memories that constructions with several answers return, by what they keep of the answers. Each class
// names the key of its text form.

/// One of two answers whose order follows a direction: two bits of choice and sense.
///
/// Bit 0 is the chosen one. The others tell the direction at the time of construction by the signs of two of
/// its components: bit 1 is set when the second is the larger one, bit 2 when the first is negative, bit 3 when
/// the second is. A direction that has turned round, as both bytes tell by the larger component, has its answers
/// in the other order, so `update_from` changes bit 0.
class TVMATH_API solution_flags : public multi_solution {
public:
    /// Any index stands for its bit 0.
    void select(unsigned int index) override;
    bool update_from(multi_solution const* previous) override;
    void selected(unsigned int& index) const override;
    /// "(KEY flags)" in decimal.
    wide_string to_text() const override;
    /// Refuses values with other than the low four bits.
    bool from_text(unsigned short const* text) override;

protected:
    solution_flags() = default;
    /// The choice 0 and the signs of a direction in the plane.
    solution_flags(double first, double second);
    virtual wide_string key() const = 0;

private:
    unsigned char flags_ = 0;
};

/// "BLL": of the two bisectors of two lines. The direction is that of the first bisector at twice its angle,
/// which is the same for a line and its reverse and opposite for the second bisector; so neither the order of
/// the lines nor their sense matters.
class TVMATH_API bisect_line_line : public solution_flags {
public:
    bisect_line_line() = default;
    /// `first` is the direction, in XY, of the first one of the list.
    explicit bisect_line_line(point const& first);

protected:
    wide_string key() const override;
};

/// "ILE": of the two points where a line meets an ellipse, a sphere, a cylinder or a cone. The components are
/// x + 0.62 z and y + 0.38 z of the line's direction, of which also a line along an axis has one.
class TVMATH_API intersect_line_ellipse : public solution_flags {
public:
    intersect_line_ellipse() = default;
    explicit intersect_line_ellipse(point const& direction);

protected:
    wide_string key() const override;
};

}  // namespace tvmath
