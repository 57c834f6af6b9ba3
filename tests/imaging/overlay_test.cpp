#include "tvmath/overlay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t int_min = std::numeric_limits<std::int32_t>::min(),
                       int_max = std::numeric_limits<std::int32_t>::max();

using bitmap = std::unique_ptr<HBITMAP__, decltype(&release_bitmap)>;
using overlay_list = std::vector<ctl::ref<IDrawCallback>>;

bitmap drawn(unsigned int rows, unsigned int cols, overlay_list const& overlays) {
    return bitmap(create_bitmap(image(rows, cols), overlays), &release_bitmap);
}

// From the uppermost row down: '.' for black, '#' for anything else.
std::string picture(bitmap const& b) {
    std::string text;
    for (int y = bitmap_height(b.get()); y-- > 0; text += '\n') {
        for (int x = 0; x < bitmap_width(b.get()); ++x) text += bitmap_pixel(b.get(), x, y) ? '#' : '.';
    }
    return text;
}

// An overlay of the caller's own.
class drawing : public IDrawCallback {
public:
    explicit drawing(std::function<void(HDC__*)> act) : act_(std::move(act)) {}
    void draw(HDC__* device, int, int) override { act_(device); }

private:
    std::function<void(HDC__*)> act_;
};

struct straight {
    std::int64_t x, y, to_x, to_y;
    int width = 1;

    bitmap on(unsigned int rows, unsigned int cols) const {
        return drawn(rows, cols, {ctl::make_ref<drawing>([this](HDC__* device) {
                         select_pen(device, {0xFF, width});
                         move_to(device, x, y);
                         line_to(device, to_x, to_y);
                     })});
    }
};

TEST(CDib, HoldsTheImageInTheFormOfBitmapFiles) {
    image source(2, 3);
    double const greys[] = {-1, 0.5, 0.999, 1, nan_value, 1 / 256.0};
    for (unsigned int i = 0; i < 6; ++i) source(i / 3)(i % 3) = greys[i];
    CDib const dib(source);
    ASSERT_EQ(dib.size(), 40u + 4 * 256 + 2 * 4);
    unsigned char const header[] = {40, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 1, 0, 8, 0, 0, 0, 0, 0,
                                    8,  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0};
    EXPECT_EQ(std::memcmp(dib.begin(), header, 40), 0);
    unsigned char const grey_128[] = {128, 128, 128, 0}, rows[] = {255, 0, 1, 0, 0, 128, 255, 0};
    EXPECT_EQ(std::memcmp(dib.begin() + 40 + 4 * 128, grey_128, 4), 0);
    EXPECT_EQ(std::memcmp(dib.row(0), rows, 8), 0);
    EXPECT_EQ(dib.row(1), dib.row(0) + 4);
}

TEST(CreateBitmap, ShowsTheImageUpright) {
    image source(2, 3);
    source(0)(2) = 0.75;
    bitmap const b(create_bitmap(source), &release_bitmap);
    EXPECT_EQ(picture(b), "..#\n...\n");
    EXPECT_EQ(bitmap_pixel(b.get(), 2, 1), 0xC0C0C0u);
    EXPECT_EQ(bitmap_pixel(b.get(), 3, 1), 0u);
    EXPECT_EQ(bitmap_pixel(b.get(), 2, -1), 0u);
}

TEST(CreateBitmap, GivesNothingForNothing) {
    for (image const& empty : {image(), image(3, 0), image(65536, 65536)}) {
        EXPECT_EQ(create_bitmap(empty), nullptr);
        EXPECT_TRUE(CDib(empty).is_trivial());
    }
    EXPECT_EQ(bitmap_width(nullptr), 0);
    EXPECT_EQ(bitmap_pixel(nullptr, 0, 0), 0u);
    release_bitmap(nullptr);
}

