#pragma once

#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "exit_status.h"
#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// What a feature is to the constructions. Several kinds of records are the same to them: a circle or an arc
/// is an ellipse, a NURBS curve or a spline a path, measured data of any kind a list.
enum class feature_kind { point, list, line, plane, sphere, cylinder, cone, ellipse, path, rectangle };

/// "point", "list", ...
char const* kind_name(feature_kind kind);

/// A feature as it was given and what it is.
struct construct_feature {
    std::string words;  ///< as they are shown: printable, on one line
    feature_kind kind = feature_kind::point;
    std::shared_ptr<Geometry_Description> record;
    bool in_space = false;  ///< It has a z.
};

/// Reads a feature: a file, `KIND FILE`, or `KIND NUMBERS...` as `make_record` takes them ("line" is a
/// segment). Points of a file become a path when KIND is that of a spline. `form` is the form, in a word, of
/// files whose suffix does not say it; empty for none. Otherwise says in one line what is wrong.
exit_status read_feature(std::string const& words, std::string const& form, construct_feature& feature,
                         std::string& reason);

/// The shapes that constructions take, in the order of `feature_kind`.
using feature_shapes =
    std::tuple<point, std::vector<point>, line, plane, sphere, cylinder, cone, ellipse, curve, rectangle>;

namespace construct_detail {
template <class shape, class... all>
constexpr feature_kind kind_among(std::type_identity<std::tuple<all...>>) {
    int place = 0;
    (void)((std::is_same_v<shape, all> || (++place, false)) || ...);
    return static_cast<feature_kind>(place);
}
}  // namespace construct_detail

template <class shape>
inline constexpr feature_kind feature_kind_of =
    construct_detail::kind_among<shape>(std::type_identity<feature_shapes>());

/// The shape of a feature of that kind. Arcs are whole circles; paths are Bezier paths in space.
template <class shape>
shape shape_of(construct_feature const& feature);
template <>
point shape_of(construct_feature const& feature);
template <>
std::vector<point> shape_of(construct_feature const& feature);
template <>
line shape_of(construct_feature const& feature);
template <>
plane shape_of(construct_feature const& feature);
template <>
sphere shape_of(construct_feature const& feature);
template <>
cylinder shape_of(construct_feature const& feature);
template <>
cone shape_of(construct_feature const& feature);
template <>
ellipse shape_of(construct_feature const& feature);
template <>
curve shape_of(construct_feature const& feature);
template <>
rectangle shape_of(construct_feature const& feature);

}  // namespace tvmath
