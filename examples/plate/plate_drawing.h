#pragma once

#include <array>
#include <cmath>
#include <vector>

/// What the pictures show: the numbers of the lens, of the plate and of the chart of dots. All that is
/// rendered, the jobs and the truth they are compared with, comes from here.
namespace plate {

struct place {
    double x, y;
};

inline constexpr unsigned int columns = 1280, rows = 1024;
inline constexpr double pixel = 0.01;  // mm: the field is 12.8 mm by 10.24 mm

// The lens. Places count in pixels from the middle of the image, x to the right and y downward; (u, v) is a
// place by `lens_scale`, half the diagonal, and r2 = u^2 + v^2. What is seen at (u, v) truly lies by
//     du = u (k1 r2 + k2 r2^2) + p1 (r2 + 2 u^2) + 2 p2 u v
//     dv = v (k1 r2 + k2 r2^2) + p2 (r2 + 2 v^2) + 2 p1 u v
// farther off: 6.5 to 9 pixels in the corners of the image, a barrel. This is the way a measuring program
// goes, so it is the one without an inversion; as a polynomial of order 5 it is also what a screen corrector
// can tell exactly. Source: D. C. Brown, Close-range camera calibration, Photogrammetric Engineering 37
// (1971) 855-866.
inline double const lens_scale = std::hypot(columns / 2.0, rows / 2.0);
inline constexpr double k1 = 0.0125, k2 = -0.003;   // radial
inline constexpr double p1 = 0.0004, p2 = -0.0003;  // decentring

// The chart: round dots in a square grid, true sizes in pixels, middle of the chart in the middle of the
// image. The centre of a circle fitted to a dot as it is seen is not where its middle is seen, since the
// distortion of its outline has a mean of its own: radius^2 / 4 times the Laplacian of the displacement,
// up to 0.005 pixel.
inline constexpr int dot_columns = 19, dot_rows = 15;
inline constexpr double dot_pitch = 66, dot_radius = 15;

/// Kinds of outlines, with their numbers in the order of the job's words: lengths in mm from the middle of
/// the field, y upward, angles in radians, anticlockwise.
enum class outline {
    line,       ///< x1, y1, x2, y2; the plate lies on its left
    circle,     ///< radius, x, y
    arc,        ///< radius, start, included angle, x, y
    rectangle,  ///< width, height, angle, x, y
    slot,       ///< half the overall length, half the width, angle, x, y
    point       ///< x, y, direction away from the plate
};

struct feature {
    char const* name;
    outline kind;
    std::array<double, 5> made;  // the truth
    double oversize = 0;         // of a radius: what it was made larger than the drawing has it
    double lobe = 0;             // of a circle: its true outline is radius + lobe cos(3 angle)
};

inline constexpr double degree = 3.14159265358979323846 / 180;

// The outline of the plate: a rectangle with rounded corners, less the chamfer and the notch.
inline constexpr double half_width = 5.7, half_height = 4.3, corner_radius = 0.5, chamfer = 0.9;

/// What the job measures. All but the lines and the point also cut their openings into the plate. Hole C is
/// larger in radius than drawn. The bore has three lobes, as a chuck with three jaws leaves them: its
/// least-squares circle is the one without, its roundness twice the lobe. Nothing else deviates.
inline std::vector<feature> const features = {
    {"left edge", outline::line, {-half_width, 2.8, -half_width, -3.4}},
    {"bottom edge", outline::line, {-4.8, -half_height, 4.8, -half_height}},
    {"chamfer",
     outline::line,
     {chamfer - half_width - 0.1, half_height - 0.1, 0.1 - half_width, half_height - chamfer + 0.1}},
    {"hole A", outline::circle, {0.5, -4.5, 3.0}},
    {"hole B", outline::circle, {0.5, 4.5, 3.0}},
    {"hole C", outline::circle, {0.512, 4.5, -3.0}, 0.012},
    {"hole D", outline::circle, {0.5, -4.5, -3.0}},
    {"bore", outline::circle, {1.6, -0.9, 0.5}, 0, 0.002},
    {"pin hole", outline::circle, {0.25, 2.6, 0.4}},
    {"notch", outline::arc, {1.2, 105 * degree, 150 * degree, half_width, -0.1}},
    {"window", outline::rectangle, {2.2, 1.1, 0, 1.9, 2.9}},
    {"tilted window", outline::rectangle, {1.5, 0.9, 20 * degree, 2.2, -2.2}},
    {"slot", outline::slot, {1.2, 0.35, 0, -0.9, -3.0}},
    {"tilted slot", outline::slot, {1.1, 0.3, 65 * degree, -4.0, 0.2}},
    {"stop", outline::point, {-1.4, half_height, 90 * degree}},
};

}  // namespace plate
