#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "support/seeded_random.h"
#include "tvmath/construction_choice.h"
#include "tvmath/intersection_choice.h"
#include "tvmath/scalar.h"

// A part is measured again and again, each time turned and moved a little and with the noise of measuring,
// and the answer that was chosen first is to be found every time. Each scene says by itself, without the
// memory, which answer is which: by where it lies in the part's own frame.

namespace {

using points = idioms::array<point>;

struct measurement {
    idioms::ref<multi_solution> memory;
    std::vector<point> marks;  // of each answer, in the frame of the part, far apart for different ones
};
// Measures the part after a motion; `phase` goes round slowly, for what moves in the part itself.
using scene = std::function<measurement(transform const& motion, double phase, seeded_random& random)>;

point at(double x, double y, double z = 0) {
    return point(true, x, y, z);
}
point along(double x, double y, double z = 0) {
    return point(false, x, y, z);
}
double noise(seeded_random& random) {
    return random.uniform(-1e-3, 1e-3);
}
point near(point const& p, seeded_random& random) {
    return p + along(noise(random), noise(random), noise(random));
}

// Runs in either direction.
line measured_line(point const& middle, point const& half, transform const& motion, seeded_random& random) {
    point const d = near(random.coin() ? half : -half, random);
    line l(make_transform(near(middle, random), d, along(-d.y(), d.x()), along(0, 0, 1)));
    l *= motion;
    return l;
}
ellipse measured_ellipse(double a, double b, point const& center, transform const& motion,
                         seeded_random& random) {
    double const turn = random.uniform(-pi, pi);  // the half-diameters start anywhere
    point const c = near(center, random), u = along(a + noise(random), 0), v = along(0, b);
    ellipse e(make_transform(c, u * std::cos(turn) + v * std::sin(turn),
                             v * std::cos(turn) - u * std::sin(turn), along(0, 0, 1)));
    e *= motion;
    return e;
}
curve measured_path(std::vector<point> const& control, transform const& motion, seeded_random& random) {
    points list(static_cast<unsigned int>(control.size()));
    for (unsigned int i = 0; i < list.capacity(); ++i) list(i) = near(control[i], random);
    if (random.coin()) list.reverse_self();
    return curve(list) *= motion;
}

// The construction of both features, in either order of the arguments, its answers marked by `mark`.
template <class A, class B>
measurement meeting(A const& a, B const& b, transform const& motion, seeded_random& random,
                    std::function<point(point const&)> const& mark) {
    std::vector<Point_Description> places;
    measurement m;
    m.memory = random.coin() ? point_intersect(a, b, places) : point_intersect(b, a, places);
    for (auto const& p : places) m.marks.push_back(mark(p.position / motion));
    return m;
}
point itself(point const& p) {
    return p;
}
// Two answers on a line along X, also when they nearly meet.
point side(point const& p) {
    return at(p.x() > 0 ? 1 : -1, 0);
}

// Follows the answer `wanted` of the first measurement through full turns about `axis`; every 50th time by
// way of the text, as after a pause. An answer that is away for a while is found when it returns, if the part
// was left alone meanwhile.
void follow(scene const& measure, unsigned int wanted, point const& axis, seeded_random& random) {
    idioms::ref<multi_solution> saved;
    point followed;
    double angle = 0;
    transform drift = transform(0.0, 0.0, 0.0);
    int found = 0, away = 0;
    for (int step = 0; step < 600; ++step) {
        transform const motion = transform::rotation(axis, angle) * drift;
        measurement const now = measure(motion, 2 * pi * step / 150, random);
        if (step == 0) {
            ASSERT_LT(wanted, now.marks.size());
            now.memory->select(wanted);
            followed = now.marks[wanted];
            saved = now.memory;
            continue;
        }
        if (!now.memory->update_from(saved.address())) {
            ++away;
            continue;
        }
        saved = now.memory;
        angle += random.uniform(0, 0.07);
        drift.translate(random.uniform(-0.02, 0.02), random.uniform(-0.02, 0.02),
                        random.uniform(-0.02, 0.02));
        unsigned int index = 99;
        saved->selected(index);
        if (step % 50 == 0) {
            wide_string text = Persistence::to_ascii(saved);
            saved = Persistence::to_multi_solution(text.substr(1, text.size() - 2).c_str());
            ASSERT_TRUE(saved.address());
        }
        if (index >= now.marks.size()) continue;
        ASSERT_NEAR(distance3d(now.marks[index], followed), 0, 0.3) << "step " << step << " " << angle;
        followed = now.marks[index];
        ++found;
    }
    EXPECT_GT(found, 250);
    EXPECT_LT(away, 350);
}

void follow_all(scene const& measure, unsigned int answers, std::vector<point> const& axes) {
    seeded_random random(11);
    for (point const& axis : axes) {
        for (unsigned int wanted = 0; wanted < answers; ++wanted) {
            SCOPED_TRACE(testing::Message() << wanted << " about " << axis.x() << axis.y() << axis.z());
            follow(measure, wanted, axis, random);
        }
    }
}
std::vector<point> const upright = {along(0, 0, 1)};
// Turns that keep the lines below 10 degrees or more away from the direction that the memory does not see.
std::vector<point> const tumbling = {along(1, 1, 3), along(-2, 1, 1), along(0, 0, 1), along(1, 0, 0),
                                     along(0, 1, 0)};
std::vector<point> const tumbling_for_tilted = {along(1, 1, 3), along(-2, 1, 1)};

// The line leaves the feature, touching it on its way, and comes back on the other side.
TEST(Choice, OnALineIsKeptThroughFullTurnsAndTouches) {
    auto const height = [](double phase) { return 1.2 * std::sin(phase); };
    auto const swept = [&](transform const& motion, double phase, seeded_random& random) {
        return measured_line(at(0.3, height(phase)), along(1, 0), motion, random);
    };
    follow_all(
        [&](transform const& motion, double phase, seeded_random& random) {
            return meeting(swept(motion, phase, random), measured_ellipse(2, 1, at(0, 0), motion, random),
                           motion, random, side);
        },
        2, upright);
    follow_all(
        [&](transform const& motion, double phase, seeded_random& random) {
            sphere s(1, near(at(0, 0), random));
            s *= motion;
            return meeting(swept(motion, phase, random), s, motion, random, side);
        },
        2, tumbling);
    follow_all(
        [&](transform const& motion, double phase, seeded_random& random) {
            cylinder c(1, 3, near(at(0, 0), random), near(along(0.3, 0, 1), random));
            c *= motion;
            return meeting(swept(motion, phase, random), c, motion, random, side);
        },
        2, tumbling);
}

// The line turns about one of the two places, a point of the cone's surface; the other one runs off to
// infinity and comes back from the other side, on the other nappe.
TEST(Choice, OnALineIsKeptPastTheGeneratorsOfACone) {
    follow_all(
        [](transform const& motion, double phase, seeded_random& random) {
            cone c(at(0, 0, 0.5), at(0, 0, 3), 0.5, 3);
            c *= motion;
            double const tilt = 0.65 + 0.3 * std::cos(phase);
            point const half = along(std::sin(tilt) * 0.6, std::sin(tilt) * 0.8, std::cos(tilt));
            line const l = measured_line(at(1, 0, 1) + half * 0.2, half, motion, random);
            return meeting(l, c, motion, random, [](point const& p) {
                return distance3d(p, at(1, 0, 1)) < 0.05 ? at(1, 0) : at(-1, 0);
            });
        },
        2, tumbling_for_tilted);
}

TEST(Choice, AmongFourPlacesOfEllipsesIsKept) {
    // Of four places two merge, vanish and return.
    follow_all(
        [](transform const& motion, double phase, seeded_random& random) {
            double const shift = 0.75 - 0.35 * std::cos(phase);
            return meeting(measured_ellipse(2, 1, at(0, 0), motion, random),
                           measured_ellipse(1.1, 1.3, at(shift, 0), motion, random), motion, random,
                           [](point const& p) { return at(p.x() > 0.8 ? 1 : -1, p.y() > 0 ? 1 : -1); });
        },
        4, upright);
}

TEST(Choice, AmongThePlacesOfAPathIsKept) {
    // Three waves over the X axis.
    std::vector<point> wave;
    for (int i = 0; i <= 9; ++i) wave.push_back(at(0.6 * i - 2.7, i % 3 == 0 ? 0.2 : (i % 2 == 0 ? 2 : -2)));
    std::vector<point> const hill = {at(-3, -2), at(-1, 3), at(1, 3), at(3, -2)};
    // The whole part is out of sight for a while.
    auto const path = [](std::vector<point> const& control, double phase, transform const& motion,
                         seeded_random& random) {
        return measured_path(control, std::fmod(phase, 2 * pi) > 6 ? motion * transform(0, 0, 1e9) : motion,
                             random);
    };
    auto const gone = [](double phase) { return at(0, std::fmod(phase, 2 * pi) > 6 ? 50 : 0); };
    follow_all(
        [&](transform const& motion, double phase, seeded_random& random) {
            return meeting(measured_line(gone(phase), along(1, 0.1), motion, random),
                           path(wave, phase, motion, random), motion, random, itself);
        },
        3, upright);
    follow_all(
        [&](transform const& motion, double phase, seeded_random& random) {
            return meeting(measured_ellipse(1.5, 1, gone(phase), motion, random),
                           path(wave, phase, motion, random), motion, random, itself);
        },
        2, upright);
    follow_all(
        [&](transform const& motion, double phase, seeded_random& random) {
            std::vector<point> moved = hill;
            for (point& p : moved) p = p + (gone(phase) - at(0, 0));
            return meeting(path(moved, phase, motion, random), path(wave, phase, motion, random), motion,
                           random, itself);
        },
        2, upright);
}

}  // namespace
