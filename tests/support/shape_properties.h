#pragma once

#include <algorithm>

#include "seeded_random.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A regular map, 2D or 3D, left-handed or not: turned, stretched by 0.5 to 2 and moved by up to 10.
inline transform random_map(seeded_random& random) {
    auto const number = [&] { return random.uniform(-3, 3); };
    if (random.coin())
        return transform::dilation(random.uniform(0.5, 2), -1).rotate(number()).translate(9, 8);
    transform const turn = transform::rotation(number(), number(), number());
    return transform::dilation(random.uniform(0.5, 2), 1, 0.8) * turn * transform(1, 2, number());
}

/// The largest difference of two corners.
inline double corner_distance(CRealRect const& a, CRealRect const& b) {
    return std::max(distance2d(a.TopLeft(), b.TopLeft()), distance2d(a.BottomRight(), b.BottomRight()));
}

}  // namespace tvmath
