#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "calibrate/calibrate_setup.h"
#include "calibrate/corrector_file.h"
#include "plot/canvas.h"

inline namespace tvmath {

/// What was wrong at one observation, and what is left of it under the corrector. A height stands in y.
struct observation {
    spot at;  ///< on the screen, in pixels; of telecentricity in the machine's units
    spot before, after;
};

/// Size of the errors of all observations.
struct spread {
    double rms = 0, largest = 0;
    std::size_t index = 0;  ///< of the largest, from 0
};

/// The standard error of the screen's field at an order that was tried; infinite where the points do not
/// determine it.
struct tried_order {
    unsigned int order;
    double residual;
};

struct calibrate_result {
    calibrate_setup setup;  ///< its nominal height is set
    any_corrector corrector;
    std::vector<observation> observations;
    std::vector<tried_order> orders;  ///< of the screen
    std::size_t unknowns = 0;         ///< of the screen for each coordinate
    std::size_t artefacts = 0;        ///< of telecentricity
    std::size_t outside = 0;          ///< points that lie outside the screen
    double height = 0;                ///< of telecentricity the farthest from the reference

    corrector_kind kind() const { return kind_of(corrector); }
    double residual() const {
        return std::visit([](auto const& c) { return c.residual; }, corrector);
    }
    /// Standard uncertainty of a correction, in the quadratic mean over the points: least squares hand on the
    /// n-th part of the variance, n being the points for each unknown. Of screen and flatness.
    double uncertainty() const;
    spread before() const;
    spread after() const;
};

/// Fits the corrector. `no_answer`, with the reason in one line, when there is none but the trivial one.
exit_status calibrate(calibrate_setup const& setup, calibrate_result& result, std::string& reason);

/// By what the corrector moves that place, a height in y. `height` counts for telecentricity alone.
spot displacement(any_corrector const& corrector, spot at, double height);

}  // namespace tvmath
