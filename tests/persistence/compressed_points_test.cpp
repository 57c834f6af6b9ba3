#include "tvmath/compressed_points.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

point at(double x, double y, double z) {
    return point(true, x, y, z);
}

std::vector<point> decompressed(Compressed_Points const& c) {
    std::vector<point> points;
    c.decompress(points);
    return points;
}

std::string hexadecimal(unsigned char method, std::vector<point> const& points) {
    Compressed_Points c;
    c.compress(method, points);
    return to_utf8(Persistence::to_ascii(c));
}

// x takes steps of 1, -1 and 0.25, so m is 1; y one step of 2; z none. Codes by hand: t = s scale + offset.
TEST(CompressedPoints, HaveTheDocumentedBytes) {
    std::vector<point> const points = {at(1, 2, 3), at(2, 2, 3), at(1, 4, 3), at(1.25, 4, 3)};
    std::string const first =
        "000000000000F03F"
        "0000000000000040"
        "0000000000000840";
    std::string const longest =
        "0000803F"
        "00000040"
        "00000000";
    // Method 2 in x: 1 -> 255.5, at 2; -1 -> 0.5, at 1; 0.25 -> 159.875. In y: 0 -> 128, which steps 2/255;
    // 2 - 2/255 -> 255.0, just below it or not; from there on the remainder. z: scale 0 -> 128.
    std::string const two = hexadecimal(2, points);
    ASSERT_EQ(two.size(), 2 * (37 + 9));
    EXPECT_EQ(two.substr(0, 74), "02" + first + longest);
    EXPECT_EQ(two.substr(74, 2), "FF");
    EXPECT_EQ(two.substr(76, 4), "8080");
    EXPECT_EQ(two.substr(80, 2), "00");
    EXPECT_EQ(two.substr(84, 4), "809F");
    // Method 1: x 31, 0, 16 + 3.875; y 16 stepping 2/31, 16 + 15.5 - 0.5 = 31, 16 - 0.5; z 16.
    // 31 | 16 << 5 | 16 << 10 = 0x421F; 0 | 31 << 5 | 16 << 10 = 0x43E0 or, below 31, 0x43C0.
    std::string const one = hexadecimal(1, points);
    ASSERT_EQ(one.size(), 2 * (37 + 6));
    EXPECT_EQ(one.substr(0, 78), "01" + first + longest + "1F42");
    // Method 3: x 65534; y and z 32768.
    std::string const three = hexadecimal(3, points);
    ASSERT_EQ(three.size(), 2 * (37 + 18));
    EXPECT_EQ(three.substr(0, 86), "03" + first + longest +
                                       "FEFF"
                                       "0080"
                                       "0080");
    EXPECT_EQ(hexadecimal(0, {points[0]}), "00" + first);
    EXPECT_EQ(hexadecimal(9, points), hexadecimal(0, points));
    EXPECT_EQ(hexadecimal(4, points), three);
    EXPECT_EQ(hexadecimal(5, points), three);
    EXPECT_EQ(hexadecimal(2, {points[0]}).size(), 2u * 37);
    EXPECT_EQ(hexadecimal(2, {}), "");
}

TEST(CompressedPoints, StayWithinALevelHoweverLongTheList) {
    seeded_random random(1);
    double const levels[] = {0, 31, 255, 65535};
    for (int trial = 0; trial < 60; ++trial) {
        double const size = random.log_uniform(1e-6, 1e6);
        std::vector<point> points = {at(size, -size, 7)};
        // Steps at both ends of the range, and smaller ones; nothing happens along z.
        for (int i = 0; i < 5000; ++i) {
            double const dx = trial % 3 == 0 ? size : size * random.uniform(-1, 1);
            double const dy = trial % 3 == 1 ? -size : size * random.normal();
            points.push_back(points.back() + point(false, dx, dy, 0));
        }
        double mx = 0, my = 0;
        for (std::size_t i = 1; i < points.size(); ++i) {
            mx = std::max(mx, std::fabs(points[i].x() - points[i - 1].x()));
            my = std::max(my, std::fabs(points[i].y() - points[i - 1].y()));
        }
        for (unsigned char method = 0; method <= 3; ++method) {
            SCOPED_TRACE(method);
            Compressed_Points c;
            c.compress(method, points);
            std::vector<point> const back = decompressed(c);
            ASSERT_EQ(back.size(), points.size());
            double const part = method ? 2.0001 / levels[method] : 0,
                         rounding = 1e-12 * size * (method ? 5000 : 0);
            double worst_x = 0, worst_y = 0;
            for (std::size_t i = 0; i < back.size(); ++i) {
                worst_x = std::max(worst_x, std::fabs(back[i].x() - points[i].x()));
                worst_y = std::max(worst_y, std::fabs(back[i].y() - points[i].y()));
                ASSERT_EQ(back[i].z(), 7);
            }
            EXPECT_LE(worst_x, part * mx + rounding);
            EXPECT_LE(worst_y, part * my + rounding);
        }
    }
}

