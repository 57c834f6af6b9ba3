#include "measure/edges/robust_fit.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "tvmath/residuals.h"

inline namespace tvmath {
namespace {

constexpr int most_rounds = 20;
constexpr double share_of_start = 0.7;
constexpr std::size_t starts_along = 8;  // halves of the outline
constexpr double clearly_better = 0.5;
constexpr double normal_scale = 1.4826;  // the standard deviation over the median magnitude of normal errors

// The magnitude below which, or at which, `count` of the residuals lie.
double magnitude_of_rank(std::vector<double> const& residuals, std::size_t count) {
    std::vector<double> magnitudes;
    magnitudes.reserve(residuals.size());
    for (double const r : residuals) magnitudes.push_back(std::fabs(r));
    auto const at = magnitudes.begin() +
                    static_cast<std::ptrdiff_t>(std::clamp<std::size_t>(count, 1, magnitudes.size()) - 1);
    std::nth_element(magnitudes.begin(), at, magnitudes.end());
    return *at;
}

class robust_fit {
public:
    robust_fit(fit_kind const& kind, std::vector<point> const& points)
        : kept(points.size(), true), kind_(kind), points_(points) {}

    std::vector<bool> kept;
    fitted_feature fitted;
    std::vector<double> residuals;  // of all points

    // The fit drawn to that many of the points, from those that are kept on.
    bool concentrate(std::size_t count) {
        if (!fit()) return false;
        keep_within([count](std::vector<double> const& r) { return magnitude_of_rank(r, count); });
        return true;
    }

    double median() const { return magnitude_of_rank(residuals, (residuals.size() + 1) / 2); }

    // Fits to the points that are kept. False, with the last fit as it was, when that is not possible.
    bool fit() {
        std::vector<point> chosen;
        for (std::size_t i = 0; i < points_.size(); ++i) {
            if (kept[i]) chosen.push_back(points_[i]);
        }
        fitted_feature fresh;
        if (chosen.size() < kind_.least_points || !kind_.fit({chosen, {}, {chosen.size()}}, fresh))
            return false;
        std::vector<double> errors;
        calculate_errors(*fresh.record, kind_.record, points_, errors);
        if (!std::all_of(errors.begin(), errors.end(), [](double e) { return std::isfinite(e); }))
            return false;
        fitted = std::move(fresh);
        residuals = std::move(errors);
        return true;
    }

    // Keeps the points up to a limit that follows from the residuals, until these stay the same or no fit is
    // possible.
    void keep_within(std::function<double(std::vector<double> const&)> const& limit_of) {
        for (int round = 0; round < most_rounds; ++round) {
            double const limit = limit_of(residuals);
            std::vector<bool> const before = kept;
            for (std::size_t i = 0; i < kept.size(); ++i) kept[i] = std::fabs(residuals[i]) <= limit;
            if (kept == before) return;
            if (!fit()) {
                kept = before;
                return;
            }
        }
    }

private:
    fit_kind const& kind_;
    std::vector<point> const& points_;
};

// The fit from one half of the outline that is clearly closer to half of the points, if there is one: what
// lies beside the outline in one piece may draw a fit to all points so far off that no point stands out.
void try_halves(fit_kind const& kind, std::vector<point> const& points, robust_fit& best) {
    std::size_t const count = points.size(), half = (count + 1) / 2;
    double limit = clearly_better * best.median();
    for (std::size_t start = 0; start < starts_along; ++start) {
        robust_fit other(kind, points);
        for (std::size_t i = 0; i < count - half; ++i)
            other.kept[(start * count / starts_along + i) % count] = false;
        if (!other.concentrate(half) || !(other.median() < limit)) continue;
        limit = other.median();
        best.kept = other.kept;
        best.fitted = other.fitted;
        best.residuals = other.residuals;
    }
}

}  // namespace

bool fit_without_outliers(fit_kind const& kind, std::vector<point> const& points, double threshold,
                          double least, fitted_feature& fitted, std::vector<bool>& kept,
                          std::vector<double>& residuals, std::string& reason) {
    robust_fit fit(kind, points);
    if (points.size() < kind.least_points || !fit.fit()) {
        reason = points.size() < kind.least_points
                     ? kind.named() + " needs at least " + std::to_string(kind.least_points) + " points"
                     : std::string("no ") + kind.name + " is determined: " + kind.when_singular;
        return false;
    }
    // Where all points are closer there is nothing to look for.
    if (threshold > 0 && magnitude_of_rank(fit.residuals, points.size()) > least) {
        auto const start =
            static_cast<std::size_t>(std::ceil(share_of_start * static_cast<double>(points.size())));
        fit.concentrate(start);
        if (fit.median() > least) try_halves(kind, points, fit);
        fit.keep_within([threshold, least](std::vector<double> const& r) {
            return std::max(least, threshold * normal_scale * magnitude_of_rank(r, (r.size() + 1) / 2));
        });
    }
    fitted = std::move(fit.fitted);
    kept = std::move(fit.kept);
    residuals = std::move(fit.residuals);
    return true;
}

}  // namespace tvmath
