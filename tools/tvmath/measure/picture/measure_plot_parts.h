#pragma once

#include <string>
#include <vector>

#include "measure/picture/measure_drawing.h"
#include "plot/canvas.h"

inline namespace tvmath {

// Colours that differ for colour-blind eyes too: the green is the bluer and the brighter one.
constexpr color good_ink = {0.00, 0.58, 0.32}, bad_ink = {0.84, 0.12, 0.10};
constexpr color whisker_ink = {0.10, 0.30, 0.80}, dropped_ink = {0.95, 0.45, 0.00},
                axis_ink = {0.45, 0.10, 0.60};

inline color ink_of(bool is_good) {
    return is_good ? good_ink : bad_ink;
}

/// The image on the page.
struct image_place {
    spot corner;
    double scale = 1;  ///< points of the page for a pixel
    double width = 0, height = 0;

    spot at(spot p) const { return corner + scale * p; }
};

/// The image, paler, with the features, their names and the axes.
void draw_measure_scene(canvas& c, image const& scene, measure_frame const& frame,
                        measure_report const& report, measure_drawing const& drawing,
                        image_place const& place);
/// Whether there are so few edge points that they are drawn.
bool shows_edges(measure_drawing const& drawing);

/// A name on the picture, in a box.
struct name_tag {
    std::string words;
    color ink;
    bool is_filled = false;
    std::vector<outline> outlines;  ///< of what it names, on the page
    std::vector<spot> marks;        ///< where it stands when there is no outline
};

/// Puts names beside what they name, inside the image and clear of each other, where possible clear of the
/// obstacles too. One for which there is no room is left out.
class tag_placer {
public:
    tag_placer(canvas& c, image_place const& place) : c_(c), place_(place) {}

    /// Better not covered.
    void avoid(spot at) { avoided_.push_back(at); }
    /// Never covered.
    void block(spot middle, double width, double height);
    /// With `only_beside` it is also left out where it would stand apart or cover much.
    void put(name_tag const& tag, bool only_beside);

private:
    struct box {
        double left, top, right, bottom;
    };
    struct candidate {
        box at;
        spot from;  ///< of a line to the box, when that is far
        double cost;
    };
    void consider(spot middle, spot from, double cost);
    bool is_free(box const& b) const;
    void draw(name_tag const& tag) const;

    canvas& c_;
    image_place const& place_;
    std::vector<spot> avoided_;
    std::vector<box> taken_;
    double width_ = 0, height_ = 0;  // of the present box
    candidate best_ = {};
};

/// How one figure of a feature stands.
struct sheet_row {
    std::string name;  ///< empty below the first row of a feature
    std::string what, measured, place, nominal, deviation, tolerance, form, verdict;
    std::string reason;                ///< why there is no feature, in place of all numbers
    color ink = {}, verdict_ink = {};  ///< of the deviation and of the verdict
    bool is_form_bad = false;
    bool has_gauge = false;
    double value = 0, lower = 0, upper = 0;  ///< of the gauge
};

/// What is said of the features beside the picture.
struct measure_sheet {
    std::vector<sheet_row> rows;
    std::string rest;     ///< what is said of those without a row
    std::string summary;  ///< "15 of 16 pass"
    std::string failing;  ///< "hole C fails"; empty where all is well
    bool is_good = true;  ///< All features were found and keep their limits.
    bool has_limits = false;

    /// Short rows stand in two blocks beside each other.
    bool is_divided() const;
};

/// Rows for the features, as many as there is room for; those that fail come first when that is not enough.
measure_sheet make_measure_sheet(measure_report const& report, double pixel_length);

double height_of(measure_sheet const& sheet);
void draw_measure_sheet(canvas& c, measure_sheet const& sheet, std::string const& unit, spot corner,
                        double width);

/// What stands where, on a page as wide as that of a fit.
struct measure_page {
    image_place place;
    measure_sheet sheet;
    double height = 0;
};

measure_page make_measure_page(measure_frame const& frame, measure_report const& report);
void draw_measure_page(canvas& c, image const& scene, measure_frame const& frame,
                       measure_report const& report, measure_page const& page);

}  // namespace tvmath
