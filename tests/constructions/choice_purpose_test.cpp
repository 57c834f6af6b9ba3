#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/seeded_random.h"
#include "tvmath/bisector.h"
#include "tvmath/intersection_choice.h"
#include "tvmath/scalar.h"
#include "tvmath/tangent.h"
#include "tvmath/tangent_circle.h"

// A part is measured again and again, each time turned and moved a little and with the noise of measuring,
// and the answer that was chosen first is to be found every time. Each scene says by itself, without the
// memory, which answer is which: by where it lies in the part's own frame.

namespace {

struct measurement {
    idioms::ref<multi_solution> memory;
    std::vector<point> marks;  // of each answer, in the frame of the part, far apart for different ones
};

point at(double x, double y, double z = 0) {
    return point(true, x, y, z);
}
point along(double x, double y, double z = 0) {
    return point(false, x, y, z);
}

// One look at the part: `phase` goes round slowly, for what moves in the part itself.
struct view {
    transform motion;
    double phase;
    seeded_random& random;

    point near(point const& p) const {
        auto const noise = [&] { return random.uniform(-1e-3, 1e-3); };
        return p + along(noise(), noise(), noise());
    }
    template <class shape>
    shape seen(shape s) const {
        s *= motion;
        return s;
    }
    // Runs in either direction.
    line seen_line(point const& middle, point const& half) const {
        point const d = near(random.coin() ? half : -half);
        return seen(line(make_transform(near(middle), d, along(-d.y(), d.x()), along(0, 0, 1))));
    }
    // Its half-diameters start anywhere.
    ellipse seen_ellipse(double a, double b, point const& center) const {
        double const t = random.uniform(-pi, pi), c = std::cos(t), s = std::sin(t);
        return seen(
            ellipse(make_transform(near(center), along(a * c, b * s), along(-a * s, b * c), along(0, 0, 1))));
    }
    curve seen_path(std::vector<point> const& control, point const& shift = along(0, 0)) const {
        curve path(static_cast<unsigned int>(control.size()));
        for (unsigned int i = 0; i < path.capacity(); ++i) path(i) = near(control[i] + shift);
        if (random.coin()) path.reverse_self();
        return seen(path);
    }
    template <class record, class construction, class marker>
    measurement measured(construction const& construct, marker const& mark) const {
        std::vector<record> answers;
        measurement m;
        m.memory = construct(answers);
        for (record const& a : answers) m.marks.push_back(mark(a));
        return m;
    }
    // The places of both, with the arguments in either order.
    template <class A, class B>
    measurement meeting(A const& a, B const& b, std::function<point(point const&)> const& mark) const {
        auto const meet = [&](auto& places) {
            return random.coin() ? point_intersect(a, b, places) : point_intersect(b, a, places);
        };
        return measured<Point_Description>(meet, [&](auto const& p) { return mark(p.position / motion); });
    }
    template <class construction>
    measurement circles(construction const& construct) const {
        return measured<Circle_Description>(construct,
                                            [&](auto const& c) { return c.geometry.basis(0) / motion; });
    }
};
using scene = std::function<measurement(view const&)>;

// Follows the answer `wanted` of the first measurement through full turns about `axis`; every 50th time by
// way of the text, as after a pause. An answer that is away for a while is found when it returns, if the part
// was left alone meanwhile.
void follow(scene const& measure, unsigned int wanted, point const& axis, seeded_random& random) {
    idioms::ref<multi_solution> saved;
    point followed;
    double angle = 0;
    transform drift = transform(0.0, 0.0, 0.0);
    int found = 0;
    for (int step = 0; step < 600; ++step) {
        view const now = {transform::rotation(axis, angle) * drift, 2 * pi * step / 150, random};
        measurement const m = measure(now);
        if (step == 0) {
            ASSERT_LT(wanted, m.marks.size());
            m.memory->select(wanted);
            followed = m.marks[wanted];
            saved = m.memory;
        }
        if (!m.memory->update_from(saved.address())) continue;
        saved = m.memory;
        angle += random.uniform(0, 0.07);
        drift.translate(random.uniform(-0.02, 0.02), random.uniform(-0.02, 0.02),
                        random.uniform(-0.02, 0.02));
        unsigned int index = 99;
        saved->selected(index);
        if (step % 50 == 0) {
            wide_string const text = Persistence::to_ascii(saved);
            saved = Persistence::to_multi_solution(text.substr(1, text.size() - 2).c_str());
            ASSERT_TRUE(saved.address());
        }
        if (index >= m.marks.size()) continue;
        ASSERT_NEAR(distance3d(m.marks[index], followed), 0, 0.3) << "step " << step << " angle " << angle;
        followed = m.marks[index];
        ++found;
    }
    EXPECT_GT(found, 250);
}

std::vector<point> const upright = {along(0, 0, 1)};
// Turns that keep the lines below 10 degrees or more away from the direction that the memory does not see.
std::vector<point> const tumbling = {along(1, 1, 3), along(-2, 1, 1), along(0, 0, 1), along(1, 0, 0),
                                     along(0, 1, 0)};
std::vector<point> const tumbling_for_tilted = {along(1, 1, 3), along(-2, 1, 1)};

void follow_all(unsigned int answers, std::vector<point> const& axes, scene const& measure) {
    seeded_random random(11);
    for (point const& axis : axes) {
        for (unsigned int wanted = 0; wanted < answers; ++wanted) {
            SCOPED_TRACE(testing::Message() << wanted << " about " << axis.x() << axis.y() << axis.z());
            follow(measure, wanted, axis, random);
        }
    }
}

// The line leaves the feature, touching it on its way, and comes back on the other side.
TEST(Choice, OnALineIsKeptThroughFullTurnsAndTouches) {
    auto const swept = [](view const& v) {
        return v.seen_line(at(0.3, 1.2 * std::sin(v.phase)), along(1, 0));
    };
    auto const side = [](point const& p) { return at(p.x() > 0 ? 1 : -1, 0); };
    follow_all(2, upright,
               [&](view const& v) { return v.meeting(swept(v), v.seen_ellipse(2, 1, at(0, 0)), side); });
    follow_all(2, tumbling,
               [&](view const& v) { return v.meeting(swept(v), v.seen(sphere(1, v.near(at(0, 0)))), side); });
    follow_all(2, tumbling, [&](view const& v) {
        return v.meeting(swept(v), v.seen(cylinder(1, 3, v.near(at(0, 0)), v.near(along(0.3, 0, 1)))), side);
    });
}

// The line turns about one of the two places, a point of the cone's surface; the other one runs off to
// infinity and comes back from the other side, on the other nappe.
TEST(Choice, OnALineIsKeptPastTheGeneratorsOfACone) {
    point const fixed = at(1, 0, 1);
    follow_all(2, tumbling_for_tilted, [&](view const& v) {
        double const tilt = 0.65 + 0.3 * std::cos(v.phase);
        point const half = along(std::sin(tilt) * 0.6, std::sin(tilt) * 0.8, std::cos(tilt));
        return v.meeting(v.seen_line(fixed + half * 0.2, half),
                         v.seen(cone(at(0, 0, 0.5), at(0, 0, 3), 0.5, 3)),
                         [&](point const& p) { return at(distance3d(p, fixed) < 0.05 ? 1 : -1, 0); });
    });
}

// Of four places two merge, vanish and return.
TEST(Choice, AmongThePlacesOfEllipsesIsKept) {
    follow_all(4, upright, [](view const& v) {
        double const shift = 0.75 - 0.35 * std::cos(v.phase);
        return v.meeting(v.seen_ellipse(2, 1, at(0, 0)), v.seen_ellipse(1.1, 1.3, at(shift, 0)),
                         [](point const& p) { return at(p.x() > 0.8 ? 1 : -1, p.y() > 0 ? 1 : -1); });
    });
}

// A path in three waves and a feature that is out of sight for a while.
TEST(Choice, AmongThePlacesOfAPathIsKept) {
    std::vector<point> wave;
    for (int i = 0; i <= 9; ++i) wave.push_back(at(0.6 * i - 2.7, i % 3 == 0 ? 0.2 : (i % 2 == 0 ? 2 : -2)));
    std::vector<point> const hill = {at(-3, -2), at(-1, 3), at(1, 3), at(3, -2)};
    auto const place = [](view const& v) { return along(0, std::fmod(v.phase, 2 * pi) > 6 ? 50 : 0); };
    auto const itself = [](point const& p) { return p; };
    follow_all(3, upright, [&](view const& v) {
        return v.meeting(v.seen_line(at(0, 0) + place(v), along(1, 0.1)), v.seen_path(wave), itself);
    });
    follow_all(2, upright, [&](view const& v) {
        return v.meeting(v.seen_ellipse(1.5, 1, at(0, 0) + place(v)), v.seen_path(wave), itself);
    });
    follow_all(2, upright, [&](view const& v) {
        return v.meeting(v.seen_path(hill, place(v)), v.seen_path(wave), itself);
    });
}

// The angle between the lines passes through the right one, where the bisectors exchange their places.
TEST(Choice, OfABisectorIsKept) {
    follow_all(2, upright, [](view const& v) {
        double const angle = pi / 2 + 0.3 * std::cos(v.phase);
        line a = v.seen_line(at(1, 0), along(1, 0)),
             b = v.seen_line(at(0, 1), along(std::cos(angle), std::sin(angle)));
        if (v.random.coin()) std::swap(a, b);
        auto const mark = [&](Segment_Description const& s) {
            point const d = s.geometry.basis(1) / v.motion;
            return at(d.x() * d.y() > 0 ? 1 : -1, 0);
        };
        return v.measured<Segment_Description>([&](auto& list) { return line_bisect(a, b, list); }, mark);
    });
}

TEST(Choice, OfATangentIsKept) {
    auto const tangents = [](view const& v, Geometry_Description& a, Geometry_Description& b) {
        return v.measured<Segment_Description>(
            [&](auto& list) {
                return v.random.coin() ? line_tangent(&a, &b, list) : line_tangent(&b, &a, list);
            },
            [&](auto const& s) { return at(0, 0) + 3 * ((s.geometry.basis(0) / v.motion) - at(0, 0)); });
    };
    Ellipse_Description a, b;
    Point_Description p;
    follow_all(2, upright, [&](view const& v) {
        a.geometry = v.seen_ellipse(2, 1, at(0, 0));
        p.position = v.seen(v.near(at(3, 1)));
        return tangents(v, p, a);
    });
    follow_all(4, upright, [&](view const& v) {
        a.geometry = v.seen_ellipse(2, 1, at(0, 0));
        b.geometry = v.seen_ellipse(0.6, 0.5, at(3 + 0.3 * std::cos(v.phase), 1));
        return tangents(v, b, a);
    });
}

TEST(Choice, OfATangentCircleIsKept) {
    auto const side = [](view const& v, int i) {
        return v.seen_line(at(i - 1.0, i == 2 ? 1 : 0), along(std::cos(1.1 * i), std::sin(1.1 * i)));
    };
    follow_all(4, upright, [&](view const& v) {
        return v.circles(
            [&](auto& list) { return circle_tangent_tangent_value(side(v, 0), side(v, 1), 1, list); });
    });
    follow_all(2, upright, [&](view const& v) {
        return v.circles([&](auto& list) {
            return circle_tangent_tangent_fit(side(v, 0), side(v, 1), v.seen(v.near(at(1, 0.6))), list);
        });
    });
    follow_all(4, upright, [&](view const& v) {
        return v.circles([&](auto& list) {
            return circle_tangent_tangent_tangent(side(v, 2), side(v, 0), side(v, 1), list);
        });
    });
}

}  // namespace
