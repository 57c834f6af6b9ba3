#pragma once

inline namespace tvmath {

/// Half of the length of a tangent whose ends coincide: it must have an extent to be seen and to have a
/// direction.
inline constexpr double least_half_length = 0.005;

}  // namespace tvmath
