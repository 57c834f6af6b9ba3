#include <algorithm>
#include <cmath>
#include <limits>

#include "nurb_span.h"

inline namespace tvmath {

using namespace nurb_detail;

namespace {

TQ3RationalPoint4D blend(TQ3RationalPoint4D const& a, TQ3RationalPoint4D const& b, double s) {
    // std::lerp is exact at both ends and for a == b, so equal weights stay equal.
    return {std::lerp(a.x, b.x, s), std::lerp(a.y, b.y, s), std::lerp(a.z, b.z, s), std::lerp(a.w, b.w, s)};
}

bool has_range(TQ3NURBCurveData const& d) {
    return d.order > 0 && d.point_count >= d.order &&
           d.knot_values[d.order - 1] < d.knot_values[d.point_count];
}

std::size_t knot_count(TQ3NURBCurveData const& d) {
    return std::size_t{d.order} + d.point_count;
}

std::size_t multiplicity(TQ3NURBCurveData const& d, double t) {
    std::size_t const up_to = knots_up_to(d.knot_values, knot_count(d), t);
    return up_to - std::min(up_to, knots_below(d.knot_values, knot_count(d), t));
}

// Brings the values into order and leaves out what the curve cannot take; returns the number of the rest.
unsigned int keep_insertable(TQ3NURBCurveData const& d, double* values, unsigned int n) {
    double const first = d.knot_values[d.order - 1], last = d.knot_values[d.point_count];
    double* const end =
        std::remove_if(values, values + n, [=](double t) { return !(t >= first && t <= last); });
    std::sort(values, end);
    double* kept = values;
    std::size_t occurrences = 0;
    for (double const* t = values; t != end; ++t) {
        if (kept == values || *t != kept[-1]) occurrences = multiplicity(d, *t);
        if (occurrences >= d.order) continue;
        ++occurrences;
        *kept++ = *t;
    }
    return static_cast<unsigned int>(kept - values);
}

// Boehm's insertion of ascending knots in one pass. `to` is written up to point and knot `end`; the rest of
// the curve is still in `from`. A new knot t at position end + 1 changes the `degree` points up to `end`:
//     Q[i] = (1 - a) P[i - 1] + a P[i],     a = (t - k[i]) / (k[i + degree] - k[i]),
// and moves those behind them up by one. Of equal knots the later ones give a = 0.
class knot_inserter {
public:
    knot_inserter(TQ3NURBCurveData const& from, TQ3NURBCurveData& to) : from_(from), to_(to) {
        for (next_ = 0; next_ < from.order; ++next_) copy();
    }

    void insert(double t) {
        // Past the last span there are no points that could still come.
        while (next_ < from_.point_count && from_.knot_values[next_] < t) advance();
        std::size_t const degree = from_.order - 1u, end = next_ + inserted_ - 1;
        TQ3RationalPoint4D* const p = to_.control_points;
        p[end + 1] = p[end];
        for (std::size_t i = end; i > end - degree; --i) {
            double const low = to_.knot_values[i], width = knot_ahead(i + degree, end) - low;
            p[i] = blend(p[i - 1], p[i], width > 0 ? (t - low) / width : 0);
        }
        to_.knot_values[end + 1] = t;
        ++inserted_;
    }

    void finish() {
        while (next_ < from_.point_count) advance();
        for (; next_ < knot_count(from_); ++next_)
            to_.knot_values[next_ + inserted_] = from_.knot_values[next_];
    }

private:
    void copy() {
        to_.control_points[next_ + inserted_] = from_.control_points[next_];
        to_.knot_values[next_ + inserted_] = from_.knot_values[next_];
    }
    void advance() {
        copy();
        ++next_;
    }
    double knot_ahead(std::size_t i, std::size_t end) const {
        return i <= end ? to_.knot_values[i] : from_.knot_values[i - inserted_];
    }

    TQ3NURBCurveData const& from_;
    TQ3NURBCurveData& to_;
    std::size_t next_ = 0;      // first point and knot of `from` that is not in `to`
    std::size_t inserted_ = 0;  // knots inserted so far
};

}  // namespace

void nurb::reverse() {
    if (is_trivial()) return;
    TQ3NURBCurveData& d = own_data();
    std::reverse(d.control_points, d.control_points + d.point_count);
    double *const first = d.knot_values, *const end = first + knot_count(d), last = end[-1];
    std::reverse(first, end);
    std::for_each(first, end, [last](double& k) { k = last - k; });
}

void nurb::insert_knots(double const* values, unsigned int n) {
    if (n == 0 || !has_range(data())) return;
    idioms::array<double> copy(n, values);
    double* const fresh = copy.lazycopy_begin();
    unsigned int const count = keep_insertable(data(), fresh, n);
    if (count == 0) return;
    // A number of points that does not fit 32 bits has no memory either, and raises as that does.
    std::uint64_t const points = std::uint64_t{control_points()} + count;
    std::uint64_t const most = std::numeric_limits<std::uint32_t>::max();
    nurb refined(order(), static_cast<std::uint32_t>(std::min(points, most)));
    knot_inserter inserter(data(), refined.own_data());
    for (unsigned int i = 0; i < count; ++i) inserter.insert(fresh[i]);
    inserter.finish();
    swap(*this, refined);
}

void nurb::clip_evaluation_range(double a, double b) {
    if (!has_range(data()) || !(a < b)) return;
    double const first = get_knot(degree()), last = get_knot(control_points());
    if (a >= last || first >= b) return;
    a = std::max(a, first);
    b = std::min(b, last);

    nurb refined = *this;
    for (double const end : {a, b}) {
        std::size_t const present = multiplicity(refined.data(), end);
        if (present >= degree()) continue;
        unsigned int const missing = degree() - static_cast<unsigned int>(present);
        refined.insert_knots(idioms::array<double>(missing, end).begin(), missing);
    }

    // The part from the last knot at a to the first knot at b, with the points that carry it.
    TQ3NURBCurveData const& whole = refined.data();
    std::size_t const begin = knots_up_to(whole.knot_values, knot_count(whole), a);
    std::size_t const end = knots_below(whole.knot_values, knot_count(whole), b);
    if (begin < whole.order || end < begin || end > whole.point_count) return;  // knots out of order
    nurb part(whole.order, static_cast<std::uint32_t>(end - begin + whole.order));
    TQ3NURBCurveData& d = part.own_data();
    std::copy_n(whole.control_points + (begin - whole.order), d.point_count, d.control_points);
    double* const inner = std::fill_n(d.knot_values, d.order, a);
    std::fill_n(std::copy(whole.knot_values + begin, whole.knot_values + end, inner), d.order, b);
    swap(*this, part);
}

}  // namespace tvmath
