#include "tvmath/bisector.h"

#include <gtest/gtest.h>

#include "distance_features.h"
#include "tvmath/construction_choice.h"
#include "tvmath/intersection.h"

inline namespace tvmath {
namespace {

line random_line(random_features& f) {
    return distance_fit(f.place(), f.place());
}
// The mirror image of a direction in the axis.
point mirrored(point const& d, point const& axis) {
    return 2 * dot(d, axis) * axis - d;
}
double slant(point const& a, point const& b) {
    point const n = cross(normalize(a), normalize(b));
    return n.length3d();
}
bool same_line(line const& a, line const& b, double tolerance) {
    double const across = cross(a.direction(), b.basis(0) - a.basis(0)).length3d();
    return slant(a.basis(1), b.basis(1)) * b.length() <= tolerance && across <= tolerance;
}

TEST(LineBisect, OfLinesMirrorsOneIntoTheOther) {
    for_random_features(81, 3000, [](random_features f) {
        line const a = random_line(f), b = random_line(f);
        std::vector<Segment_Description> two;
        idioms::ref<multi_solution> const memory = line_bisect(a, b, two);
        ASSERT_EQ(two.size(), 2u);
        line const first = two[0].geometry, second = two[1].geometry;
        point const u = a.direction(), v = b.direction(), meeting = point_intersect(a, b);
        double const sine = slant(u, v), tolerance = 1e-15 / sine;
        for (line const& l : {first, second}) {
            EXPECT_LE(slant(mirrored(u, l.direction()), v), 10 * tolerance);
            EXPECT_TRUE(l.basis(0) == meeting);
            EXPECT_NEAR(l.length(), (a.length() + b.length()) / 2, 1e-14 * l.length());
            EXPECT_LE(std::fabs(dot(cross(u, v), l.direction())), 1e-15);
        }
        EXPECT_NEAR(dot(first.direction(), second.direction()), 0, 1e-15);
        EXPECT_GE(std::fabs(dot(first.direction(), u)), std::sqrt(0.5) - 1e-15);
        EXPECT_GE(dot(first.direction(), u), 0);
        EXPECT_TRUE(line_bisect(a, b) == first);
        EXPECT_TRUE(same_line(line_bisect(b, a), first, 1e-12 * f.scale / sine));

        // The memory tells the same bisector after a slight turn, with the lines changed round and reversed.
        if (f.solid) return;
        transform const turn = transform::rotation(f.random.uniform(-0.1, 0.1));
        line const moved_a = distance_fit(end_of(a) * turn, start_of(a) * turn);
        line const moved_b = distance_fit(start_of(b) * turn, end_of(b) * turn);
        for (unsigned int chosen : {0u, 1u}) {
            std::vector<Segment_Description> again;
            memory->select(chosen);
            idioms::ref<multi_solution> const now = line_bisect(moved_b, moved_a, again);
            unsigned int index = 7;
            ASSERT_TRUE(now->update_from(memory.address()));
            now->selected(index);
            line const expected(two[chosen].geometry * turn);
            EXPECT_TRUE(same_line(again[index].geometry, expected, 1e-11 * f.scale / sine));
        }
    });
}

TEST(LineBisect, OfPointsAndLinesIsTheAxisOfSymmetry) {
    for_random_features(82, 2000, [](random_features f) {
        point const p = f.place(), q = f.place();
        line const between = line_bisect(p, q), l = random_line(f), axis = line_bisect(p, l);
        double const tolerance = 1e-13 * f.scale;
        EXPECT_NEAR(between.length(), distance3d(p, q), tolerance);
        for (double const t : {-1.0, 0.0, 2.0}) {
            point const on = between.basis(0) + t * between.basis(1);
            EXPECT_NEAR(distance3d(on, p), distance3d(on, q), tolerance);
        }
        EXPECT_GT(cross2d(q - p, between.basis(1)), 0);

        point const foot = point_nearest3d_on(p, l);
        EXPECT_TRUE(axis.basis(0) == p);
        EXPECT_NEAR(dot(axis.direction(), l.direction()), 0, 1e-13);
        EXPECT_LE(cross(axis.direction(), foot - p).length3d(), tolerance);
        EXPECT_GE(axis.length(), 2 * distance3d(p, foot) - tolerance);
        EXPECT_GE(cross2d(l.basis(1), axis.basis(1)), 0);
        EXPECT_TRUE(line_bisect(l, p) == axis);
    });
}

TEST(LineBisect, KnowsTheSpecialPlaces) {
    line const x(at(-1, 0), at(1, 0)), above(at(9, 4), at(3, 4)),
        skew = distance_fit(at(0, -3, 2), at(0, 3, 2));
    line const point_like(at(1, 1), at(1, 1));
    struct {
        char const* name;
        line found;
        point middle, half;
    } const cases[] = {
        {"parallels: the midline", line_bisect(x, above), at(3, 2), point(false, 2, 0)},
        {"the same line", line_bisect(x, x), at(0, 0), point(false, 1, 0)},
        {"skew lines", line_bisect(x, skew), at(0, 0, 1), std::sqrt(2) * point(false, 1, 1, 0)},
        {"points", line_bisect(at(0, 0), at(4, 2)), at(2, 1), point(false, -1, 2)},
        {"points above each other", line_bisect(at(1, 1, 0), at(1, 1, 4)), at(1, 1, 2),
         point(false, 2, 0, 0)},
        {"a point on the line", line_bisect(at(5, 0), x), at(5, 0), point(false, 0, 1)},
        {"a 3D point on the line", line_bisect(skew, at(0, 1, 2)), at(0, 1, 2), point(false, -3, 0, 0)},
        {"a point below the line", line_bisect(x, at(0, -4)), at(0, -4), point(false, 0, 4)},
        {"a 3D point above the line", line_bisect(x, at(0, 0, 4)), at(0, 0, 4), point(false, 0, 0, 4)},
    };
    for (auto const& c : cases) {
        EXPECT_LE(distance3d(c.found.basis(0), c.middle), 1e-15) << c.name;
        point half = c.found.basis(1);
        if (c.half.z() != 0 && half.z() < 0) half = -half;
        EXPECT_LE(distance3d(half, c.half), 2e-15) << c.name;
    }
    double const nan = std::nan("");
    for (line const& l :
         {line_bisect(x, line()), line_bisect(x, point_like), line_bisect(at(1, 1), line()),
          line_bisect(at(1, 1), point_like), line_bisect(point(), x), line_bisect(at(1, 1), point()),
          line_bisect(at(nan, 1), x), line_bisect(at(1, 1), at(infinity, 0))}) {
        EXPECT_TRUE(l.is_trivial());
    }
    std::vector<Segment_Description> list(5);
    EXPECT_TRUE(line_bisect(x, line(), list).address() != nullptr);
    EXPECT_EQ(list.size(), 0u);
    EXPECT_TRUE(line_bisect(x, above, list).address() != nullptr);
    EXPECT_EQ(list.size(), 1u);
}

}  // namespace
}  // namespace tvmath
