#include "surface.h"

#include <algorithm>

#include "noise.h"
#include "part_distance.h"

namespace plate {
namespace {

// How far a blurred edge has come at a signed distance.
double step(double distance, double blur) {
    return 0.5 * std::erfc(-distance / (blur * std::sqrt(2.0)));
}

// The marks of a tool that went along u, as a share of the grey: long streaks, seldom two pixels wide or
// less. mm.
double streaks(std::uint64_t seed, double u, double v) {
    return 0.045 * smooth_noise(seed, u / 2.5, v / 0.16) + 0.05 * smooth_noise(seed + 1, u / 1.1, v / 0.035) +
           0.045 * smooth_noise(seed + 2, u / 0.35, v / 0.022) +
           0.03 * smooth_noise(seed + 3, u / 0.12, v / 0.03);
}

// Faces turned about a hole: how far beyond its edge they reach, in mm.
struct turned_face {
    double x, y, radius;
};
constexpr turned_face turned_faces[] = {
    {-0.9, 0.5, 2.15}, {-4.5, 3.0, 0.82}, {4.5, 3.0, 0.82}, {4.5, -3.0, 0.82}, {-4.5, -3.0, 0.82},
};

// Grooves about a centre mirror the light in two opposite fans.
double turned(turned_face const& face, place p, std::uint64_t seed) {
    double const r = std::hypot(p.x - face.x, p.y - face.y), a = std::atan2(p.y - face.y, p.x - face.x);
    double const fan = std::cos(2 * (a - 135 * degree));
    return 0.11 * fan + 0.05 * fan * fan * fan +
           0.9 * streaks(seed, std::fabs(a) * face.radius, r);  // |a|: no seam
}

struct scratch {
    double x1, y1, x2, y2, width, strength;
};
constexpr scratch scratches[] = {
    {-3.3, 3.9, -1.9, 2.7, 0.007, 0.22},    {1.4, 1.7, 3.9, 1.1, 0.006, 0.18},
    {1.2, 1.5, 3.2, 1.25, 0.005, 0.14},     {-5.3, -1.2, -3.2, -2.1, 0.008, 0.2},
    {3.3, -3.9, 4.1, -1.9, 0.006, -0.16},   {0.95, -2.3, 1.4, -3.7, 0.006, 0.2},
    {-3.0, -1.6, -2.0, -2.5, 0.006, -0.14},
};

// A bright or dark line that tapers off towards its ends.
double scratched(scratch const& s, place p) {
    double const dx = s.x2 - s.x1, dy = s.y2 - s.y1, length = std::hypot(dx, dy);
    double const t = ((p.x - s.x1) * dx + (p.y - s.y1) * dy) / (length * length);
    if (t <= 0 || t >= 1) return 0;
    double const off = ((p.x - s.x1) * dy - (p.y - s.y1) * dx) / length / (s.width + 0.012);
    return s.strength * std::sqrt(std::sin(t * 180 * degree)) * std::exp(-off * off / 2);
}

// A blob with lobes of its own.
struct speck {
    double x, y, radius, grey;
};
constexpr speck specks[] = {
    // On edges: bore, holes, notch, slots, windows, outer edges.
    {-2.33, -0.12, 0.07, 0.34},
    {0.55, 1.17, 0.05, 0.52},
    {-4.12, 3.33, 0.045, 0.32},
    {4.62, -3.49, 0.05, 0.5},
    {4.62, 0.44, 0.06, 0.36},
    {-0.42, -2.66, 0.06, 0.33},
    {-4.08, 0.75, 0.04, 0.5},
    {2.35, 2.35, 0.055, 0.34},
    {2.86, -2.0, 0.045, 0.48},
    {-5.71, 1.15, 0.07, 0.36},
    {1.62, -4.31, 0.06, 0.34},
    {-5.15, 3.94, 0.05, 0.5},
    {2.45, 0.19, 0.035, 0.45},
    // Elsewhere.
    {-2.1, 3.55, 0.035, 0.33},
    {3.3, 1.35, 0.05, 0.3},
    {-2.9, -1.9, 0.025, 0.35},
    {0.9, -1.75, 0.04, 0.32},
    {3.8, -1.7, 0.03, 0.34},
    {-0.7, 0.3, 0.06, 0.34},
    {6.05, 2.1, 0.05, 0.36},
    {-1.2, 3.0, 0.02, 0.3},
};

// Part of a circle, as a thread lies.
struct thread {
    double x, y, radius, from, to, width, grey;
};
constexpr thread threads[] = {
    {0.35, -3.6, 0.75, 60 * degree, 172 * degree, 0.014, 0.82},
    {3.55, 2.25, 0.62, 95 * degree, 215 * degree, 0.012, 0.78},
};

void lay(cover& c, double share, double grey) {
    c.grey = share + c.share > 0
                 ? (c.grey * c.share * (1 - share) + grey * share) / (c.share * (1 - share) + share)
                 : 0;
    c.share = c.share * (1 - share) + share;
}

}  // namespace

double brushed_metal(place mm) {
    double const c = std::cos(7 * degree), s = std::sin(7 * degree);
    double marks = streaks(10, c * mm.x + s * mm.y, c * mm.y - s * mm.x);
    std::uint64_t seed = 20;
    for (turned_face const& face : turned_faces) {
        double const inside = face.radius - std::hypot(mm.x - face.x, mm.y - face.y);
        seed += 10;
        if (inside < -0.1) continue;
        double const share = step(inside, 0.015);
        // The wall of the face, a few hundredths deep, is lit on the far side of the light.
        double const wall = std::exp(-inside * inside / (2 * 0.018 * 0.018)),
                     facing = ((mm.x - face.x) - (mm.y - face.y)) / (face.radius * std::sqrt(2.0));
        marks += share * (turned(face, mm, seed) - marks) + 0.22 * wall * facing;
    }
    for (scratch const& line : scratches) marks += scratched(line, mm);
    return 0.6 * (1 + marks);
}

double ground(place mm) {
    double const mottle =
        0.012 * smooth_noise(90, mm.x / 0.4, mm.y / 0.4) + 0.01 * smooth_noise(91, mm.x / 1.7, mm.y / 1.7);
    // Lit where the way to the light, up and to the left, is free. A wide lamp throws a soft shadow.
    double const lit = step(opening_distance({mm.x - 0.32, mm.y + 0.32}), 0.16);
    return 0.055 + mottle + 0.12 * lit;
}

cover dust(place mm, double blur) {
    cover c{0, 0};
    std::uint64_t seed = 100;
    for (speck const& s : specks) {
        double const x = mm.x - s.x, y = mm.y - s.y, r = std::hypot(x, y);
        seed += 1;
        if (r > 2 * s.radius + 6 * blur) continue;
        double const a = std::atan2(y, x), turn = static_cast<double>(seed % 7);
        double const radius =
            s.radius * (1 + 0.3 * std::cos(2 * a + turn) + 0.2 * std::cos(3 * a - 2 * turn));
        double const crumbs = 1 + 0.3 * smooth_noise(seed, x / 0.03, y / 0.03) + 0.3 * (y - x) / s.radius;
        lay(c, 0.93 * step(radius - r, blur), s.grey * std::max(crumbs, 0.2));
    }
    for (thread const& t : threads) {
        double const x = mm.x - t.x, y = mm.y - t.y,
                     a = std::remainder(std::atan2(y, x) - (t.from + t.to) / 2, 360 * degree);
        double const off = std::hypot(x, y) - t.radius - 0.05 * std::sin(5 * a),
                     ends = (t.to - t.from) / 2 - std::fabs(a);
        if (std::fabs(off) > t.width + 6 * blur) continue;
        lay(c, step(t.width - std::fabs(off), blur) * step(t.radius * ends, blur), t.grey);
    }
    return c;
}

}  // namespace plate
