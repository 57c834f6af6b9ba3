#include "tvmath/ring.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The series at the direction (x, y) of length 1. Cosine and sine of k a come by turning those of (k - 1) a:
// the error grows in proportion to k and is the same at every angle, while Clenshaw's recurrence grows with
// k² near 0 and pi (W. M. Gentleman, An error analysis of Goertzel's (Watt's) method, Computer Journal 12
// (1969) 160-165), and a rounded product k a with the size of a.
double radius_towards(ring const& r, double x, double y) {
    double const* const c = r.begin();
    unsigned int const n = r.capacity();
    if (n == 0) return 0.0;
    double sum = c[0], cosine = x, sine = y;
    for (unsigned int i = 1; i < n; i += 2) {
        sum += c[i] * cosine;
        if (i + 1 < n) sum += c[i + 1] * sine;
        double const turned = cosine * x - sine * y;
        sine = sine * x + cosine * y;
        cosine = turned;
    }
    return sum;
}

double mean_square(ring const& r, unsigned int samples, double first) {
    double sum = 0;
    for (unsigned int i = 0; i < samples; ++i) {
        double const a = 2 * pi * (i + first) / samples;
        sum += sqr(radius_towards(r, cos(a), sin(a)));
    }
    return sum / samples;
}

}  // namespace

ring::ring(double r) : array(3) {
    lazycopy_begin()[0] = r;
}

point ring::center() const {
    return capacity() < 3 ? point() : point(true, (*this)[1], (*this)[2]);
}

double ring::radius() const {
    if (capacity() % 2 == 0) return 0.0;
    // The trapezoid rule over a full turn, by its mean: each pass adds the points between those it has. It is
    // exact for r², a polynomial of degree capacity() - 1 in cosine and sine, as soon as it has more samples
    // than there are coefficients. With fewer, high harmonics look constant (cos 4a at 2 and at 4 samples),
    // so that two equal means would prove nothing.
    unsigned int const limit = 4096;
    double mean = mean_square(*this, 2, 0);
    for (unsigned int samples = 4; samples <= limit; samples *= 2) {
        double const previous = mean;
        mean = (previous + mean_square(*this, samples / 2, 0.5)) / 2;
        if (samples > capacity() && std::fabs(mean - previous) <= 1e-12 * mean) break;
    }
    return sqrt(mean);
}

double ring::area() const {
    return pi * sqr(radius());
}

double ring::perimeter() const {
    return 2 * pi * radius();
}

double ring::distance(point const& p) const {
    if (p.is_trivial()) return 0.0;
    double const a = p.angle2d();
    return p.length2d() - radius_towards(*this, cos(a), sin(a));
}

point ring::render_point(double angle) const {
    double const x = cos(angle), y = sin(angle), r = radius_towards(*this, x, y);
    return point(true, r * x, r * y);
}

curve ring::render_ring(int n) const {
    curve outline(static_cast<unsigned int>(std::max(n, 0)));
    point* p = outline.lazycopy_begin();
    for (int i = 0; i < n; ++i) *p++ = render_point(2 * pi * i / n);
    return outline;
}

int ring::rendering_density(double tolerance) const {
    if (is_trivial()) return 0;
    double const relative = tolerance / (*this)[0];
    // Written so that a NaN counts as the finest tolerance.
    double const x = relative > 5e-6 ? std::min(relative, 0.3) : 5e-6;
    double const half_chord = acos(1 - x);
    int const chords = 4 * static_cast<int>(std::ceil(pi / 4 / half_chord));
    unsigned int const most = std::numeric_limits<int>::max() / 2;
    return std::max({8, chords, static_cast<int>(std::min(capacity(), most)) * 2});
}

}  // namespace tvmath
