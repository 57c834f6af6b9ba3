#include "calibrate/calibrate_fits.h"

#include <algorithm>
#include <cmath>

#include "tvmath/array.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr std::size_t terms_of(unsigned int order) {
    return std::size_t{order + 1} * (order + 2) / 2;
}

idioms::array<point> array_of(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

spot in_plane(point const& p) {
    return {p.x(), p.y()};
}

std::size_t count_outside(calibrate_setup const& setup) {
    double const x = 0.5 * setup.width, y = 0.5 * setup.height;
    return static_cast<std::size_t>(
        std::count_if(setup.measured.begin(), setup.measured.end(),
                      [&](point const& p) { return std::fabs(p.x()) > x || std::fabs(p.y()) > y; }));
}

// Tells what the search sees: the standard error at each order.
class tried_corrector : public screen_corrector {
public:
    explicit tried_corrector(calibrate_setup const& setup) {
        x_scale = 2.0 / setup.width;
        y_scale = 2.0 / setup.height;
    }
    tried_order at(unsigned int tried, idioms::array<point> const& measured,
                   idioms::array<point> const& nominal) {
        fit(static_cast<int>(tried), measured, nominal);
        return {tried, residual};
    }
};

// The true places on the screen: through the transform backward when they are given on the machine.
std::vector<point> places_on_screen(calibrate_setup const& setup) {
    std::vector<point> nominal = setup.nominal;
    transform to_machine = setup.to_machine.value_or(transform());
    to_machine.project2d();
    for (point& p : nominal) {
        p.project2d();
        p /= to_machine;
    }
    return nominal;
}

}  // namespace

std::string calibrate_screen(calibrate_result& result) {
    calibrate_setup const& setup = result.setup;
    auto const measured = array_of(setup.measured), nominal = array_of(places_on_screen(setup));
    tried_corrector trial(setup);
    for (unsigned int k = 1; k <= setup.max_order && terms_of(k) < setup.measured.size(); ++k)
        result.orders.push_back(trial.at(k, measured, nominal));
    screen_corrector const found(setup.width, setup.height, measured, nominal, setup.max_order);
    if (found.is_trivial()) {
        bool const is_linear = std::isfinite(result.orders.front().residual);
        return is_linear ? "order 1 fits best, which is no distortion but the way the camera is set up; "
                           "tvmath fit transform finds it"
                         : "the points determine no order: they lie on one line, or are too large to "
                           "calculate with";
    }
    result.corrector = found;
    result.unknowns = terms_of(found.order);
    result.outside = count_outside(setup);
    for (unsigned int i = 0; i < measured.capacity(); ++i) {
        point const &seen = measured[i], &truth = nominal[i];
        result.observations.push_back(
            {in_plane(seen), in_plane(truth - seen), in_plane(truth - seen * found)});
    }
    return {};
}

std::string calibrate_flatness(calibrate_result& result) {
    calibrate_setup& setup = result.setup;
    if (!setup.z) {
        double sum = 0;
        for (point const& p : setup.measured) sum += p.z() / static_cast<double>(setup.measured.size());
        setup.z = sum;
    }
    auto const found = flatness_corrector::fit(setup.width, setup.height, setup.measured, *setup.z,
                                               *setup.to_machine, setup.screen, setup.max_order);
    if (found.is_trivial()) {
        return "the points determine no order: they lie on a line, a circle or another conic section, or are "
               "too large to calculate with";
    }
    result.corrector = found;
    result.unknowns = terms_of(found.order);
    result.outside = count_outside(setup);
    for (point const& p : setup.measured) {
        double const e = *setup.z - p.z();
        result.observations.push_back({in_plane(p), {0, e}, {0, e - found.get_focus_correction(p)}});
    }
    return {};
}

