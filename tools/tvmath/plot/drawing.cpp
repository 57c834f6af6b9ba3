#include "drawing.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "report/number_text.h"

inline namespace tvmath {

char const* role_name(stroke_role role) {
    static char const* const names[] = {"outline",     "bezier", "parallel", "bounds",
                                        "wide bounds", "axis",   "control",  "mark"};
    return names[static_cast<int>(role)];
}

CRealRect extent_of(drawing const& d) {
    curve ends(2);
    point* const low_high = ends.lazycopy_begin();
    for (stroke const& s : d.strokes) {
        for (point const& p : s.path) {
            if (p.is_trivial() || !std::isfinite(p.x()) || !std::isfinite(p.y())) continue;
            point const at(true, p.x(), p.y());
            if (low_high[0].is_trivial()) low_high[0] = low_high[1] = at;
            low_high[0] = point(true, std::min(low_high[0].x(), at.x()), std::min(low_high[0].y(), at.y()));
            low_high[1] = point(true, std::max(low_high[1].x(), at.x()), std::max(low_high[1].y(), at.y()));
        }
    }
    return ends.get_bounding_rect();
}

std::string csv_text(drawing const& d) {
    std::string text = "stroke,role,closed,x,y,z\n";
    int number = 0;
    for (stroke const& s : d.strokes) {
        ++number;
        for (point const& p : s.path) {
            if (p.is_trivial() || !std::isfinite(p.x()) || !std::isfinite(p.y())) continue;
            text += std::to_string(number) + ',' + role_name(s.role) + (s.closed ? ",1," : ",0,") +
                    number_text(p.x()) + ',' + number_text(p.y()) + ',';
            if (p.is_3d() && std::isfinite(p.z())) text += number_text(p.z());
            text += '\n';
        }
    }
    return text;
}

}  // namespace tvmath
