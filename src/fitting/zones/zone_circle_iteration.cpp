#include "zone_circle_iteration.h"

#include <algorithm>
#include <cmath>

#include "gradient_projection_minimizer.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr int most_rounds = 12;

// The ring about the model's centre that just holds the points: all constraints are met exactly.
vector refreshed(ZoneCircleModel& model, std::vector<xy> const& points) {
    double least = infinity, greatest = 0;
    for (xy p : points) {
        double const dx = p.x - model.x, dy = p.y - model.y, square = dx * dx + dy * dy;
        least = std::min(least, square);
        greatest = std::max(greatest, square);
    }
    least = std::sqrt(least);
    greatest = std::sqrt(greatest);
    model.radius = (least + greatest) * 0.5;
    model.zone = greatest - least;
    return parameters_of(model);
}

template <class constraint>
std::vector<constraint> constraints_of(std::vector<xy> const& points) {
    std::vector<constraint> list(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        list[i].x = points[i].x;
        list[i].y = points[i].y;
    }
    return list;
}

}  // namespace

bool iterate_zone_circle(ZoneCircleModel& model, std::vector<xy> const& points) {
    auto inner = constraints_of<InnerZoneCircleConstraint>(points);
    auto outer = constraints_of<OuterZoneCircleConstraint>(points);
    ZoneCircleObjectiveFunction form;
    GradientProjectionMinimizer minimizer(&model, &form);
    for (std::size_t i = 0; i < points.size(); ++i) {
        minimizer.add_constraint(&inner[i]);
        minimizer.add_constraint(&outer[i]);
    }

    vector old = parameters_of(model);
    for (int round = 0; round < most_rounds; ++round) {
        vector current = parameters_of(model);
        if (round != 0 && norm(current - old) / norm(current) < 1e-10 &&
            minimizer.maximum_violation() < 1e-10) {
            break;
        }
        current = refreshed(model, points);
        // Half the way back now and then, against going to and fro between two sets of contacts.
        if (round != 0 && round % 3 == 0) {
            set_parameters(model, 0.5 * (old + current));
            current = refreshed(model, points);
        }
        old = current;
        if (!minimizer.minimize()) return false;
    }
    return true;
}

}  // namespace tvmath
