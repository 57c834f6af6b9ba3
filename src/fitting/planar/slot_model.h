#pragma once

#include <array>
#include <vector>

#include "planar_points.h"

inline namespace tvmath {

/// Centre, unit vector of the axis, half the length between the centres of the ends, radius.
struct planar_slot {
    xy center, axis{1, 0};
    double half = 0, radius = 0;
};

/// The unknowns, all as lengths: the centre along and across, the turn times `half` + `radius`, the half
/// length, the radius.
constexpr unsigned int slot_unknowns = 5;
using slot_row = std::array<double, slot_unknowns>;

/// Normal equations of one round, upper triangle, with the sum of squared distances.
struct slot_equations {
    std::array<slot_row, slot_unknowns> matrix{};
    slot_row gradient{};
    double squares = 0;
};

struct fitted_slot {
    planar_slot slot;
    slot_equations equations;
    double squares() const { return equations.squares; }
};

double squares_of(std::vector<xy> const& points, planar_slot const& s);

/// Follows the start in `fitted.slot` to the least sum of squared distances. False when it finds none,
/// with what it came to.
bool settle(std::vector<xy> const& points, fitted_slot& fitted);

/// Whether the points tell the slot: see `slot_fit`. The scatter counts as at least `rounding`.
bool is_told(std::vector<xy> const& points, fitted_slot const& fitted, double rounding);

}  // namespace tvmath
