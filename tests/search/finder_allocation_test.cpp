#include <gtest/gtest.h>

#include <cmath>

#include "support/allocation_count.h"
#include "support/seeded_random.h"
#include "tvmath/point_finder.h"
#include "tvmath/polyline_finder.h"

inline namespace tvmath {
namespace {

// Numbers all over the range of a double, the same along every axis: the deepest trees that were met.
template <class finder>
long allocations_of_skewed_queries() {
    seeded_random random(8);
    std::vector<point> points;
    for (int i = 0; i < 20000; ++i) {
        double const x = (random.coin() ? 1 : -1) * random.log_uniform(1e-300, 1e150);
        points.emplace_back(true, x, 2 * x, 3 * x);
    }
    finder f;
    f.construct(points);
    long const before = allocations;
    unsigned int index = 0;
    for (int k = 0; k < 2000; ++k) {
        point const &a = points[random.below(20000)], &b = points[random.below(20000)];
        f.find_closest(k % 2 == 0 ? a : point(true, a.x(), b.y(), b.z()), index);
        f.find_farthest(k % 2 == 0 ? b : point(true, b.x(), a.y(), a.z()), index);
    }
    return allocations - before;
}

TEST(Finders, AllocateNothingInQueries) {
    EXPECT_EQ(allocations_of_skewed_queries<PointFinder2D>(), 0);
    EXPECT_EQ(allocations_of_skewed_queries<PointFinder3D>(), 0);

    auto const on_circle = [](double turn, double radius) {
        double const angle = 6.283185307179586 * turn;
        return point(true, radius * std::cos(angle), radius * std::sin(angle));
    };
    std::vector<point> circle;
    for (int i = 0; i <= 2000; ++i) circle.push_back(on_circle(i / 2000.0, 1));
    PolyLineFinder2D finder;
    finder.construct(circle);
    seeded_random random(9);
    long before = allocations;
    for (int k = 0; k < 1000; ++k) finder.find_closest(on_circle(random.unit(), random.uniform(0.5, 3)));
    EXPECT_EQ(allocations, before);
    // At its centre every box is as near as any other: the queue is longer than its room in the frame.
    before = allocations;
    finder.find_closest(point(true, 1e-9, 0));
    EXPECT_GT(allocations, before);
}

}  // namespace
}  // namespace tvmath
