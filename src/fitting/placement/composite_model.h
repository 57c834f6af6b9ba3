#pragma once

#include <vector>

#include "geometry/xyz.h"
#include "tvmath/ctl_ref.h"
#include "tvmath/geometry_description.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// Where the measured points lie in the frame of the nominal features: p goes to (p - pivot) turned + center.
struct composite_pose {
    transform turn;
    xyz center;
};

/// Least squares around one pose. The unknowns are the motion of the centre and the rotation about it, the
/// latter times the size of the data, so that all are lengths: 2 and 1 in the plane, 3 and 3 in space.
struct normal_equations {
    double normal[6][6] = {};
    double gradient[6] = {};
};

/// Nominal features and their measured points.
struct composite_model {
    struct part {
        Geometry_Description const* feature;
        std::vector<point> points;  // locations
        double shift;               // for derivatives, small beside the part
    };
    std::vector<part> parts;
    xyz pivot;        // centroid of all points
    double size = 1;  // root mean square of their distances from it
    bool solid = false;
    bool is_valid = false;

    composite_model(std::vector<ctl::ref<Geometry_Description>> const& features,
                    std::vector<std::vector<point>> const& points);

    unsigned int unknowns() const { return solid ? 6 : 3; }
    composite_pose nominal_pose() const;
    transform to_nominal(composite_pose const& pose) const;
    composite_pose moved(composite_pose const& pose, double const (&step)[6]) const;
    double sum_of_squares(composite_pose const& pose) const;
    normal_equations linearize(composite_pose const& pose) const;

private:
    std::vector<xyz> slopes_of(part const& each, std::vector<point> const& places,
                               std::vector<double>& rows) const;
};

}  // namespace tvmath
