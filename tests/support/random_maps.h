#pragma once

#include "seeded_random.h"
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

}  // namespace tvmath