namespace {

// The numbers of the artefacts, which stand in the third column; all one without it.
std::string read_artefacts(std::vector<point> const& image, std::vector<unsigned int>& ids) {
    std::vector<bool> is_seen;
    for (std::size_t i = 0; i < image.size(); ++i) {
        double const id = image[i].is_3d() ? image[i].z() : 0;
        if (!(id >= 0) || id != std::floor(id)) {
            return "the number of the artefact, in the third column of point " + std::to_string(i + 1) +
                   ", is no whole number from 0 on";
        }
        // A greater number leaves one below it that is not seen.
        if (id >= static_cast<double>(image.size())) {
            return "artefact " + std::to_string(static_cast<long long>(std::min(id, 1e18))) +
                   ": artefacts are counted from 0 without a gap";
        }
        ids.push_back(static_cast<unsigned int>(id));
        is_seen.resize(std::max(is_seen.size(), std::size_t{ids.back()} + 1));
        is_seen[ids.back()] = true;
    }
    auto const missing = std::find(is_seen.begin(), is_seen.end(), false);
    if (missing == is_seen.end()) return {};
    return "artefact " + std::to_string(missing - is_seen.begin()) +
           " is not observed: artefacts are counted from 0 without a gap";
}

// The means of what is seen of each artefact are its place, with or without the correction: in both cases
// that is least squares over the places alone.
void take_off_means(std::vector<observation>& all, std::vector<unsigned int> const& ids, std::size_t groups,
                    spot observation::*error) {
    std::vector<spot> mean(groups);
    std::vector<double> count(groups);
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::size_t const g = ids[i];
        count[g] += 1;
        mean[g] = mean[g] + (1 / count[g]) * (all[i].*error - mean[g]);
    }
    for (std::size_t i = 0; i < all.size(); ++i) all[i].*error = all[i].*error - mean[ids[i]];
}

std::string why_none(std::vector<point> const& stage, double reference, std::size_t artefacts) {
    std::size_t const unknowns = 2 * artefacts + 3;
    if (2 * stage.size() <= unknowns) {
        return std::to_string(stage.size()) + " observations are too few for " + std::to_string(artefacts) +
               (artefacts == 1 ? " artefact" : " artefacts");
    }
    bool const is_level =
        std::all_of(stage.begin(), stage.end(), [&](point const& p) { return p.z() == stage.front().z(); });
    if (is_level) return "all observations are at one height; the error shows between heights only";
    bool const is_finite = std::all_of(stage.begin(), stage.end(), [&](point const& p) {
        return std::fabs(p.x()) < 1e100 && std::fabs(p.y()) < 1e100 && std::fabs(p.z() - reference) < 1e100;
    });
    return is_finite ? "the observations do not tell magnification and tilt apart: an artefact must be seen "
                       "at several places of the screen and several heights"
                     : "the coordinates are too large to calculate with";
}

}  // namespace

std::string calibrate_telecentricity(calibrate_result& result) {
    calibrate_setup const& setup = result.setup;
    std::vector<unsigned int> ids;
    std::string why = read_artefacts(setup.measured, ids);
    if (!why.empty()) return why;
    result.artefacts = std::size_t{*std::max_element(ids.begin(), ids.end())} + 1;
    std::vector<point> image = setup.measured;
    for (point& p : image) p.project2d();
    auto const found =
        telecentricity_corrector::fit(image, setup.nominal, ids, *setup.z, setup.screen, *setup.to_machine);
    if (found.is_trivial()) return why_none(setup.nominal, *setup.z, result.artefacts);
    result.corrector = found;
    result.unknowns = 2 * result.artefacts + 3;
    point const first = setup.nominal.front(), origin(true, first.x(), first.y(), *setup.z);
    for (std::size_t i = 0; i < image.size(); ++i) {
        spot const c = in_plane((image[i] * setup.screen) * *setup.to_machine);
        point const d = setup.nominal[i] - origin;
        spot const seen = c + in_plane(d);
        result.observations.push_back({c, seen, seen - displacement(result.corrector, c, d.z())});
        result.height = std::max(result.height, std::fabs(d.z()));
    }
    take_off_means(result.observations, ids, result.artefacts, &observation::before);
    take_off_means(result.observations, ids, result.artefacts, &observation::after);
    return {};
}

}  // namespace tvmath
