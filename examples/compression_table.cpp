// compression_table FILE...: a table of how much shorter the methods of compressed points make each list of
// points, and of the largest error of a coordinate that they leave. scripts/compression_table.sh puts it into
// docs/persistence.md.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tvmath/tvmath.h"

namespace {

// Points of 2 or 3 numbers between commas, in space; z counts as 0 where there is none.
std::vector<point> read_points(std::string const& file, bool& is_flat) {
    std::ifstream in(file);
    std::vector<point> points;
    for (std::string row; std::getline(in, row);) {
        double x = 0, y = 0, z = 0;
        int const found = std::sscanf(row.c_str(), "%lf,%lf,%lf", &x, &y, &z);
        if (found < 2) continue;  // comments, and the names of the columns
        is_flat = found == 2;
        points.emplace_back(true, x, y, z);
    }
    return points;
}

double longest_step(std::vector<point> const& points) {
    double longest = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        longest = std::max(longest, distance3d(points[i - 1], points[i]));
    return longest;
}

double worst_error(std::vector<point> const& given, std::vector<point> const& read) {
    double worst = given.size() == read.size() ? 0 : INFINITY;
    for (std::size_t i = 0; i < std::min(given.size(), read.size()); ++i) {
        point const d = given[i] - read[i];
        worst = std::max({worst, std::fabs(d.x()), std::fabs(d.y()), std::fabs(d.z())});
    }
    return worst;
}

void print_row(std::string const& name, std::vector<point> const& points) {
    std::printf("| %s | %zu | %.3g |", name.c_str(), points.size(), longest_step(points));
    for (unsigned char method = 0; method <= 3; ++method) {
        Compressed_Points compressed;
        compressed.compress(method, points);
        std::vector<point> read;
        compressed.decompress(read);
        std::printf(" %.2f, %.2g |", 24.0 * double(points.size()) / double(compressed.data.size()),
                    worst_error(points, read));
    }
    std::printf("\n");
}

// Around their centroid, as a probe that scans the outline gives them.
void sort_by_angle(std::vector<point>& points) {
    point const center = point_fit(points);
    std::sort(points.begin(), points.end(), [&](point const& a, point const& b) {
        return (a - center).angle2d() < (b - center).angle2d();
    });
}

}  // namespace

int main(int argc, char** argv) {
    std::printf("| list | points | longest step | 0 | 1 | 2 | 3 |\n|---|---|---|---|---|---|---|\n");
    for (int i = 1; i < argc; ++i) {
        bool is_flat = false;
        std::vector<point> points = read_points(argv[i], is_flat);
        if (points.empty()) {
            std::fprintf(stderr, "%s: no points\n", argv[i]);
            return 1;
        }
        std::string const name = std::filesystem::path(argv[i]).stem().string();
        double const step = longest_step(points);
        print_row(name, points);
        if (!is_flat) continue;
        sort_by_angle(points);
        if (longest_step(points) < step / 2) print_row(name + ", by angle", points);
    }
}
