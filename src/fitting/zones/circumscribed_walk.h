#pragma once

#include <array>
#include <vector>

#include "fitting/planar/planar_points.h"

inline namespace tvmath {

/// A circle by the points it touches: two on a diameter, or three. None: `contacts` is 0.
struct contact_circle {
    int contacts = 0;
    xy center;
    double radius = 0;
    std::array<xy, 3> contact{};
};

contact_circle circle_on_diameter(xy a, xy b);
contact_circle circle_through(xy a, xy b, xy c);

/// The largest angle of a triangle: its vertex, and its cosine. A tie keeps the first vertex.
struct largest_angle {
    int vertex = 0;
    double cosine = 1;

    explicit largest_angle(std::array<xy, 3> const& p);
};

/// What the walks have in common: the points that are left. Taking a point out removes all equal to it.
class walk_list {
public:
    explicit walk_list(std::vector<xy> points) : left_(std::move(points)) {}

    std::vector<xy> const& points() const { return left_; }
    bool is_empty() const { return left_.empty(); }
    void take(xy p) {
        std::erase_if(left_, [p](xy q) { return p.x == q.x && p.y == q.y; });
    }

private:
    std::vector<xy> left_;
};

/// A circle around the points, relative to their centroid or to a point near it, found by shrinking: the
/// centre runs from one that encloses all towards the midpoint of two contacts until a third one blocks.
///
/// A vertex dropped at an obtuse angle is not looked at again, so the circle may leave out such a point:
/// the caller has to test it. A single place, repeated or not, gives no contacts.
///
/// Source: G. Chrystal, On the problem to construct the minimum circle enclosing n given points,
/// Proc. Edinburgh Math. Soc. 3 (1885) 30-33.
contact_circle circumscribed_walk(std::vector<xy> const& points);

}  // namespace tvmath
