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
//
// Answers are compared as they are seen along Z, because most texts hold x and y alone. One that does not
// exist, a trivial point or shape or one with a number that is not finite, keeps its place in the list and
// never wins.

/// One of two answers whose order follows a direction: two bits of choice and sense.
///
/// Bit 0 is the chosen one. The others tell the direction at the time of construction by the signs of two of
/// its components: bit 1 is set when the second is the larger one, bit 2 when the first is negative, bit 3
/// when the second is. A direction that has turned round, as both bytes tell by the larger component, has its
/// answers in the other order, so `update_from` changes bit 0. A direction that turns by less than 45 degrees
/// from one measurement to the next never counts as turned round, also on its way through full turns.
///
/// The components of a direction in space are x + 0.62 z and y + 0.38 z, of which also one along an axis has
/// one. No two components know every direction from its opposite (Borsuk and Ulam): these do not see (-0.62,
/// -0.38, 1), 36 degrees off Z and away from the angles that drawings use. A line that passes it by no more
/// than about what it turns from one measurement to the next may change its choice: for random turns by 5
/// degrees that is one in 1000.
class TVMATH_API solution_flags : public multi_solution {
public:
    /// Any index stands for its bit 0.
    void select(unsigned int index) override;
    /// True for any object of the same class, also when one of the lists was empty: the sense is remembered
    /// while the answers are away.
    bool update_from(multi_solution const* previous) override;
    void selected(unsigned int& index) const override;
    /// "(KEY flags)" in decimal.
    wide_string to_text() const override;
    /// A decimal number, whatever follows it; false for one with other than the low four bits.
    bool from_text(unsigned short const* text) override;
    /// The key of the class.
    virtual char16_t const* key() const = 0;

protected:
    solution_flags() = default;
    /// The choice 0 and the signs of two components.
    solution_flags(double first, double second);

private:
    unsigned char flags_ = 0;
};

/// "BLL": of the two bisectors of two lines. The direction is that of the first bisector at twice its angle,
/// which is the same for a line and its reverse and opposite for the second bisector; so neither the order of
/// the lines nor their sense matters, nor which bisector comes first. Twice the angle: safe for turns of less
/// than 22.5 degrees.
class TVMATH_API bisect_line_line : public solution_flags {
public:
    bisect_line_line() = default;
    /// `first` is the direction of the first one of the list; its length does not matter.
    explicit bisect_line_line(point const& first);
    char16_t const* key() const override { return u"BLL"; }
};

/// "ILE": of the two points where a line meets an ellipse, a sphere, a cylinder or a cone.
class TVMATH_API intersect_line_ellipse : public solution_flags {
public:
    intersect_line_ellipse() = default;
    /// `direction` is the one in which the points follow each other; its length does not matter.
    explicit intersect_line_ellipse(point const& direction);
    char16_t const* key() const override { return u"ILE"; }
};

/// An index into a list of answers. In a text it is a signed number of 32 bits, as which any index is written
/// and read back; a larger number is no text of an index.
class TVMATH_API indexed_solution : public multi_solution {
public:
    /// Any index is kept, also one beyond the list.
    void select(unsigned int index) override;
    void selected(unsigned int& index) const override;
    /// "(KEY index" and the answers ")".
    wide_string to_text() const override;
    /// The key of the class.
    virtual char16_t const* key() const = 0;

protected:
    indexed_solution() = default;
    /// What follows the index in the text form, with a blank in front of every item.
    virtual wide_string answers_text() const = 0;

    unsigned int index_ = 0;
};

/// The ends of a line, in either order; trivial points for a line that does not exist.
struct TVMATH_API line_ends {
    point start, end;
};

/// An index and the answers themselves, each a `point`, a `circle` or the `line_ends` of a line.
template <class answer>
class TVMATH_API solution_list : public indexed_solution {
public:
    /// Chooses the answer nearest to the one chosen in `previous`, the first one of equals. False when the
    /// old one or all of the new ones do not exist.
    ///
    /// The distance is that of points in XY; of circles the root of the squared differences of x and y of the
    /// centre and of the radius; of lines the sum of the distances of both ends, in the better pairing.
    bool update_from(multi_solution const* previous) override;
    /// Moves every answer that exists.
    void apply_transform(transform unused, transform move) override;

protected:
    solution_list() = default;
    explicit solution_list(std::vector<answer> answers);
    /// The list in an object of the same class; null for any other.
    solution_list const* same_class(multi_solution const* other) const;
    /// The chosen answer; null when it does not exist.
    answer const* chosen() const;

    std::vector<answer> answers_;
};

extern template class TVMATH_API solution_list<point>;
extern template class TVMATH_API solution_list<circle>;
extern template class TVMATH_API solution_list<line_ends>;

