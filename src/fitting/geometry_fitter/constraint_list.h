#pragma once

#include <typeinfo>
#include <vector>

#include "tvmath/geometry_fitter.h"

inline namespace tvmath {
namespace geometry_fitter {

/// What one constraint of a kind counts for a fitter, and how many of them it takes; none by default.
struct kind_rule {
    int conditions = 0;
    int most = 0;
};
constexpr int any_number = 1000;

/// The rules of a fitter. `direction` is for parallel and perpendicular ones together.
struct counting_rules {
    int unknowns;
    kind_rule centered = {}, through = {}, tangent = {}, direction = {};
};

/// Whether a new constraint of that kind finds room: the conditions, and 1 when there are fit points, must
/// not exceed the unknowns.
bool has_room(counting_rules const& rules, constraint const* list, std::type_info const& kind);
/// Conditions and fit points less unknowns.
int redundancy(counting_rules const& rules, constraint const* list);
/// The common start of all results: false unless all is valid; joins the fit constraints into the first one.
bool prepare(constraint* list);

/// The next constraint of exactly that kind, from `list` on; null when there is none.
template <class kind>
kind* next_of(constraint* list) {
    while (list && typeid(*list) != typeid(kind)) list = list->next;
    return static_cast<kind*>(list);
}

/// The points that are to be fitted, of a prepared list.
inline std::vector<point> const& fit_points(constraint* list) {
    static std::vector<point> const none;
    fit_cnst const* const found = next_of<fit_cnst>(list);
    return found ? found->points : none;
}
/// The points to pass through, newest first.
std::vector<point> through_points(constraint* list);
/// The lines or planes to be touched, newest first.
std::vector<transform> touched_shapes(constraint* list);

}  // namespace geometry_fitter
}  // namespace tvmath
