#include "nearest_spans.h"

#include <algorithm>
#include <limits>

#include "geometry/bernstein.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

double squared_distance(xyz const& a, xyz const& b) {
    xyz const d = a - b;
    return dot(d, d);
}

// Calls `consider` with the parameters at which the distance from p may be least (`sign` 1) or greatest (-1).
// Half of the derivative of the squared distance is D D' with D = C - p: as a product of the Bernstein forms
// of D, of degree 3, and of D', of degree 2, it has the coefficients
//
//     3 / C(5, k) * sum over i + j = k of C(3, i) C(2, j) d_i (c_(j+1) - c_j),       d_i = c_i - p.
template <class visitor>
void for_each_candidate(cubic_span const& s, xyz const& p, double sign, visitor const& consider) {
    constexpr double of_3[] = {1, 3, 3, 1}, of_2[] = {1, 2, 1}, of_5[] = {1, 5, 10, 10, 5, 1};
    double slope[6] = {}, far = 0, fast = 0;
    for (unsigned int i = 0; i < 4; ++i) {
        xyz const d = s.control[i] - p;
        far = std::max(far, dot(d, d));
        for (unsigned int j = 0; j < 3; ++j) {
            slope[i + j] += of_3[i] * of_2[j] * dot(d, s.control[j + 1] - s.control[j]);
        }
    }
    for (unsigned int j = 0; j < 3; ++j) {
        xyz const step = s.control[j + 1] - s.control[j];
        fast = std::max(fast, dot(step, step));
    }
    consider(0.0);
    bool rises = false, falls = false;
    for (unsigned int k = 0; k < 6; ++k) {
        slope[k] *= sign / of_5[k];
        rises = rises || slope[k] > 0;
        falls = falls || slope[k] < 0;
    }
    if (rises && falls) {
        double const noise = 16 * std::numeric_limits<double>::epsilon() * std::sqrt(far) * std::sqrt(fast);
        for (double const t : rising_zeros(std::vector<double>(slope, slope + 6), noise)) consider(t);
    }
    consider(1.0);
}

struct bounded_span {
    double bound;
    std::size_t index;
    // A heap gives its greatest element: the least bound, and of equals the first span.
    bool operator<(bounded_span const& other) const {
        return bound > other.bound || (bound == other.bound && index > other.index);
    }
};

double gap(double at, double low, double high) {
    return std::max({0.0, low - at, at - high});
}

}  // namespace

xyz cubic_span::at(double t) const {
    if (t <= 0) return control[0];
    if (t >= 1) return control[3];
    double const u = 1 - t;
    xyz const one = control[1] - control[0], two = control[2] - control[0], three = control[3] - control[0];
    return control[0] + t * (3 * u * (u * one + t * two) + t * t * three);
}

span_list::span_list(curve const& c) {
    if (c.capacity() % 3 != 1) return;
    point const* const first = c.begin();
    for (unsigned int i = 0; i < c.capacity(); ++i) is_3d_ = is_3d_ || first[i].is_3d();
    spans_.reserve(c.capacity() / 3);
    boxes_.reserve(c.capacity() / 3);
    for (point const* p = first; p + 3 < c.end(); p += 3) {
        cubic_span s;
        bool is_whole = true;
        box b = {xyz(*p), xyz(*p)};
        for (unsigned int k = 0; k < 4; ++k) {
            xyz const q(p[k]);
            is_whole = is_whole && !p[k].is_trivial() && q.is_finite();
            s.control[k] = q;
            b.low = {std::min(b.low.x, q.x), std::min(b.low.y, q.y), std::min(b.low.z, q.z)};
            b.high = {std::max(b.high.x, q.x), std::max(b.high.y, q.y), std::max(b.high.z, q.z)};
        }
        if (!is_whole) continue;
        spans_.push_back(s);
        boxes_.push_back(b);
    }
}

span_list::place span_list::nearest(xyz const& p, double limit) const {
    // No point of a span is nearer than the box around its control points.
    std::vector<bounded_span> heap;
    heap.reserve(spans_.size());
    for (std::size_t i = 0; i < spans_.size(); ++i) {
        auto const& [low, high] = boxes_[i];
        xyz const d(gap(p.x, low.x, high.x), gap(p.y, low.y, high.y), gap(p.z, low.z, high.z));
        if (double const bound = dot(d, d); bound < limit) heap.push_back({bound, i});
    }
    std::make_heap(heap.begin(), heap.end());
    place best = {false, xyz(), limit};
    while (!heap.empty() && heap.front().bound < best.squared_distance) {
        cubic_span const& s = spans_[heap.front().index];
        for_each_candidate(s, p, 1, [&](double t) {
            xyz const q = s.at(t);
            double const distance = squared_distance(q, p);
            if (distance < best.squared_distance) best = {true, q, distance};
        });
        std::pop_heap(heap.begin(), heap.end());
        heap.pop_back();
    }
    return best;
}

span_list::place span_list::farthest(xyz const& p, double limit) const {
    // A distance is a convex function: no point of a span is farther than its farthest control point.
    std::vector<bounded_span> heap;
    heap.reserve(spans_.size());
    for (std::size_t i = 0; i < spans_.size(); ++i) {
        double bound = 0;
        for (xyz const& q : spans_[i].control) bound = std::max(bound, squared_distance(q, p));
        if (bound > limit) heap.push_back({-bound, i});
    }
    std::make_heap(heap.begin(), heap.end());
    place best = {false, xyz(), limit};
    while (!heap.empty() && -heap.front().bound > best.squared_distance) {
        cubic_span const& s = spans_[heap.front().index];
        for_each_candidate(s, p, -1, [&](double t) {
            xyz const q = s.at(t);
            double const distance = squared_distance(q, p);
            if (distance > best.squared_distance) best = {true, q, distance};
        });
        std::pop_heap(heap.begin(), heap.end());
        heap.pop_back();
    }
    return best;
}

}  // namespace tvmath
