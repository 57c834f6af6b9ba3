#pragma once

#include <optional>

#include "reference_set.h"

/// What a fit gives; nothing for its null feature.
using answer = std::optional<figures>;

/// A fit of the library. One with a given centre, point or direction is given that of the reference answer,
/// so that the rest of it must come out.
struct named_fit {
    char const* name;
    char const* kind;  ///< Of the sets that it applies to.
    bool algebraic;    ///< Whether it promises the algebraic answer.
    answer (*run)(reference_set const&);
};

/// All fits of the kinds that have reference sets.
std::vector<named_fit> const& applicable_fits();
