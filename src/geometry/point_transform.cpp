#include "geometry/point_lanes.h"
#include "tvmath/transform.h"

inline namespace tvmath {
namespace {

// The coordinates of a point are the lanes and the columns of the map stay in registers. Terms are added in
// the order of the single point, so that both give the same bits.
TVMATH_WIDE_LOOP void carry_list3d(point* p, point* end, double const* m) {
    point_lanes const offset = {1.0, m[0], m[4], m[8]}, x_axis = {0.0, m[1], m[5], m[9]};
    point_lanes const y_axis = {0.0, m[2], m[6], m[10]}, z_axis = {0.0, m[3], m[7], m[11]};
    for (; p != end; ++p) {
        if (p->is_3d() && (*p)[0] == 1.0) {
            point_lanes q = x_axis * p->x() + y_axis * p->y() + z_axis * p->z() + offset;
            q[0] = 1.0;  // infinite coordinates times 0 would make the weight NaN
            TVMATH_STORE_LANES(*p, q);
        } else if (p->is_trivial()) {
            *p = point(true, m[0], m[4], m[8]);
        } else {
            transform_detail::carry3d(*p, m);
        }
    }
}

void carry_list2d(point* p, point* end, double const* m) {
    for (; p != end; ++p) {
        if (p->is_trivial()) {
            *p = point(true, m[0], m[3]);
        } else {
            transform_detail::carry2d(*p, m);
        }
    }
}

// `map` is 0 for the forward map, 1 for the inverse.
idioms::array<point>& carry_list(idioms::array<point>& list, transform const& t, unsigned int map) {
    if (t.is_3d()) {
        point* const first = list.lazycopy_begin();
        carry_list3d(first, first + list.capacity(), t.begin() + 12 * map);
    } else if (t.is_2d()) {
        point* const first = list.lazycopy_begin();
        carry_list2d(first, first + list.capacity(), t.begin() + 6 * map);
    }
    return list;
}

}  // namespace

idioms::array<point>& operator*=(idioms::array<point>& list, transform const& t) {
    return carry_list(list, t, 0);
}

idioms::array<point>& operator/=(idioms::array<point>& list, transform const& t) {
    return carry_list(list, t, 1);
}

}  // namespace tvmath
