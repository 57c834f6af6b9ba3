#pragma once

#include <cstddef>
#include <vector>

#include "geometry/xy.h"
#include "tvmath/ellipse.h"

inline namespace tvmath {

/// The curve at a signed distance along the outward normal of an ellipse, as it is seen along Z, relative to
/// an origin.
///
/// A place on it is told by the unit vector k = (cos t, sin t) of the ellipse's parameter on its true axes.
/// The tangent there is that of the ellipse, also at the cusps that a curve inside has where the distance is
/// the radius of curvature.
class offset_oval {
public:
    offset_oval(ellipse const& e, xyz const& origin, double offset);

    struct place {
        xy k, at, normal;  // the normal points out of the ellipse
        double speed;      // d at / d t along the normal turned by a quarter; negative where curves run back
        double turn;       // d (angle of the normal) / d t
    };
    place on(xy const& k) const;
    /// The place `angle` further in t.
    place beyond(place const& from, double angle) const;
    /// Between two places less than half a turn apart: in the middle of t or, when that angle is the larger
    /// one, of the normal, which turns about the ends of a slim ellipse within very small steps of t.
    place between(place const& p, place const& q) const;
    /// Places between which the curve is convex and turns by at most a quarter, once round; the first is
    /// repeated at the end.
    std::vector<place> arcs() const;

    xy center() const { return center_; }
    double offset() const { return offset_; }
    /// Longer and shorter half-axis of the ellipse.
    double longer() const { return a_; }
    double shorter() const { return b_; }
    bool is_circle() const;
    /// Whether both are the same ellipse within `noise`.
    bool is_same(offset_oval const& other, double noise) const;
    /// The point of the ellipse under a place.
    xy foot(place const& p) const { return p.at - offset_ * p.normal; }

private:
    xy center_, e1_, e2_;
    double a_, b_, offset_;
};

/// The convex arcs of such a curve and, as far as they were asked for, their halves: searches with several
/// other curves share them.
class convex_arcs {
public:
    using place = offset_oval::place;
    struct arc {
        place from, to;
        double turn;   // sine of what the direction turns by
        double chord;  // its length
        double bulge;  // no point is farther from the chord
        std::size_t halves = 0;
    };
    explicit convex_arcs(offset_oval const& oval) : oval_(oval) {}

    offset_oval const& oval() const { return oval_; }
    /// Arcs before this one make up the whole curve; they are made by the first call.
    std::size_t count();
    arc const& operator[](std::size_t i) const { return arcs_[i]; }
    /// The first half of arc `i`; the other one is the next. Ends references to arcs.
    std::size_t halves(std::size_t i);
    place middle(std::size_t i) const { return oval_.between(arcs_[i].from, arcs_[i].to); }

private:
    void add(place const& from, place const& to);

    offset_oval oval_;
    std::vector<arc> arcs_;
    std::size_t count_ = 0;
};

/// Every place that two such curves have in common.
///
/// Pairs of convex arcs are halved as long as the triangles of their ends and tangents may overlap. Two arcs
/// whose directions differ by some times what they turn meet at most once: then Newton's iteration ends the
/// search. Arcs that are straight and equal within rounding are in contact: a neighbourhood of such arcs is
/// one touch, or two crossings that lie as near to each other, and a long one is a common stretch, which has
/// no place of its own.
class offset_meeting {
public:
    struct hit {
        offset_oval::place p, q;
    };
    /// `reach`: the size of everything, which tells the rounding.
    offset_meeting(convex_arcs& p, convex_arcs& q, double reach);

    /// A place can be found from several arcs.
    std::vector<hit> const& hits() const { return hits_; }

private:
    using place = offset_oval::place;
    using arc = convex_arcs::arc;
    struct contact {
        place p, q;
        double angle, width;  // of the first curve: t, and the length of the arc
    };

    bool are_apart(arc const& a, arc const& b) const;
    bool lies_beside(arc const& a, arc const& b) const;
    void search(std::size_t a, std::size_t b);
    bool cross_once(std::size_t i, std::size_t j);
    bool cross_from(place& p, place& q, double reach_p, double reach_q) const;
    bool touch_from(place& p, place& q, double reach) const;
    bool meet(place const& p, place const& q) const;
    void settle_contacts();
    void settle(contact const* first, contact const* last);

    convex_arcs &p_, &q_;
    double reach_, noise_;
    int steps_left_;
    std::vector<hit> hits_;
    std::vector<contact> contacts_;
};

}  // namespace tvmath
