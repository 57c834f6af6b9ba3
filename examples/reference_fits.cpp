// Fits every reference set with every fit that applies and prints the answers beside the reference ones.
//     reference_fits FOLDER              the page docs/reference-fits.md
//     reference_fits FOLDER --summary    its summary alone
// Fails when a difference is above its bound.

#include <tvmath/quick_fit.h>
#include <tvmath/scalar.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>

#include "reference_fits/applicable_fits.h"

namespace {

// The length that differences are compared with: a radius, the greater half-axis, or else the greatest
// distance of a point from the centroid.
double size_of(reference_set const& set) {
    for (char const* const name : {"radius", "semi_major"}) {
        if (set.answer.contains(name)) return set.answer.at(name)[0];
    }
    double most = 0;
    for (point const& p : set.points) most = std::max(most, (p - point_fit(set.points)).length3d());
    return most;
}

// Two units in the last place of the largest coordinate: nothing at this place can be told better.
double place_rounding(reference_set const& set) {
    double most = 0;
    for (point const& p : set.points) {
        for (double const x : {p.x(), p.y(), p.is_3d() ? p.z() : 0.0}) most = std::max(most, std::fabs(x));
    }
    return 2 * (std::nextafter(most, std::numeric_limits<double>::infinity()) - most);
}

struct comparison {
    std::string quantity;
    double ours, reference, difference, relative, bound;  // the last two relative to the size

    bool holds() const { return std::fabs(relative) <= bound; }
};

// The bound of all that a fit gives, but for the rounding of its place.
double bound_of(reference_set const& set, promise promised) {
    if (promised != promise::nearly_least_squares) return set.bound;
    double const squares = set.answer.at("sum_sq")[0] / static_cast<double>(set.points.size());
    return std::max(set.bound, squares / (size_of(set) * size_of(set)));
}

// One number of a fit. Directions and angles are compared as they are, a sum of squares with itself.
comparison compare(reference_set const& set, std::string const& quantity, std::string const& kind,
                   double ours, double reference, double bound) {
    double const size = size_of(set), rounding = place_rounding(set), difference = ours - reference;
    if (kind == "sum_sq") {
        double const n = static_cast<double>(set.points.size()),
                     noise = 2 * std::sqrt(n * reference) * rounding + n * rounding * rounding;
        double const unit = reference > 0 ? reference : n * size * size;
        return {quantity, ours, reference, difference, difference / unit, bound + noise / unit};
    }
    bool const is_length =
        kind != "direction" && kind != "normal" && kind != "axis" && kind != "angle" && kind != "half_angle";
    return {quantity,
            ours,
            reference,
            difference,
            is_length ? difference / size : difference,
            bound + rounding / size};
}

std::vector<comparison> compare(reference_set const& set, figures found, figures const& reference,
                                double bound) {
    std::vector<comparison> all;
    for (auto& [name, values] : found) {
        if (!reference.contains(name)) continue;
        std::vector<double> const& expected = reference.at(name);
        // A direction counts up to its sense.
        double sense = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) sense += values[i] * expected[i];
        if (sense < 0 && (name == "direction" || name == "normal" || name == "axis")) {
            for (double& x : values) x = -x;
        }
        if (name == "angle") values[0] = expected[0] + std::remainder(values[0] - expected[0], pi);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            std::string const coordinate = expected.size() > 1 ? std::string(" ") + "xyz"[i] : "";
            all.push_back(compare(set, name + coordinate, name, values[i], expected[i], bound));
        }
    }
    return all;
}

// Fits whose answers agree to the last bit.
struct fitted {
    std::string names;
    figures found;  // empty for a fit that gave its null feature
    std::vector<comparison> rows;
};

std::vector<fitted> fit_all(reference_set const& set) {
    std::vector<fitted> results;
    for (named_fit const& fit : applicable_fits()) {
        figures const& reference = fit.promised == promise::algebraic ? set.algebraic_answer : set.answer;
        if (fit.kind != set.kind || reference.empty()) continue;
        figures const found = fit.run(set).value_or(figures());
        auto const same =
            std::find_if(results.begin(), results.end(), [&](fitted const& r) { return r.found == found; });
        if (same != results.end()) {
            same->names += ", " + std::string(fit.name);
        } else {
            results.push_back({fit.name, found, compare(set, found, reference, bound_of(set, fit.promised))});
        }
    }
    return results;
}

std::string brief(double x) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1e", x);
    return text;
}

std::string text_of_bound(comparison const& c) {
    return brief(c.bound) + (c.holds() ? "" : " EXCEEDED");
}

bool all_hold(fitted const& f) {
    return !f.rows.empty() &&
           std::all_of(f.rows.begin(), f.rows.end(), [](auto const& r) { return r.holds(); });
}

