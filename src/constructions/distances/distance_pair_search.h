#pragma once

#include <cmath>

#include "geometry/xyz.h"

inline namespace tvmath {

/// Two places, one on each of two paths.
struct place_pair {
    bool found = false;
    xyz a, b;
    double distance = 0;
};

/// A smooth path in space, for the search for the pair of places with the least or the greatest distance.
class searched_path {
public:
    struct place {
        xyz position, slope, bend;  // of the parameter: value, first and second derivative
    };

    virtual ~searched_path() = default;
    virtual place at(double t) const = 0;
    virtual xyz position(double t) const = 0;

    double low, high;      ///< Range of the parameter.
    bool is_closed;        ///< The range is a full turn, and the parameter may leave it.
    unsigned int pieces;   ///< In how many equal parts the search begins.
    double greatest_bend;  ///< Bound of the second derivative's length.
    double size;           ///< About its extent: what rounding is relative to.

protected:
    searched_path(double from, double to, bool closed, unsigned int parts)
        : low(from), high(to), is_closed(closed), pieces(parts), greatest_bend(0), size(0) {}
};

/// Replaces `best` by the nearest (or farthest) pair of places on two paths, if that pair is better.
///
/// Branch and bound, the most promising pair of pieces first. A piece of width w lies within M w² / 8 of its
/// chord, where M bounds the second derivative; chords have their distance in closed form. Around the
/// answer, where the distance is as a rule a quadratic form, only some pairs of each width are left, so that
/// the steps grow with the number of digits. What is left at the end could improve the answer by less than
/// 1e-13 of the sizes. Each better place found is moved to the local extreme by Newton's iteration.
///
/// Paths at a constant distance would need steps without end. After 2000 pairs of pieces the search looks at
/// the local extremes nearby the best places of a grid instead and counts `long_searches_left` down; when
/// none are left it ends after 300 pairs with the best so far.
void search_pair(searched_path const& p, searched_path const& q, bool nearest, place_pair& best,
                 int& long_searches_left);

/// Moves the parameters s and t to a local extreme nearby: of least distance for a `sign` of 1, of greatest
/// for -1.
void refine_pair(searched_path const& p, searched_path const& q, double sign, double& s, double& t);

/// Distance of the segments from a to b and from c to d.
double segment_distance(xyz const& a, xyz const& b, xyz const& c, xyz const& d);

}  // namespace tvmath
