#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "correction/three_unknowns.h"
#include "tvmath/telecentricity_corrector.h"

inline namespace tvmath {
namespace {

// One observation in the equations of both axes,
//     c.x d.z k + d.z t_x + o_x = c.x + d.x        c.y d.z k + d.z t_y + o_y = c.y + d.y,
// in the order of `part`.
enum part { scaled_x, scaled_y, high, seen_x, seen_y, parts };
using observation = std::array<double, parts>;

observation observed(point c, point const& d) {
    c.promote2d();
    return {c.x() * d.z(), c.y() * d.z(), d.z(), c.x() + d.x(), c.y() + d.y()};
}

// Takes from each observation the mean over those of its artefact, which leaves the equations without the
// places o and with the same solution. False when an artefact was never seen.
//
// The means are relative to the first observation of each, so that they lose no digits when the artefact
// lies far away, and so that equal heights leave exact zeros.
bool take_out_places(std::vector<observation>& observations, std::vector<unsigned int> const& ids,
                     std::size_t artefacts) {
    struct place {
        observation first, sum;
        double count;
    };
    std::vector<place> places(artefacts);
    for (std::size_t i = 0; i < observations.size(); ++i) {
        place& at = places[ids[i]];
        if (at.count == 0) at.first = observations[i];
        at.count += 1;
        for (std::size_t k = 0; k < parts; ++k) {
            observations[i][k] -= at.first[k];
            at.sum[k] += observations[i][k];
        }
    }
    for (std::size_t i = 0; i < observations.size(); ++i) {
        place const& at = places[ids[i]];
        for (std::size_t k = 0; k < parts; ++k) observations[i][k] -= at.sum[k] / at.count;
    }
    return std::all_of(places.begin(), places.end(), [](place const& at) { return at.count > 0; });
}

three_unknowns equations(std::vector<observation> const& observations) {
    three_unknowns problem;
    for (observation const& o : observations) {
        problem.add({o[scaled_x], o[high], 0.0, o[seen_x]});
        problem.add({o[scaled_y], 0.0, o[high], o[seen_y]});
    }
    return problem;
}

double squared(double x) {
    return x * x;
}

// Solution, residual and uncertainties. With C the inverse of the common normal matrix A_x + A_y and
// sigma_x, sigma_y the errors of the axes, the variance of unknown j is that of
//     sigma_x² C[j] A_x C[j] + sigma_y² C[j] A_y C[j],      C[j] A_x C[j] = sum (row_x C[j])²,
// not the diagonal of C, which would count one variance for both.
telecentricity_corrector solved(std::vector<observation> const& observations, double dof) {
    three_unknowns const problem = equations(observations);
    if (problem.is_singular()) return {};
    three_unknowns::numbers const s = problem.solution();
    three_unknowns::numbers const c[] = {problem.inverse_column(0), problem.inverse_column(1),
                                         problem.inverse_column(2)};
    double rest_x = 0, rest_y = 0, of_x[3] = {}, of_y[3] = {};
    for (observation const& o : observations) {
        rest_x += squared(o[seen_x] - o[scaled_x] * s[0] - o[high] * s[1]);
        rest_y += squared(o[seen_y] - o[scaled_y] * s[0] - o[high] * s[2]);
        for (std::size_t j = 0; j < 3; ++j) {
            of_x[j] += squared(o[scaled_x] * c[j][0] + o[high] * c[j][1]);
            of_y[j] += squared(o[scaled_y] * c[j][0] + o[high] * c[j][2]);
        }
    }
    double const variance_x = rest_x / dof, variance_y = rest_y / dof;
    telecentricity_corrector result;
    result.residual = std::sqrt(variance_x + variance_y);
    if (result.is_trivial()) return {};
    auto const error = [&](std::size_t j) { return std::sqrt(variance_x * of_x[j] + variance_y * of_y[j]); };
    result.magnification = s[0];
    result.tilt_x = s[1];
    result.tilt_y = s[2];
    result.magnification_error = error(0);
    result.tilt_x_error = error(1);
    result.tilt_y_error = error(2);
    return result;
}

}  // namespace

telecentricity_corrector telecentricity_corrector::fit(std::vector<point> const& image_points,
                                                       std::vector<point> const& stage_points,
                                                       double z_reference, screen_corrector screen,
                                                       transform screen_to_machine) {
    std::vector<unsigned int> const one_artefact(image_points.size());
    return fit(image_points, stage_points, one_artefact, z_reference, screen, screen_to_machine);
}

telecentricity_corrector telecentricity_corrector::fit(std::vector<point> const& image_points,
                                                       std::vector<point> const& stage_points,
                                                       std::vector<unsigned int> const& artefact_ids,
                                                       double z_reference, screen_corrector screen,
                                                       transform screen_to_machine) {
    std::size_t const n = image_points.size();
    if (n == 0 || stage_points.size() != n || artefact_ids.size() != n) return {};
    // In 64 bits, and before anything is allocated: an id may be any number.
    std::uint64_t const artefacts =
        std::uint64_t{*std::max_element(artefact_ids.begin(), artefact_ids.end())} + 1;
    std::uint64_t const unknowns = 2 * artefacts + 3;
    if (2 * std::uint64_t{n} <= unknowns) return {};

    point const origin(true, stage_points[0].x(), stage_points[0].y(), z_reference);
    std::vector<observation> observations;
    observations.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        observations.push_back(
            observed(image_points[i] * screen * screen_to_machine, stage_points[i] - origin));
    }
    if (!take_out_places(observations, artefact_ids, static_cast<std::size_t>(artefacts))) return {};
    return solved(observations, static_cast<double>(n) - static_cast<double>(unknowns) / 2.0);
}

}  // namespace tvmath
