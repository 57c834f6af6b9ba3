#include "plot/outline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

double length(spot a) {
    return std::hypot(a.x, a.y);
}

double cross(spot a, spot b) {
    return a.x * b.y - a.y * b.x;
}

// Every edge looked at, against the search among sorted vertices.
TEST(OutlineFinder, FindsWhatLookingAtEveryEdgeFinds) {
    seeded_random random(11);
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<outline> outlines;
        double const stretch = random.log_uniform(1e-3, 1e3);
        for (unsigned int k = 1 + random.below(3); k > 0; --k) {
            std::vector<spot> places;
            for (unsigned int n = 2 + random.below(30); n > 0; --n)
                places.push_back({random.uniform(-1, 1), stretch * random.uniform(-1, 1)});
            outlines.push_back(make_outline(places, random.coin()));
        }
        outline_finder const finder(outlines);
        spot const p = {random.uniform(-2, 2), stretch * random.uniform(-2, 2)};
        double least = std::numeric_limits<double>::infinity();
        for (outline const& o : outlines) {
            for (std::size_t i = 0; i + (o.closed ? 0 : 1) < o.at.size(); ++i) {
                spot const a = o.at[i], d = o.at[(i + 1) % o.at.size()] - a;
                double const t = ((p.x - a.x) * d.x + (p.y - a.y) * d.y) / (d.x * d.x + d.y * d.y);
                least = std::min(least, length(p - (a + std::min(std::max(t, 0.0), 1.0) * d)));
            }
        }
        outline_foot const foot = finder.nearest(p);
        ASSERT_NEAR(std::fabs(foot.distance), least, 1e-12 * (1 + stretch)) << trial;
        ASSERT_NEAR(length(p - foot.at), least, 1e-12 * (1 + stretch)) << trial;
    }
}

TEST(Outline, LeadsOutsideAndToTheLeft) {
    std::vector<spot> const square = {{0, 0}, {2, 0}, {2, 2}, {0, 2}}, back(square.rbegin(), square.rend());
    for (auto const& places : {square, back}) {
        outline const o = make_outline(places, true);
        for (std::size_t i = 0; i < 4; ++i) {
            // Moved by 1 along its way a corner is the corner of the parallel at 1.
            spot const moved = o.at[i] + o.out[i];
            EXPECT_NEAR(std::fabs(moved.x - 1), 2, 1e-12);
            EXPECT_NEAR(std::fabs(moved.y - 1), 2, 1e-12);
        }
        std::vector<outline> const list = {o};
        EXPECT_GT(outline_finder(list).nearest({3, 1}).distance, 0.99);
        EXPECT_LT(outline_finder(list).nearest({1.5, 1}).distance, -0.49);
    }
    outline const line = make_outline(std::vector<spot>{{0, 0}, {0, 0}, {1, 1}, {2, 2}}, false);
    ASSERT_EQ(line.at.size(), 3u);  // a place that is repeated counts once
    for (spot const& out : line.out) EXPECT_NEAR(cross({1, 1}, out), std::sqrt(2.0), 1e-12);
}

}  // namespace
}  // namespace tvmath
