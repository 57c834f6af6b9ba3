#pragma once

#include <string>
#include <vector>

#include "canvas.h"
#include "fit/fit_plot_parts.h"

inline namespace tvmath {

/// Puts labels beside points of a panel so that they stay inside and clear of each other.
class label_placer {
public:
    label_placer(canvas& c, plot_panel const& panel) : c_(c), panel_(panel) {}

    /// No label shall cover the place.
    void keep_clear(spot at, double radius);
    /// Writes the words beside `at`, rather in the direction `way` of the page.
    void place(spot at, spot way, std::string const& words, text_style style);

private:
    struct box {
        double left, top, right, bottom;
    };
    double overlap(box const& b) const;

    canvas& c_;
    plot_panel const& panel_;
    std::vector<box> taken_;
};

}  // namespace tvmath
