#pragma once

#include "plate_drawing.h"

namespace plate {

/// Grey of the plate's upper face, evenly lit: brushed along one direction, turned about the bore and the
/// holes, scratched.
double brushed_metal(place mm);

/// Grey of what the plate lies on, out of focus, with the shadow that the plate throws.
double ground(place mm);

/// What lies on a place: how much of it is covered, and by what grey.
struct cover {
    double share, grey;
};
/// Specks of dust, most of them on edges, and two threads. `blur` in mm.
cover dust(place mm, double blur);

}  // namespace plate
