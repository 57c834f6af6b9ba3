#include "calibrate/calibrate_result.h"

#include <algorithm>
#include <cmath>

#include "calibrate/calibrate_fits.h"
#include "files/point_file.h"

inline namespace tvmath {
namespace {

spread spread_of(std::vector<observation> const& all, spot observation::*error) {
    spread s;
    double scale = 0, sum = 0;
    for (observation const& o : all)
        scale = std::max({scale, std::fabs((o.*error).x), std::fabs((o.*error).y)});
    if (!(scale > 0)) return s;
    for (std::size_t i = 0; i < all.size(); ++i) {
        double const x = (all[i].*error).x / scale, y = (all[i].*error).y / scale, size = std::hypot(x, y);
        sum += size * size;
        if (size * scale > s.largest) s = {0, size * scale, i};
    }
    s.rms = scale * std::sqrt(sum / static_cast<double>(all.size()));
    return s;
}

std::string names_of(calibrate_setup const& setup) {
    return shown_name(setup.measured_file) +
           (setup.nominal_file.empty() ? "" : ", " + shown_name(setup.nominal_file));
}

bool have_heights(std::vector<point> const& points) {
    return points.front().is_3d();
}

std::string check_lists(calibrate_setup const& setup) {
    std::size_t const n = setup.measured.size(), other = setup.nominal.size();
    if (setup.kind != corrector_kind::flatness && n != other)
        return std::to_string(n) + " points, but " + std::to_string(other) + " to go with them";
    if (setup.kind == corrector_kind::flatness && !have_heights(setup.measured))
        return "flatness needs the height of each point: x, y, z";
    if (setup.kind == corrector_kind::telecentricity && !have_heights(setup.nominal))
        return "telecentricity needs the heights of the stage: x, y, z";
    std::size_t const least = setup.kind == corrector_kind::telecentricity ? 3 : 7;
    if (n < least) {
        return "a " + std::string(corrector_name(setup.kind)) + " corrector needs at least " +
               std::to_string(least) + " points, not " + std::to_string(n);
    }
    return {};
}

}  // namespace

double calibrate_result::uncertainty() const {
    return residual() * std::sqrt(static_cast<double>(unknowns) / static_cast<double>(observations.size()));
}

spread calibrate_result::before() const {
    return spread_of(observations, &observation::before);
}

spread calibrate_result::after() const {
    return spread_of(observations, &observation::after);
}

exit_status calibrate(calibrate_setup const& setup, calibrate_result& result, std::string& reason) {
    std::string why = check_lists(setup);
    calibrate_result fresh;
    fresh.setup = setup;
    if (why.empty()) {
        switch (setup.kind) {
            case corrector_kind::screen:
                why = calibrate_screen(fresh);
                break;
            case corrector_kind::flatness:
                why = calibrate_flatness(fresh);
                break;
            case corrector_kind::telecentricity:
                why = calibrate_telecentricity(fresh);
                break;
        }
    }
    if (why.empty()) {
        double const figures[] = {fresh.residual(), fresh.before().rms, fresh.after().rms};
        if (!std::all_of(std::begin(figures), std::end(figures), [](double x) { return std::isfinite(x); }))
            why = "the coordinates are too large to calculate with";
    }
    if (why.empty()) {
        result = std::move(fresh);
        return exit_status::done;
    }
    reason = names_of(setup) + ": " + why;
    return exit_status::no_answer;
}

spot displacement(any_corrector const& corrector, spot at, double height) {
    if (auto const* const flatness = std::get_if<flatness_corrector>(&corrector))
        return {0, flatness->get_focus_correction(point(true, at.x, at.y))};
    point const p = std::holds_alternative<screen_corrector>(corrector) ? point(true, at.x, at.y)
                                                                        : point(true, at.x, at.y, height);
    point const moved =
        std::visit([&p](auto const& c) { return p * c; }, corrector) - p;  // location - location
    return {moved.x(), moved.y()};
}

}  // namespace tvmath