TEST(CompressedPoints, AgreeInAllKindsOfLists) {
    std::vector<point> const points = {at(0, 0, 0), at(1, 2, 3), at(2, 3, 5), point(true, 1, 1), at(9, 9, 9)};
    Compressed_Points a, b, c;
    a.compress(2, points);
    b.compress(2, idioms::array<point>(5, points.data()));
    c.compress(2, std::list<point>(points.begin(), points.end()));
    EXPECT_TRUE(a.data == b.data && b.data == c.data);
    std::vector<point> const vector = decompressed(a);
    EXPECT_EQ(vector.size(), 3u);  // up to the one that is not 3D
    idioms::array<point> array(2);
    std::list<point> list(7);
    EXPECT_EQ(a.decompress(array), 2);
    EXPECT_EQ(a.decompress(list), 2);
    EXPECT_TRUE(std::equal(vector.begin(), vector.end(), array.begin(), array.end()));
    EXPECT_TRUE(std::equal(vector.begin(), vector.end(), list.begin(), list.end()));
}

TEST(CompressedPoints, OfDamagedDataAreThoseBefore) {
    seeded_random random(2);
    std::vector<point> points;
    for (int i = 0; i < 20; ++i) points.push_back(at(i, i * i, 1.0 / (i + 1)));
    for (unsigned char method = 0; method <= 3; ++method) {
        Compressed_Points whole;
        whole.compress(method, points);
        std::vector<point> const all = decompressed(whole);
        std::size_t const size[] = {24, 2, 3, 6};
        for (std::size_t n = 0; n <= whole.data.size(); ++n) {
            Compressed_Points cut;
            cut.data.assign(whole.data.begin(), whole.data.begin() + static_cast<std::ptrdiff_t>(n));
            std::size_t const left = n < 25        ? 0
                                     : method == 0 ? (n - 1) / 24
                                     : n < 37      ? 1
                                                   : 1 + (n - 37) / size[method];
            std::vector<point> const some = decompressed(cut);
            ASSERT_EQ(some.size(), left);
            EXPECT_TRUE(std::equal(some.begin(), some.end(), all.begin()));
        }
        for (int trial = 0; trial < 2000; ++trial) {
            Compressed_Points mutated = whole;
            for (int i = 0; i < 4; ++i) {
                std::size_t const at_byte = random.below(static_cast<unsigned int>(mutated.data.size()));
                mutated.data[at_byte] = static_cast<unsigned char>(random.below(256));
            }
            mutated *= transform::translation(point(false, 1, 2, 3));  // must not crash
            EXPECT_LE(decompressed(mutated).size(), mutated.data.size());
        }
    }
    for (unsigned char const unknown : std::initializer_list<unsigned char>{4, 5, 6, 255}) {
        Compressed_Points c;
        c.data.assign(100, unknown);
        std::vector<point> none(3);
        EXPECT_EQ(c.decompress(none), unknown);
        EXPECT_TRUE(none.empty());
        c *= transform::translation(point(false, 1, 2, 3));
        EXPECT_EQ(c.data, std::vector<unsigned char>(100, unknown));  // not ours to lose
    }
    Compressed_Points wild;
    wild.compress(3, std::vector<point>{at(0, 0, 0), at(inf, -1e300, std::nan("")), at(1, 1, 1)});
    EXPECT_EQ(decompressed(wild).size(), 3u);
}

TEST(CompressedPoints, AreCarriedByTransforms) {
    std::vector<point> const points = {at(0, 0, 0), at(3, 1, 0), at(4, 3, 2)};
    Compressed_Points c;
    c.compress(0, points);
    transform const move = transform::translation(point(false, 1, 2, 3));
    c *= move;
    EXPECT_TRUE(decompressed(c)[2] == at(5, 5, 5));
    c /= move;
    EXPECT_TRUE(decompressed(c)[2] == points[2]);
    EXPECT_EQ(c.data[0], 0);
}

TEST(CompressedPoints, ReadHexadecimalText) {
    Compressed_Points c;
    Persistence::to_compressed_points(u"00fFA9\u0141G71",
                                      c);  // each odd character counts as 0; the last is left
    EXPECT_EQ(c.data, (std::vector<unsigned char>{0x00, 0x0F, 0xA9, 0x00, 0x71}));
    Persistence::to_compressed_points(u"12345", c);
    EXPECT_EQ(to_utf8(Persistence::to_ascii(c)), "1234");
    Persistence::to_compressed_points(static_cast<wide_char const*>(nullptr), c);
    EXPECT_TRUE(c.data.empty());
}

}  // namespace
}  // namespace tvmath
