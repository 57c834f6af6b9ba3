#include "measure/edges/unroll.h"

#include <cmath>

inline namespace tvmath {
namespace {

// Reads an image between its pixels.
class bilinear_reader {
public:
    explicit bilinear_reader(image const& scene)
        : rows_(scene.begin()), cols_(matrix::cols(scene) - 1.0), height_(matrix::rows(scene) - 1.0) {}

    // False where not all four pixels about the place are in the image.
    bool read(double x, double y, double& grey) const {
        x -= 0.5;
        y -= 0.5;
        if (!(x >= 0 && y >= 0 && x < cols_ && y < height_)) return false;
        auto const col = static_cast<unsigned int>(x), row = static_cast<unsigned int>(y);
        double const u = x - col, v = y - row;
        double const* const upper = rows_[row].begin() + col;
        double const* const lower = rows_[row + 1].begin() + col;
        grey = (1 - v) * (upper[0] + u * (upper[1] - upper[0])) + v * (lower[0] + u * (lower[1] - lower[0]));
        return true;
    }

private:
    vector const* rows_;
    double cols_, height_;
};

}  // namespace

image unroll(image const& scene, bent_window const& w) {
    double const inmost = std::fabs(w.radius) - w.rows / 2.0 - std::fabs(w.slope) * w.cols / 2.0;
    if (scene.is_trivial() || !(inmost > 0)) return image();
    bilinear_reader const reader(scene);
    image result(w.rows, w.cols);
    std::vector<double*> rows;
    for (unsigned int j = 0; j < w.rows; ++j) rows.push_back(result(j).lazycopy_begin());
    point const along(false, w.normal.y(), -w.normal.x());
    for (unsigned int i = 0; i < w.cols; ++i) {
        double const t = i + 0.5 - w.cols / 2.0;
        double const k = std::cos(t / w.radius), s = std::sin(t / w.radius);
        double const ux = k * w.normal.x() + s * along.x(), uy = k * w.normal.y() + s * along.y();
        double r = w.radius + w.slope * t + 0.5 - w.rows / 2.0;
        for (unsigned int j = 0; j < w.rows; ++j, r += 1) {
            if (!reader.read(w.center.x() + r * ux, w.center.y() + r * uy, rows[j][i])) return image();
        }
    }
    return result;
}

}  // namespace tvmath