// Inside or not by the definition: the pixel for a step of the longer axis is the one whose distance from the
// line, along the other axis, lies in [-1/2, 1/2).
TEST(LineTo, DrawsThePixelsNearestToTheLine) {
    __extension__ using exact = __int128;
    seeded_random random(1);
    for (int trial = 0; trial < 3000; ++trial) {
        // Ends near the surface, where ties abound, and far away, in every direction.
        double const reach = trial % 3 == 0 ? 30 : trial % 3 == 1 ? 300 : 2e9;
        auto const coordinate = [&] { return static_cast<std::int64_t>(random.uniform(-reach, reach)); };
        straight line = {coordinate(), coordinate(), coordinate(), coordinate()};
        if (trial % 2) line.x = 9, line.y = 6;
        std::int64_t const dx = line.to_x - line.x, dy = line.to_y - line.y;
        bool const flat = std::abs(dx) >= std::abs(dy);
        std::int64_t const length = std::max(std::abs(dx), std::abs(dy)), rise = flat ? dy : dx;
        bitmap const b = line.on(13, 19);
        for (int y = 0; y < 13; ++y) {
            for (int x = 0; x < 19; ++x) {
                std::int64_t const i =
                    flat ? (dx < 0 ? line.x - x : x - line.x) : (dy < 0 ? line.y - y : y - line.y);
                std::int64_t const side = flat ? y - line.y : x - line.x;
                exact const twice_off = 2 * (exact{side} * length - exact{i} * rise);
                bool const expected = i >= 0 && i < length && twice_off >= -length && twice_off < length;
                ASSERT_EQ(bitmap_pixel(b.get(), x, y) != 0, expected) << trial << ": " << x << ' ' << y;
            }
        }
    }
}

TEST(LineTo, DrawsAWidePenAsASweptDisc) {
    seeded_random random(2);
    for (int trial = 0; trial < 1000; ++trial) {
        double const reach = trial % 2 ? 40 : 1e4;
        auto const coordinate = [&] { return static_cast<std::int64_t>(random.uniform(-reach, reach)); };
        straight const line = {10, 8, coordinate(), coordinate(), 2 + static_cast<int>(random.below(12))};
        double const dx = double(line.to_x - line.x), dy = double(line.to_y - line.y);
        double const steps = std::max(std::fabs(dx), std::fabs(dy)), middle = line.width % 2 ? 0 : 0.5;
        if (steps == 0) continue;
        bitmap const b = line.on(17, 23);
        for (int y = 0; y < 17; ++y) {
            for (int x = 0; x < 23; ++x) {
                double const u = x + middle - 10, v = y + middle - 8;
                double const part = (u * dx + v * dy) / (dx * dx + dy * dy);
                double const t = std::clamp(part, 0.0, (steps - 1) / steps);
                double const inside = line.width / 2.0 - std::hypot(u - t * dx, v - t * dy);
                if (std::fabs(inside) < 1e-9) continue;
                ASSERT_EQ(bitmap_pixel(b.get(), x, y) != 0, inside > 0) << trial << ": " << x << ' ' << y;
            }
        }
    }
}

// Ties of the disc fall on the axes: such lines are as wide as the pen, and the caps round.
TEST(LineTo, IsAsWideAsThePenAlongTheAxes) {
    EXPECT_EQ(picture(straight{2, 1, 5, 1, 2}.on(3, 7)), ".......\n.####..\n.####..\n");
    EXPECT_EQ(picture(straight{2, 2, 4, 2, 3}.on(5, 7)), ".......\n.####..\n.####..\n.####..\n.......\n");
    EXPECT_EQ(picture(straight{3, 5, 3, 2, 4}.on(7, 6)),
              "..##..\n.####.\n.####.\n.####.\n.####.\n..##..\n......\n");
}

TEST(Overlays, DrawByHand) {
    point const none;
    auto const at = [](double x, double y) { return point(true, x, y); };
    std::vector<point> const corners = {at(1, 1), at(4, 1), at(4, 3)};
    idioms::array<point> const list(3, corners.data());
    struct {
        char const* name;
        ctl::ref<IDrawCallback> overlay;
        char const* expected;
    } const cases[] = {
        {"open", create_IDrawCallback(corners, 0xFF, 1, false, none),
         "......\n.####.\n....#.\n......\n......\n"},
        // Back over 3 columns and 2 rows, from (4, 4): 2/3 and 4/3 of a row up both make 1.
        {"closed, moved", create_IDrawCallback(curve(list), 0xFF, 1, true, at(0.5, 1)),
         "......\n......\n.####.\n..###.\n....#.\n"},
        {"one corner", create_IDrawCallback(std::vector<point>{at(1, 1)}, 0xFF, 1, true, none),
         "......\n......\n......\n......\n......\n"},
        {"pixel", create_IDrawCallback(at(2.9, 0.9), 0xFF, 9, 0, none),
         "..#...\n......\n......\n......\n......\n"},
        {"cross", create_IDrawCallback(at(2, 2), 0xFF, 1, 2, at(1, 0)),
         "...#..\n...#..\n.#####\n...#..\n...#..\n"},
        // Head of 1: the base lies 2 behind the tip, and the ends, left off, 2 to its sides.
        {"arrow", create_IDrawArrowCallback(at(0, 2), at(5, 2), 0xFF, 1, 1, none),
         "......\n....#.\n######\n....#.\n......\n"},
        {"arrow downwards", create_IDrawArrowCallback(at(2, 0), at(2, 4.9), 0xFF, 1, 2, none),
         "..#...\n..#...\n#.#.#.\n.###..\n..#...\n"},
        {"arrow without length", create_IDrawArrowCallback(at(2, 2), at(2, 2), 0xFF, 1, 2, none),
         "......\n......\n......\n......\n......\n"},
    };
    for (auto const& c : cases) EXPECT_EQ(picture(drawn(5, 6, {c.overlay})), c.expected) << c.name;
}

