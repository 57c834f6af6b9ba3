#pragma once

#include "tvmath/image.h"

inline namespace tvmath {

/// Where each row of an image stands, for loops that jump between rows: the handles are looked into once. Not
/// longer than the image is left alone.
class row_pointers {
public:
    explicit row_pointers(image const& m) : places_(rows(m)), row_(nullptr) {
        double const** const place = places_.lazycopy_begin();
        for (unsigned int y = 0; y < rows(m); ++y) place[y] = m[y].begin();
        row_ = place;
    }
    double const* operator[](int y) const { return row_[y]; }

private:
    idioms::array<double const*> places_;
    double const* const* row_;
};

/// The mean over the pixels from one to the other, both inside, as drawn by Bresenham's algorithm. row[y] is
/// the place of row y.
template <class places>
double mean_under_line(places const& row, pixel from, pixel to) {
    auto const magnitude = [](int i) { return i < 0 ? -i : i; };
    bool const along_x = magnitude(to.x - from.x) > magnitude(to.y - from.y);
    // From here on x runs along the line, whichever axis that is.
    if (!along_x) from = pixel(from.y, from.x), to = pixel(to.y, to.x);
    if (to.x < from.x) pixel::swap(from, to);
    int const d = to.x - from.x, e = magnitude(to.y - from.y), step = to.y < from.y ? -1 : 1;
    double sum = 0;
    int y = from.y, err = -d / 2;
    for (int x = from.x; x <= to.x; ++x) {
        sum += along_x ? row[y][x] : row[x][y];
        err += e;
        if (err > 0) {
            err -= d;
            y += step;
        }
    }
    return sum / (d + 1.0);
}

}  // namespace tvmath
