#include "mesh/mesh_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "command_outcome.h"
#include "plot/canvas.h"
#include "report/number_text.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

outcome mesh(std::string const& text, std::string const& output, bool json = false) {
    std::ostringstream out, err;
    exit_status const status = run_mesh({file_of(text), output, json, false}, out, err);
    return {static_cast<int>(status), out.str(), err.str()};
}

// Twice the signed area.
double doubled_area(point const& a, point const& b, point const& c) {
    return (b.x() - a.x()) * (c.y() - a.y()) - (c.x() - a.x()) * (b.y() - a.y());
}

// Above 0 when d lies within the circle through a, b and c, which run anticlockwise. For small whole numbers
// without rounding.
double in_circle(point const& a, point const& b, point const& c, point const& d) {
    auto const lifted = [&d](point const& p) {
        double const x = p.x() - d.x(), y = p.y() - d.y();
        return std::array{x, y, x * x + y * y};
    };
    auto const u = lifted(a), v = lifted(b), w = lifted(c);
    return u[0] * (v[1] * w[2] - v[2] * w[1]) - u[1] * (v[0] * w[2] - v[2] * w[0]) +
           u[2] * (v[0] * w[1] - v[1] * w[0]);
}

// On whole numbers, with many points on one circle and many repeated.
TEST(MeshCommand, ListsDelaunayTrianglesThatFillTheHull) {
    seeded_random random(12);
    for (int trial = 0; trial < 60; ++trial) {
        std::vector<point> points;
        std::set<std::array<double, 2>> different;
        std::string text;
        int const n = 4 + static_cast<int>(random.below(40)), side = 3 + trial;
        for (int i = 0; i < n; ++i) {
            double const x = 1e6 + random.below(static_cast<unsigned>(side)),
                         y = random.below(static_cast<unsigned>(side));
            points.push_back(at(x, y));
            different.insert({x, y});
            text += number_text(x) + ' ' + number_text(y) + '\n';
        }
        outcome const summary = mesh(text, "", true), table = mesh(text, "-");
        if (summary.status == 4) continue;  // all on one line
        ASSERT_EQ(summary.status, 0) << summary.err;
        std::istringstream in(table.out);
        std::string line;
        std::getline(in, line);
        EXPECT_EQ(line, "triangle,a,b,c");
        double area = 0;
        std::size_t count = 0;
        char comma;
        for (std::size_t index, a, b, c; in >> index >> comma >> a >> comma >> b >> comma >> c;) {
            EXPECT_EQ(index, ++count);
            point const &p = points.at(a - 1), &q = points.at(b - 1), &r = points.at(c - 1);
            area += doubled_area(p, q, r) / 2;
            EXPECT_GT(doubled_area(p, q, r), 0);
            for (point const& other : points) EXPECT_LE(in_circle(p, q, r, other), 0);
        }
        auto const document = nlohmann::json::parse(summary.out);
        EXPECT_EQ(document["schema"], "tvmath.mesh/1");
        EXPECT_EQ(document["triangles"], count);
        EXPECT_EQ(document["hull_area"], area);
        EXPECT_EQ(document["repeated_points"], points.size() - different.size());
        // Euler: the faces are the triangles and the outside.
        std::size_t const edges = document["edges"];
        EXPECT_EQ(different.size() + count + 1, edges + 2);
        EXPECT_EQ(2 * edges, 3 * count + document["hull_points"].get<std::size_t>());
    }
}

TEST(MeshCommand, SaysInOneLineWhatIsWrong) {
    std::string const square = "0,0\n4,0\n4,2\n0,2\n", name = file_of("");
    struct {
        std::string text, output;
        bool json;
        int status;
        std::string err;
    } const cases[] = {
        {square, "", false, 0, ""},
        {"0,0\n1,1\n", "", false, 4, name + ": a mesh needs at least 3 points, not 2\n"},
        {"0,0\n1,1\n2,2\n", "-", false, 4,
         name + ": there is no mesh: the points lie on one line, or are fewer than 3 different ones\n"},
        {"-1e308,0\n1e308,1\n0,1e308\n", "", false, 4,
         name + ": there is no mesh: the coordinates are too large to calculate with\n"},
        {"0,0\n1,b\n", "", false, 3, name + ":2: 'b' is not a number\n"},
        {square, "-", true, 2, "tvmath: -o - and --json both need standard output\n"},
        {square, testing::TempDir() + "no_such_folder/m.csv", false, 5,
         testing::TempDir() + "no_such_folder/m.csv: "},
    };
    for (auto const& c : cases) {
        outcome const o = mesh(c.text, c.output, c.json);
        EXPECT_EQ(o.status, c.status) << c.text;
        EXPECT_EQ(o.err.substr(0, c.err.size()), c.err);
        EXPECT_EQ(std::count(o.err.begin(), o.err.end(), '\n'), c.status == 0 ? 0 : 1);
    }
}

TEST(MeshCommand, DrawsFewPointsAndMany) {
    seeded_random random(5);
    for (int const n : {3, 50, 60000}) {
        std::string text;
        for (int i = 0; i < n; ++i)
            text += number_text(random.normal()) + ' ' + number_text(random.normal()) + '\n';
        std::string const name = testing::TempDir() + "mesh_picture.svg";
        outcome const o = mesh(text, name);
        if (!is_picture_suffix(".svg")) {
            EXPECT_EQ(o.status, 2);
            continue;
        }
        ASSERT_EQ(o.status, 0) << o.err;
        EXPECT_NE(o.out.find("hull area"), std::string::npos);
        EXPECT_GT(std::filesystem::file_size(name), 5000u);
        EXPECT_LT(std::filesystem::file_size(name), 6000000u);
        std::filesystem::remove(name);
    }
}

}  // namespace
}  // namespace tvmath