TEST(Overlays, FollowEachOtherAndPutThePenBack) {
    drawing_pen seen;
    overlay_list const overlays = {
        create_IDrawCallback(point(true, 1, 1), 0xFF00AA00, 3, 1, point()),
        {},
        ctl::make_ref<drawing>([&](HDC__* device) { seen = select_pen(device, {}); }),
        create_IDrawCallback(point(true, 1, 1), 0xFFFF0000BBul, 1, 0, point())};
    bitmap const b = drawn(3, 3, overlays);
    EXPECT_EQ(bitmap_pixel(b.get(), 0, 1), 0xAA00u);
    EXPECT_EQ(bitmap_pixel(b.get(), 1, 1), 0xBBu);
    EXPECT_TRUE(seen.colour == 0 && seen.width == 1);
    bitmap const alone(create_bitmap(image(3, 3), overlays[3]), &release_bitmap);
    EXPECT_EQ(picture(alone), "...\n.#.\n...\n");
    EXPECT_EQ(picture(bitmap(create_bitmap(image(1, 1), overlays[1]), &release_bitmap)), ".\n");
}

TEST(Overlays, AreNullForUndefinedPoints) {
    point const good(true, 1, 1);
    for (point const& bad : {point(), point(true, nan_value, 1), point(true, 1, nan_value)}) {
        EXPECT_TRUE(!create_IDrawCallback(std::vector<point>{good, bad}, 1, 1, true, good));
        EXPECT_TRUE(!create_IDrawCallback(curve(good, bad), 1, 1, true, good));
        EXPECT_TRUE(!create_IDrawCallback(bad, 1, 1, 0, good));
        EXPECT_TRUE(!create_IDrawArrowCallback(bad, good, 1, 1, 1, good));
        EXPECT_TRUE(!create_IDrawArrowCallback(good, bad, 1, 1, 1, good));
        EXPECT_EQ(!create_IDrawCallback(good, 1, 1, 0, bad), !bad.is_trivial());  // a trivial shift is none
    }
    EXPECT_TRUE(!create_IDrawCallback(std::vector<point>(), 1, 1, true, good));
    curve const no_corners = render(curve(good, good), false, 2);  // two points are no Bezier path
    EXPECT_TRUE(!create_IDrawCallback(no_corners, 1, 1, true, good));
    EXPECT_TRUE(!create_IDrawCallback(point(true, infinity, 1), 1, 1, 0, point(true, -infinity, 0)));
}

// Any numbers end soon and stay on the surface; the sanitizers see the rest.
TEST(Overlays, TakeAnyCoordinates) {
    std::vector<point> ends;
    for (double x : {0.0, -0.7, 1e6, -3e9, 1e300, infinity, -infinity}) {
        for (double y : {0.0, 5.5, -2e9, 1e300, infinity, -infinity}) ends.emplace_back(true, x, y);
    }
    for (int width : {int_min, 0, 1, 2, 1001, int_max}) {
        overlay_list overlays = {create_IDrawCallback(ends, 0xFF, width, true, point())};
        for (point const& p : ends) {
            for (int size : {int_min, -2, 3, int_max}) {
                overlays.push_back(create_IDrawCallback(p, 0xFF, width, size, point()));
                overlays.push_back(create_IDrawArrowCallback(p, ends[8], 0xFF, width, size, point()));
                overlays.push_back(create_IDrawArrowCallback(ends[7], p, 0xFF, width, size, point()));
            }
        }
        EXPECT_NE(drawn(7, 9, overlays).get(), nullptr);
    }
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(picture(straight{-most, 1, most, 1}.on(3, 4)), "....\n####\n....\n");
    EXPECT_EQ(picture(straight{most, most, -most, -most}.on(3, 4)), "..#.\n.#..\n#...\n");
    EXPECT_EQ(picture(straight{1, -most, 1, most, int_max}.on(2, 3)), "###\n###\n");
}

}  // namespace
}  // namespace tvmath
