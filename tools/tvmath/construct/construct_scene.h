#pragma once

#include <optional>
#include <string>
#include <vector>

#include "construct/construct_result.h"
#include "fit/fit_plot_parts.h"
#include "plot/canvas.h"

inline namespace tvmath {

enum class scene_role { feature, answer, chosen };

/// One feature or answer in the plane of a picture.
struct scene_part {
    struct stroke {
        std::vector<spot> at;
        bool closed;
    };

    scene_role role = scene_role::feature;
    std::string label;        ///< A, B, C of features, 1, 2, ... of answers; empty for none
    bool is_surface = false;  ///< Its strokes are the border of a plane.
    std::vector<stroke> strokes;
    std::vector<stroke> hidden;  ///< what is not there but counts: the rest of an arc
    std::vector<spot> dots;
    std::optional<spot> along;  ///< of a line that goes on beyond its stroke
};

/// A construction as it is drawn: features first, the chosen answer last. Places count from `origin`.
struct construct_scene {
    spot origin;
    bool is_tilted = false;  ///< Not seen along Z.
    std::vector<scene_part> parts;
    view_extent extent;
};

/// The scene as seen along -Z after the rotation `view`; without one, bodies and planes are seen obliquely.
construct_scene scene_of(construct_result const& result, std::optional<transform> const& view);

/// Draws the scene into the panel, with its labels.
void draw_scene(canvas& c, construct_scene const& scene, plot_panel const& panel);

}  // namespace tvmath