void print_summary_row(char const* set, char const* points, char const* fits, char const* difference,
                       char const* quantity, char const* bound) {
    std::printf("| %-55s | %6s | %-53s | %-16s | %-20s | %s |\n", set, points, fits, difference, quantity,
                bound);
}

// The number that comes nearest to its bound.
void print_summary_row(reference_set const& set, fitted const& f) {
    std::string const n = std::to_string(set.points.size());
    if (f.rows.empty()) {
        print_summary_row(set.name.c_str(), n.c_str(), f.names.c_str(), "no answer", "", "");
        return;
    }
    auto const worst = *std::max_element(f.rows.begin(), f.rows.end(), [](auto const& a, auto const& b) {
        return std::fabs(a.relative) / a.bound < std::fabs(b.relative) / b.bound;
    });
    print_summary_row(set.name.c_str(), n.c_str(), f.names.c_str(), brief(std::fabs(worst.relative)).c_str(),
                      worst.quantity.c_str(), text_of_bound(worst).c_str());
}

void print_set(reference_set const& set, std::vector<fitted> const& results) {
    std::printf("\n### %s\n\nPoints: %s. Answer known by %s.\n", set.name.c_str(), set.origin.c_str(),
                set.known_by.c_str());
    if (!set.published.empty()) std::printf("Published there: `%s`\n", set.published.c_str());
    std::puts(
        "\n| fits | quantity | tvmath | reference | difference | relative | bound "
        "|\n|---|---|---|---|---|---|---|");
    for (fitted const& f : results) {
        if (f.rows.empty()) std::printf("| %s | no answer | | | | | |\n", f.names.c_str());
        for (comparison const& c : f.rows) {
            std::printf("| %s | %s | %.17g | %.17g | %s | %s | %s |\n", f.names.c_str(), c.quantity.c_str(),
                        c.ours, c.reference, brief(c.difference).c_str(), brief(c.relative).c_str(),
                        text_of_bound(c).c_str());
        }
    }
}

constexpr char const* introduction = R"(# Fits beside reference answers

This page is written by `scripts/reference_table.sh`. It shows what each fit of the library makes of point sets whose
least squares feature is known: published sets and our own ones, with answers verified to 25 digits
(`examples/data`), and sets in hard places constructed so that the answer is exact.

- Answers belong to the doubles that the text of the points stands for. They are features of least squares of the
  orthogonal distances; those of `circle_quick_fit` and `sphere_quick_fit` are the algebraic features that these
  promise. `ellipse_fitter` measures from a foot found in two rounds and promises what that leaves: the mean square of
  the scatter over the size.
- *relative* is the difference by the size of the feature: the radius, the greater half-axis, or of lines, planes and
  cones the greatest distance of a point from the centroid. Directions and angles (in radians) have no size; a sum of
  squares is compared with itself, or with points a whole size away where it is 0.
- *bound* is what the test allows: 1e-12, or 1e-9 where the points determine the feature weakly, as a short arc does,
  and two units in the last place of the largest coordinate, since the answer is stored in such numbers. A sum of
  squares may differ further by what that rounding of the distances adds to it.
- Fits with a given centre, point or direction are given that of the reference answer, so that the rest must come out.
- A line or an axis is told by its point beside the centroid. `sum_sq` is the sum of squares, `res_pv` the form error.
- Fits that agree to the last bit share their rows.
)";

int run(std::string const& folder, bool summary_only) {
    std::vector<reference_set> sets = published_sets(folder);
    for (reference_set& set : constructed_sets()) sets.push_back(std::move(set));
    std::vector<std::vector<fitted>> results;
    for (reference_set const& set : sets) results.push_back(fit_all(set));

    if (!summary_only) std::printf("%s\n## Summary\n\n", introduction);
    print_summary_row("set", "points", "fits", "worst difference", "of", "its bound");
    print_summary_row("---", "---", "---", "---", "---", "---");
    int exceeded = 0;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        for (fitted const& f : results[i]) {
            print_summary_row(sets[i], f);
            exceeded += !all_hold(f);
        }
    }
    if (!summary_only) {
        std::puts("\n## Every number");
        for (std::size_t i = 0; i < sets.size(); ++i) print_set(sets[i], results[i]);
    }
    if (exceeded) std::fprintf(stderr, "%d fits are not within their bounds\n", exceeded);
    return exceeded ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 2) return run(argv[1], false);
        if (argc == 3 && std::strcmp(argv[2], "--summary") == 0) return run(argv[1], true);
        std::fputs("usage: reference_fits FOLDER [--summary]\n", stderr);
    } catch (std::exception const& e) {
        std::fprintf(stderr, "reference_fits: %s\n", e.what());
    }
    return 2;
}