/// "ILC": of the points where a path meets a line, an ellipse or a path. The text holds x and y of each with
/// 6 significant digits, up to the first point of dimension 0.
class TVMATH_API intersect_curve : public solution_list<point> {
public:
    intersect_curve() = default;
    explicit intersect_curve(idioms::array<point> const& points);
    /// An index and an even count of numbers; false when anything else follows.
    bool from_text(unsigned short const* text) override;
    char16_t const* key() const override { return u"ILC"; }

protected:
    wide_string answers_text() const override;
};

/// "IEE": of the up to 4 points where two ellipses meet; further ones are left out. The text is that of a
/// path.
class TVMATH_API intersect_ellipse_ellipse : public solution_list<point> {
public:
    intersect_ellipse_ellipse() = default;
    explicit intersect_ellipse_ellipse(idioms::array<point> const& points);
    /// Assigns as many old points to new ones as can be, each to one of its own, so that the sum of the
    /// squared distances in XY is least, the first assignment of equals in the order of the indices. The
    /// choice goes where that of `previous` is assigned to; false when it does not exist or is assigned to
    /// none.
    bool update_from(multi_solution const* previous) override;
    /// An index and none to 4 points; what follows them, or what is no number, ends the reading. False for an
    /// odd count of numbers.
    bool from_text(unsigned short const* text) override;
    char16_t const* key() const override { return u"IEE"; }

protected:
    wide_string answers_text() const override;
};

/// "CP3": of the candidates for the closest point in space. The text holds the list with 8 digits, z too.
class TVMATH_API multsln_closest_point3d : public solution_list<point> {
public:
    multsln_closest_point3d() = default;
    explicit multsln_closest_point3d(curve const& candidates);
    /// An index at or beyond the end of the list changes nothing.
    void select(unsigned int index) override;
    /// An index and a list; false for an index at or beyond its end, other than 0.
    bool from_text(unsigned short const* text) override;
    char16_t const* key() const override { return u"CP3"; }

protected:
    wide_string answers_text() const override;
};

/// "LTM": of tangent lines, also when their ends have changed places. The text holds x and y of both ends of
/// each with 8 significant digits, `()` twice for a line that does not exist.
class TVMATH_API tangent_line_multi : public solution_list<line_ends> {
public:
    tangent_line_multi() = default;
    explicit tangent_line_multi(std::vector<line> const& lines);
    /// An index and a list of points, an even number of them; false for any other number of items.
    bool from_text(unsigned short const* text) override;
    char16_t const* key() const override { return u"LTM"; }

protected:
    wide_string answers_text() const override;
};

/// "LMM": of tangent lines, as older files have it: one list of points for each line, of which only the
/// existence counts. The text holds x and y of all points with 6 significant digits, up to the first one of
/// dimension 0 or the first empty list; it is read as two points to a line, the last one may have one.
class TVMATH_API tangent_line_multi_old : public indexed_solution {
public:
    tangent_line_multi_old() = default;
    explicit tangent_line_multi_old(std::vector<std::vector<point>> lists);
    /// Takes over the index of `previous`; false unless both objects have a list with a point there.
    bool update_from(multi_solution const* previous) override;
    void apply_transform(transform unused, transform move) override;
    /// An index and an even count of numbers; false when anything else follows.
    bool from_text(unsigned short const* text) override;
    char16_t const* key() const override { return u"LMM"; }

protected:
    wide_string answers_text() const override;

private:
    bool has(unsigned int index) const;

    std::vector<std::vector<point>> lists_;
};

/// Of tangent circles. The text holds x and y of the centre and the radius of each with 6 significant digits.
class TVMATH_API circle_tangent_multi : public solution_list<circle> {
public:
    /// An index and three numbers for each circle; false when anything else follows.
    bool from_text(unsigned short const* text) override;

protected:
    circle_tangent_multi() = default;
    explicit circle_tangent_multi(std::vector<circle> const& circles) : solution_list(circles) {}
    wide_string answers_text() const override;
};

/// "CTTF": of those that touch two lines and pass through a point.
class TVMATH_API circle_tan_tan_fit_multi : public circle_tangent_multi {
public:
    circle_tan_tan_fit_multi() = default;
    explicit circle_tan_tan_fit_multi(std::vector<circle> const& circles) : circle_tangent_multi(circles) {}
    char16_t const* key() const override { return u"CTTF"; }
};

/// "CTTT": of those that touch three lines.
class TVMATH_API circle_tan_tan_tan_multi : public circle_tangent_multi {
public:
    circle_tan_tan_tan_multi() = default;
    explicit circle_tan_tan_tan_multi(std::vector<circle> const& circles) : circle_tangent_multi(circles) {}
    char16_t const* key() const override { return u"CTTT"; }
};

/// "CTTV": of those of a given radius that touch two lines or two ellipses.
class TVMATH_API circle_tan_tan_val_multi : public circle_tangent_multi {
public:
    circle_tan_tan_val_multi() = default;
    explicit circle_tan_tan_val_multi(std::vector<circle> const& circles) : circle_tangent_multi(circles) {}
    char16_t const* key() const override { return u"CTTV"; }
};

}  // namespace tvmath
