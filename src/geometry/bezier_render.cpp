#include <cstdint>
#include <limits>

#include "geometry/point_lanes.h"
#include "tvmath/curve.h"

inline namespace tvmath {
namespace {

// The cubic Bernstein polynomials at one parameter.
struct blend {
    double weight[4];

    static constexpr bool optimize_ctor() { return true; }
    static constexpr bool optimize_copyctor() { return true; }
    static constexpr bool optimize_dtor() { return true; }
};

// Row k - 1 is for t = k / n, k = 1 ... n - 1. On the heap, because n is the caller's.
idioms::array<blend> blending_table(unsigned int n) {
    idioms::array<blend> table(n - 1);
    blend* row = table.lazycopy_begin();
    for (unsigned int k = 1; k < n; ++k) {
        double const t = static_cast<double>(k) / n, u = static_cast<double>(n - k) / n;
        *row++ = {{u * u * u, 3 * t * u * u, 3 * t * t * u, t * t * t}};
    }
    return table;
}

// The coordinates that take part: those of a trivial point are 0, as is z of a 2D point. By reference,
// because only a function for wide registers could return lanes.
void load_control_point(point_lanes& lanes, point p) {
    if (p.is_trivial()) p.promote2d();
    if (p.is_2d()) p.z() = 0.0;
    TVMATH_LOAD_LANES(lanes, p);
    lanes[0] = 1.0;
}

// `to` receives, for each segment, its first control point and one point for each row. Every point of `to` is
// made from `blank`, which has the dimension of the result. Terms are added in the order of the control
// points.
TVMATH_WIDE_LOOP void render_segments(point const* control, unsigned int segments, blend const* rows,
                                      blend const* rows_end, point const& blank, point* to) {
    point_lanes p0, p1, p2, p3;
    load_control_point(p0, control[0]);
    for (unsigned int segment = 0; segment < segments; ++segment, control += 3) {
        load_control_point(p1, control[1]);
        load_control_point(p2, control[2]);
        load_control_point(p3, control[3]);
        *to = blank;
        TVMATH_STORE_LANES(*to, p0);
        ++to;
        for (blend const* row = rows; row != rows_end; ++row, ++to) {
            double const* const w = row->weight;
            point_lanes q = p0 * w[0] + p1 * w[1] + p2 * w[2] + p3 * w[3];
            q[0] = 1.0;
            *to = blank;
            TVMATH_STORE_LANES(*to, q);
        }
        p0 = p3;
    }
}

bool has_3d_point(curve const& c) {
    for (point const& p : c) {
        if (p.is_3d()) return true;
    }
    return false;
}

}  // namespace

curve render(curve const& c, bool closed, unsigned int n) {
    if (c.capacity() % 3 != 1) return curve();
    if (n == 0) n = 1;
    unsigned int const segments = (c.capacity() - 1) / 3;
    std::uint64_t const count = std::uint64_t{n} * segments + (closed ? 0 : 1);
    if (count > std::numeric_limits<unsigned int>::max()) return curve();

    point const blank = has_3d_point(c) ? point(true, 0, 0, 0) : point(true, 0, 0);
    idioms::array<blend> const table = blending_table(segments == 0 ? 1 : n);
    curve result(static_cast<unsigned int>(count));
    point* const to = result.lazycopy_begin();
    render_segments(c.begin(), segments, table.begin(), table.end(), blank, to);
    if (!closed) {
        point_lanes last;
        load_control_point(last, c.end()[-1]);
        to[count - 1] = blank;
        TVMATH_STORE_LANES(to[count - 1], last);
    }
    return result;
}

}  // namespace tvmath
