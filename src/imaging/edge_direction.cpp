#include <algorithm>
#include <cmath>
#include <limits>

#include "imaging/row_pointers.h"
#include "tvmath/image.h"

inline namespace tvmath {
namespace {

// Sums over box gradients (x, y).
struct gradient_sums {
    double x = 0, y = 0, xx = 0, yy = 0, xy = 0;

    // Direction of the larger eigenvector of the scatter matrix.
    double angle() const {
        if (std::fabs(xy) <= 1e-10) {
            if (xx < yy) return y < 0 ? -pi / 2 : pi / 2;
            return x < 0 ? pi : 0.0;
        }
        // The eigenvalue l is half of xx + yy + root. l - xx, half of root - d, would cancel for gradients
        // near x; there it is taken as 2 xy² / (root + d).
        double const d = xx - yy, root = std::hypot(d, 2 * xy);
        return d > 0 ? std::atan(2 * xy / (root + d)) : std::atan((root - d) / (2 * xy));
    }
};

// The gradients over strips about (x, y), `radius` long to each side and 2 `half_width` + 1 wide, all of them
// inside the image.
void add_gradient(gradient_sums& sums, row_pointers const& row, int x, int y, int radius, int half_width) {
    double gx = 0, gy = 0;
    for (int k = 0; k <= radius; ++k) {
        for (int j = -half_width; j <= half_width; ++j) {
            gx += row[y + j][x + k] - row[y + j][x - k];
            gy += row[y + k][x + j] - row[y - k][x + j];
        }
    }
    sums.x += gx;
    sums.y += gy;
    sums.xx += gx * gx;
    sums.yy += gy * gy;
    sums.xy += gx * gy;
}

// The samples' grid lies in the circle about the middle whose strips stay inside the image, since a rectangle
// would favour the directions of its corners.
gradient_sums sum_gradients(image const& m, int radius, int half_width) {
    int const r = static_cast<int>(rows(m)), c = static_cast<int>(cols(m)), least = std::min(r, c);
    int const step = std::min(radius, std::max(1, (least - 2 * radius) / 4));
    int const center_x = (c - 1) / 2, center_y = (r - 1) / 2;
    int const reach = least / 2 - radius;
    row_pointers const row(m);
    gradient_sums sums;
    for (int y = radius; y < r; y += step) {
        double const h = y - center_y, squares = 1.0 * reach * reach - h * h;
        if (squares < 0) continue;
        double const s = std::sqrt(squares);
        int first = std::max(radius, static_cast<int>(std::ceil(center_x - s)));
        int const last = std::min(c - 1 - radius, static_cast<int>(std::floor(center_x + s)));
        first += (last - first + 1) % step / 2;  // centred on the row
        for (int x = first; x <= last; x += step) add_gradient(sums, row, x, y, radius, half_width);
    }
    return sums;
}

}  // namespace

double image::find_normal_angle(unsigned int radius, int half_width) const {
    std::size_t const size = 2 * std::size_t{radius};
    if (radius == 0 || size >= cols(*this) || size >= rows(*this) ||
        static_cast<unsigned int>(half_width) >= radius) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return sum_gradients(*this, static_cast<int>(radius), half_width).angle();
}

pixel image::find_peak(pixel start) const {
    int const r = static_cast<int>(rows(*this)), c = static_cast<int>(cols(*this));
    auto const is_inside = [=](pixel p) { return p.x >= 0 && p.x < c && p.y >= 0 && p.y < r; };
    auto const value = [row = begin()](pixel p) { return row[p.y][static_cast<unsigned int>(p.x)]; };
    if (!is_inside(start)) return start;
    for (pixel peak = start;; start = peak) {
        for (int dx = -1; dx <= 1; ++dx) {
            for (int dy = -1; dy <= 1; ++dy) {
                pixel const neighbour(start.x + dx, start.y + dy);
                if (is_inside(neighbour) && value(neighbour) > value(peak)) peak = neighbour;
            }
        }
        if (peak == start) return peak;
    }
}

}  // namespace tvmath
