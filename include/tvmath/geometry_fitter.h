#pragma once

#include <typeinfo>
#include <vector>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Features from what is known about them: points to be fitted, a point to pass through, a line to touch, a
/// centre, a direction. A fitter collects such constraints and fills a record.
///
/// Points, lines and planes must be 3D; callers promote 2D data first. Lengths are in the caller's units.
namespace geometry_fitter {

/// One thing that is known about a feature. Belongs to the fitter that has accepted it.
class TVMATH_API constraint {
public:
    constraint* next = nullptr;  ///< The one that was added before, in a fitter's list.

    virtual ~constraint();
    virtual bool is_valid() const = 0;  ///< A fitter gives no result while one is not.
};

class TVMATH_API centered_cnst : public constraint {
public:
    explicit centered_cnst(point const& p) : center(p) {}
    bool is_valid() const override;
    point center;
};

class TVMATH_API through_cnst : public constraint {
public:
    explicit through_cnst(point const& p) : place(p) {}
    bool is_valid() const override;
    point place;
};

/// A line to be touched by a circle, or a plane to be touched by a sphere.
class TVMATH_API tangent_cnst : public constraint {
public:
    explicit tangent_cnst(line const& l) : touched(l) {}
    explicit tangent_cnst(plane const& p) : touched(p) {}
    bool is_valid() const override;
    transform touched;
};

class TVMATH_API parallel_cnst : public constraint {
public:
    explicit parallel_cnst(line const& l) : direction(l) {}
    bool is_valid() const override;
    line direction;
};

class TVMATH_API perpendicular_cnst : public constraint {
public:
    explicit perpendicular_cnst(line const& l) : direction(l) {}
    bool is_valid() const override;
    line direction;
};

/// Measured points. An empty list becomes one trivial point and is not valid.
class TVMATH_API fit_cnst : public constraint {
public:
    explicit fit_cnst(std::vector<point> const& list);
    bool is_valid() const override;
    std::vector<point> points;
};

// Makers. Each gives a new constraint, for `fitter::add`; without arguments, the key of its kind for
// `fitter::can_add`.
TVMATH_API constraint* centered(point p);
TVMATH_API std::type_info const& centered();
TVMATH_API constraint* through(point p);
TVMATH_API std::type_info const& through();
TVMATH_API constraint* tangent(line l);
TVMATH_API constraint* tangent(plane p);
TVMATH_API std::type_info const& tangent();
TVMATH_API constraint* parallel(line l);
TVMATH_API std::type_info const& parallel();
TVMATH_API constraint* perpendicular(line l);
TVMATH_API std::type_info const& perpendicular();
TVMATH_API constraint* fit(std::vector<point> const& points);
TVMATH_API constraint* fit(idioms::array<point> points);
TVMATH_API std::type_info const& fit();

/// Collects the constraints of one feature, newest first, and owns them. For one thread at a time.
class TVMATH_API fitter {
public:
    fitter() = default;
    virtual ~fitter();
    /// Whether a constraint of that kind, one of the makers' keys, still finds room.
    virtual bool can_add(std::type_info const& kind) const = 0;
    /// Takes the constraint into the list when `can_add` says so; otherwise it stays with the caller.
    virtual void add(constraint* c);
    /// Fills `description`, which must be of the fitter's kind. False, with it unchanged, when the conditions
    /// are too few, one of them is not valid, or the calculation fails. The fit constraints are joined into
    /// one.
    virtual bool result(Geometry_Description& description) = 0;
    /// Redundancy: conditions given, less unknowns. Negative: under-determined.
    virtual int degrees_of_freedom() const = 0;

protected:
    fitter(fitter const&) = default;
    fitter& operator=(fitter const&) = default;
    constraint* first_ = nullptr;
};

/// A point: the given centre or the mean of the fitted points. Fills a `Point_Description`.
class TVMATH_API point_fitter : public fitter {
public:
    bool can_add(std::type_info const& kind) const override;
    bool result(Geometry_Description& description) override;
    int degrees_of_freedom() const override;
};

/// A line in XY that spans what it was given: through points, parallel or perpendicular to a line, or along
/// the principal axis. Fills a `Segment_Description`.
///
/// It passes the anchor, the through point added last, else the centre, else the centroid, and reaches as far
/// as all points do, about a centre equally far to both sides. A parallel line keeps the length of the given
/// one where the points span less than 1e-5; a perpendicular line runs from the given one outward, from the
/// anchor on and at least as far as the given one is long. False for points without a principal axis and for
/// a given line without extent in XY.
class TVMATH_API line_fitter : public fitter {
public:
    bool can_add(std::type_info const& kind) const override;
    bool result(Geometry_Description& description) override;
    int degrees_of_freedom() const override;
};

/// A circle in a plane parallel to XY, at the mean height of what it was given: least squares of the fitted
/// points, exactly through points and touching lines. Fills a `Circle_Description`.
///
/// Conditions that leave no redundancy are solved in closed form; of two circles the smaller one is taken,
/// and of those that touch three lines the in-circle of their triangle. False also for points on one line,
/// for a through point on the line to be touched, and for three lines that form no triangle. Noise makes
/// short arcs weak: below a height of the arc of some ten times the noise, its radius means little.
///
/// Starting values by the algebraic circle under the same conditions, see `circle_quick_fit`; then
/// `IterativeLSF`.
class TVMATH_API circle_fitter : public fitter {
public:
    bool can_add(std::type_info const& kind) const override;
    bool result(Geometry_Description& description) override;
    int degrees_of_freedom() const override;
};

/// The same, with the range of angles that all it was given spans: the complement of the largest gap between
/// the angles of the points and of the contacts with lines. A single angle gives a range of -2 pi. Fills an
/// `Arc_Description`.
class TVMATH_API arc_fitter : public circle_fitter {
public:
    bool result(Geometry_Description& description) override;
};

/// A sphere: least squares of the fitted points, exactly through points. Fills a `Sphere_Description`.
///
/// Planes can be touched only about a given centre; without one, the result is false. So it is for points in
/// a plane.
class TVMATH_API sphere_fitter : public fitter {
public:
    bool can_add(std::type_info const& kind) const override;
    bool result(Geometry_Description& description) override;
    int degrees_of_freedom() const override;
};

/// An ellipse in a plane parallel to XY, at the mean height of the points or at that of a given centre.
/// Fills an `Ellipse_Description`.
///
/// Needs 5 points, or 3 about a centre; of just these it is the one of `ellipse_quick_fit`. Distances count
/// from a foot found in two rounds, which for much scatter about a narrow ellipse is not quite the nearest
/// point. False also for short arcs with noise, whose points many ellipses fit alike.
class TVMATH_API ellipse_fitter : public fitter {
public:
    bool can_add(std::type_info const& kind) const override;
    bool result(Geometry_Description& description) override;
    int degrees_of_freedom() const override;
};

}  // namespace geometry_fitter
}  // namespace tvmath
