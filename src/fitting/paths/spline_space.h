#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "cubic_spline.h"
#include "geometry/xyz.h"

inline namespace tvmath {

/// A spline in the making: its breaks, and the span of a parameter.
class spline_space {
public:
    spline_space(std::vector<double> breaks, bool closed) : breaks_(std::move(breaks)), is_closed_(closed) {
        double const turn = closed ? breaks_.back() - breaks_.front() : 0;
        std::size_t const n = spans();
        for (std::size_t i = 3; i > 0; --i)
            knots_.push_back(closed ? breaks_[n - i] - turn : breaks_.front());
        knots_.insert(knots_.end(), breaks_.begin(), breaks_.end());
        for (std::size_t i = 1; i <= 3; ++i) knots_.push_back(closed ? breaks_[i] + turn : breaks_.back());
    }

    std::size_t spans() const { return breaks_.size() - 1; }
    bool is_closed() const { return is_closed_; }
    std::vector<double> const& knots() const { return knots_; }
    double begin() const { return breaks_.front(); }
    double end() const { return breaks_.back(); }
    double width(std::size_t span) const { return breaks_[span + 1] - breaks_[span]; }
    double start(std::size_t span) const { return breaks_[span]; }
    /// Control points that differ; a closed spline repeats the first three.
    std::size_t freedoms() const { return is_closed_ ? spans() : spans() + 3; }
    /// The freedom behind control point `r` of a span.
    std::size_t freedom(std::size_t span, std::size_t r) const {
        std::size_t const i = span + r;
        return is_closed_ && i >= spans() ? i - spans() : i;
    }
    std::size_t span_of(double t) const {
        auto const after = std::upper_bound(breaks_.begin() + 1, breaks_.end() - 1, t);
        return static_cast<std::size_t>(after - breaks_.begin()) - 1;
    }
    double into_range(double t) const {
        if (!is_closed_) return std::clamp(t, begin(), end());
        double const turn = end() - begin();
        return t - turn * std::floor((t - begin()) / turn);
    }

    /// The four basis functions that are not 0 on the span, by the recursion of Cox and de Boor.
    std::array<double, 4> basis(std::size_t span, double t) const {
        double const* const k = knots_.data() + span + 3;
        std::array<double, 4> b = {1, 0, 0, 0};
        for (int degree = 1; degree <= 3; ++degree) {
            double carried = 0;
            for (int r = 0; r < degree; ++r) {
                auto const i = static_cast<std::size_t>(r);
                double const right = k[r + 1], left = k[r + 1 - degree], part = b[i] / (right - left);
                b[i] = carried + (right - t) * part;
                carried = (t - left) * part;
            }
            b[static_cast<std::size_t>(degree)] = carried;
        }
        return b;
    }

    cubic_bspline with(std::vector<xyz> controls) const {
        if (is_closed_) {
            for (std::size_t i = 0; i < 3; ++i) controls.push_back(xyz(controls[i]));
        }
        return {knots_, std::move(controls)};
    }

private:
    std::vector<double> breaks_, knots_;
    bool is_closed_;
};

/// A spline by the powers of each span's own parameter, 0 to 1.
class span_powers {
public:
    span_powers(spline_space const& space, std::vector<xyz> const& controls) : space_(space) {
        std::vector<xyz> const b = to_bezier(space.with(controls));
        for (std::size_t i = 0; i + 3 < b.size(); i += 3) {
            xyz const d0 = b[i + 1] - b[i], d1 = b[i + 2] - b[i + 1], d2 = b[i + 3] - b[i + 2];
            powers_.push_back({b[i], 3 * d0, 3 * (d1 - d0), (d2 - d1) - (d1 - d0)});
        }
    }

    /// Offset from `p`, and derivatives with respect to the spline's parameter.
    struct place {
        xyz offset, first, second;
    };
    place at(double t, xyz const& p) const {
        std::size_t const span = space_.span_of(t);
        double const h = space_.width(span), s = (t - space_.start(span)) / h;
        std::array<xyz, 4> const& c = powers_[span];
        return {(c[0] - p) + s * (c[1] + s * (c[2] + s * c[3])),
                (1 / h) * (c[1] + s * (2 * c[2] + 3 * s * c[3])), (1 / (h * h)) * (2 * c[2] + 6 * s * c[3])};
    }

    /// Moves `t` to the foot of the perpendicular from `p` by Newton's iteration, halving steps that lead
    /// away, so that the distance never grows.
    place foot(double& t, xyz const& p) const {
        place here = at(t, p);
        double const small = 0x1p-40 * (space_.end() - space_.begin());
        for (int round = 0; round < 6; ++round) {
            double const slope = dot(here.offset, here.first), speed2 = dot(here.first, here.first);
            double const bend = speed2 + dot(here.offset, here.second);
            double step = -slope / (bend > 0.25 * speed2 ? bend : speed2);
            if (!(std::fabs(step) > 0)) break;
            bool moved = false;
            for (int halving = 0; halving < 4 && !moved; ++halving, step /= 2) {
                double const next = space_.into_range(t + step);
                place const there = at(next, p);
                moved = next != t && dot(there.offset, there.offset) < dot(here.offset, here.offset);
                if (!moved) continue;
                t = next;
                here = there;
            }
            if (!moved || std::fabs(step) < small) break;
        }
        return here;
    }

private:
    spline_space const& space_;
    std::vector<std::array<xyz, 4>> powers_;
};

}  // namespace tvmath
