#include <algorithm>
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

// What one point of the result has in common with all others: the bytes before the slots and the slots that
// are not computed, which are the weight and, unless the path is solid, z. What a flat path stores there is
// undefined, and infinite coordinates times 0 would make the weight NaN.
struct common_part {
    point blank;
    point_lanes slots = {1.0, 0.0, 0.0, 0.0};
    long long computed __attribute__((vector_size(32)));

    explicit common_part(bool solid)
        : blank(solid ? point(true, 0, 0, 0) : point(true, 0, 0)), computed{0, -1, -1, solid ? -1 : 0} {}
};

inline void write_point(point* to, common_part const& common, point_lanes const& lanes) {
    point_lanes const all = common.computed ? lanes : common.slots;
    std::memcpy(static_cast<void*>(to), &common.blank, sizeof(point) - sizeof(all));
    TVMATH_STORE_LANES(*to, all);
}

// `to` receives, for each segment, its first control point and one point for each row, then the last control
// point if that is asked for. Terms are added in the order of the control points.
TVMATH_WIDE_LOOP void render_segments(point const* control, unsigned int segments, blend const* rows,
                                      blend const* rows_end, bool with_end, common_part const& shared,
                                      point* to) {
    common_part const common = shared;  // in registers
    point_lanes p0, p1, p2, p3;
    TVMATH_LOAD_LANES(p0, *control);
    for (unsigned int segment = 0; segment < segments; ++segment, control += 3) {
        TVMATH_LOAD_LANES(p1, control[1]);
        TVMATH_LOAD_LANES(p2, control[2]);
        TVMATH_LOAD_LANES(p3, control[3]);
        write_point(to++, common, p0);
        for (blend const* row = rows; row != rows_end; ++row) {
            double const* const w = row->weight;
            point_lanes const q = p0 * w[0] + p1 * w[1] + p2 * w[2] + p3 * w[3];
            write_point(to++, common, q);
        }
        p0 = p3;
    }
    if (with_end) write_point(to, common, p0);
}

// The path with every point raised to one dimension, a trivial one to the origin; as it is, and shared, when
// there is nothing to raise.
curve of_one_dimension(curve const& c, bool solid) {
    unsigned int const capacity = solid ? 4 : 3;
    if (std::all_of(c.begin(), c.end(), [=](point const& p) { return p.capacity() == capacity; })) return c;
    curve raised = c;
    point* const p = raised.lazycopy_begin();
    std::for_each(p, p + raised.capacity(), [=](point& q) { q.promote_to(capacity); });
    return raised;
}

}  // namespace

curve render(curve const& c, bool closed, unsigned int n) {
    if (c.capacity() % 3 != 1) return curve();
    if (n == 0) n = 1;
    unsigned int const segments = (c.capacity() - 1) / 3;
    std::uint64_t const count = std::uint64_t{n} * segments + (closed ? 0 : 1);
    if (count > std::numeric_limits<unsigned int>::max()) return curve();

    bool const solid = std::any_of(c.begin(), c.end(), [](point const& p) { return p.is_3d(); });
    curve const path = of_one_dimension(c, solid);
    idioms::array<blend> const table = blending_table(segments == 0 ? 1 : n);
    curve result(static_cast<unsigned int>(count));
    point* const to = result.lazycopy_begin();
    render_segments(path.begin(), segments, table.begin(), table.end(), !closed, common_part(solid), to);
    return result;
}

}  // namespace tvmath
