#include "tvmath/composite_fit.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "composite_model.h"
#include "geometry/xyz.h"
#include "tvmath/geometry_queries.h"
#include "tvmath/matrix.h"
#include "tvmath/quick_fit.h"
#include "tvmath/residuals.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using feature_list = std::vector<ctl::ref<Geometry_Description>>;
using data_lists = std::vector<std::vector<point>>;

// Centres of the features beside the centroids of their points.
struct center_pair {
    xyz nominal, measured;
};

std::vector<center_pair> pair_centers(composite_model const& model) {
    std::vector<center_pair> pairs;
    for (auto const& part : model.parts) {
        point center;
        if (get_center_point(*part.feature, center))
            pairs.push_back({xyz(center), xyz(point_fit(part.points))});
    }
    return pairs;
}

// The rotation that turns the measured offsets from their mean best towards the nominal ones.
transform best_rotation(std::vector<center_pair> const& pairs, center_pair const& mean, bool solid) {
    double h[3][3] = {};  // nominal by measured
    for (center_pair const& pair : pairs) {
        xyz const p = pair.nominal - mean.nominal, q = pair.measured - mean.measured;
        double const a[] = {p.x, p.y, p.z}, b[] = {q.x, q.y, q.z};
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) h[r][c] += a[r] * b[c];
        }
    }
    if (!solid) return transform::rotation(std::atan2(h[1][0] - h[0][1], h[0][0] + h[1][1]));
    matrix rows(3, 3), u, v;
    for (unsigned int r = 0; r < 3; ++r) rows.row(r, vector(3, h[r]));
    vector const values = singular_value_decomposition(rows, u, v);
    // A reflection is no motion: the axis with the least to say is reversed.
    unsigned int least = 0;
    double value = 0;
    min_index_value(values, least, value);
    if (determinant(u) * determinant(v) < 0) u.col(least, -u.col(least));
    matrix const r = u * transpose(v);
    auto const column = [&r](unsigned int i) { return point(false, r[0][i], r[1][i], r[2][i]); };
    return transform::extrusion(column(0), column(1), column(2));
}

// Both starts of the search: the nominal placement, and centres upon centroids.
std::vector<composite_pose> starting_poses(composite_model const& model) {
    std::vector<composite_pose> starts = {model.nominal_pose()};
    std::vector<center_pair> const pairs = pair_centers(model);
    if (pairs.empty()) return starts;
    center_pair mean;
    for (center_pair const& pair : pairs) {
        mean.nominal = mean.nominal + pair.nominal;
        mean.measured = mean.measured + pair.measured;
    }
    double const share = 1 / static_cast<double>(pairs.size());
    mean = {share * mean.nominal, share * mean.measured};
    transform const turn = best_rotation(pairs, mean, model.solid);
    point offset = (model.pivot - mean.measured).location(true);
    offset.to_direction();
    composite_pose const aligned = {turn, mean.nominal + xyz(offset * turn)};
    // In the plane the heights are not the motion's business.
    starts.push_back(model.solid ? aligned
                                 : composite_pose{turn, {aligned.center.x, aligned.center.y, model.pivot.z}});
    return starts;
}

// The step that solves the normal equations with `damping` times their mean diagonal added, which also holds
// still what the features leave open. False when it is not finite.
bool damped_step(normal_equations const& system, unsigned int unknowns, double damping, double (&step)[6]) {
    double trace = 0;
    for (unsigned int i = 0; i < unknowns; ++i) trace += system.normal[i][i];
    matrix m(unknowns, unknowns);
    for (unsigned int i = 0; i < unknowns; ++i) {
        vector row(unknowns, system.normal[i]);
        row(i) += damping * trace / unknowns;
        m.row(i, row);
    }
    vector solution(unknowns, system.gradient);
    if (!(trace > 0) || !solution.times_inverse_of(m)) return false;
    for (unsigned int i = 0; i < unknowns; ++i) step[i] = -solution[i];
    return std::all_of(step, step + unknowns, [](double s) { return std::isfinite(s); });
}

// Levenberg and Marquardt's iteration from `pose`, which becomes the end. It ends by itself where a step is
// below the rounding of the size, and where no step, however short, lowers the sum any more. The damping
// never goes below the rounding of the normal equations; its limit of 1e8 is a step of 1e-8 of the steepest
// descent.
bool descend(composite_model const& model, composite_pose& pose, double& sum) {
    double damping = 1e-6;
    sum = model.sum_of_squares(pose);
    for (int round = 0; round < 200; ++round) {
        normal_equations const system = model.linearize(pose);
        for (;; damping *= 10) {
            double step[6] = {};
            if (damping > 1e8) return std::isfinite(sum);
            if (!damped_step(system, model.unknowns(), damping, step)) return sum == 0.0;
            composite_pose const next = model.moved(pose, step);
            double const next_sum = model.sum_of_squares(next);
            double const length = std::sqrt(std::inner_product(step, step + 6, step, 0.0));
            if (length < 1e-14 * model.size) return std::isfinite(sum);
            if (!(next_sum < sum)) continue;
            pose = next;
            sum = next_sum;
            damping = std::max(damping / 100, 1e-13);
            break;
        }
    }
    return false;
}

}  // namespace

transform fit_composite(feature_list const& features, data_lists const& points) {
    composite_model const model(features, points);
    if (!model.is_valid) return transform();
    double least = infinity;
    transform best;
    for (composite_pose pose : starting_poses(model)) {
        double sum = 0;
        if (!descend(model, pose, sum) || !(sum < least)) continue;
        least = sum;
        best = inverse(model.to_nominal(pose));
    }
    return best;
}

double calc_composite_profile_error(feature_list const& features, data_lists const& points,
                                    transform const& placement) {
    composite_model const model(features, points);
    if (!model.is_valid) return domain_error_value;
    std::vector<double> all, errors;
    for (auto const& part : model.parts) {
        std::vector<point> seen = part.points;
        for (point& p : seen) p /= placement;
        calculate_errors(*part.feature, part.feature->type(), seen, errors);
        all.insert(all.end(), errors.begin(), errors.end());
    }
    return get_profile_error(all);
}

}  // namespace tvmath
