#include "files/image_file.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>

#include "files/png_file.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

std::vector<double> values_of(image const& m) {
    std::vector<double> values;
    for (vector const& row : m) values.insert(values.end(), row.begin(), row.end());
    return values;
}

// The reason, or "read". A failure leaves the image alone.
std::string read_bytes(std::string const& bytes, image& out) {
    std::istringstream in(bytes);
    image const before = out;
    std::string reason;
    if (read_image(in, out, reason)) return reason.empty() ? "read" : "read, with a reason";
    EXPECT_TRUE(out == before) << "a failure changed the image";
    for (char const c : reason) EXPECT_TRUE(c >= ' ' && c <= '~') << reason;
    return reason;
}

std::string outcome_of(std::string const& bytes) {
    image out(1, 2);
    return read_bytes(bytes, out);
}

TEST(ImageFile, ReadsEveryFormOfPgm) {
    using namespace std::string_literals;
    std::vector<double> const six = {0, 1 / 5.0, 2 / 5.0, 3 / 5.0, 4 / 5.0, 1};
    std::string const raster = "\0\1\2\3\4\5"s;
    struct {
        char const* name;
        std::string bytes;
        std::vector<double> values;
    } const cases[] = {
        {"binary", "P5\n3 2\n5\n" + raster, six},
        {"binary with comments", "P5#a\n# b\r3#c\n 2 # d\n\t5#\n" + raster, six},
        {"first pixel like a blank", "P5 3 1 32\n\n\x20\x09", {10 / 32.0, 1, 9 / 32.0}},
        {"plain", "P2\n3 2\n5\n0 1 2 3 4 5", six},
        {"plain, wild", "P2#\n3\r\n2 0005\r\n0\t1\v2#x 9\n3 #\n4\f5#c\n # end", six},
        {"16 bits", "P5 3 1 65535 \0\0\x12\x34\xFF\xFF"s, {0, 0x1234 / 65535.0, 1}},
        {"two bytes from 256 on", "P5 2 1 256 \1\0\0\1"s, {1, 1 / 256.0}},
        {"one byte up to 255", "P5 2 1 255 \x80\xFF", {128 / 255.0, 1}},
        {"a bit", "P2 2 1 1 1 0 ", {1, 0}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        image m;
        EXPECT_EQ(read_bytes(c.bytes, m), "read");
        EXPECT_EQ(rows(m), c.values.size() / 3 > 1 ? 2u : 1u);
        EXPECT_EQ(values_of(m), c.values);
    }
}

TEST(ImageFile, SaysInOneLineWhatIsWrong) {
    using namespace std::string_literals;
    std::string const damaged = "is a damaged PGM: ",
                      large = "; at most 268435456 are read, and 1048576 to a side";
    struct {
        std::string bytes, reason;
    } const cases[] = {
        {"", "is empty"},
        {"x,y\n1,2\n", "is neither a PNG nor a PGM picture"},
        {"P5", "is neither a PNG nor a PGM picture"},
        {"P54 4 255\n", "is neither a PNG nor a PGM picture"},
        {"\xFF\xD8\xFF\xE0", "seems to be a JPEG picture; only PNG and PGM are read"},
        {"P6 1 1 255\nrgb", "seems to be a PPM picture; only PNG and PGM are read"},
        {"P2 -3 2 5", damaged + "its width is no number"},
        {"P2 3 2x 5", damaged + "its height is no number"},
        {"P2 3 2 #5\n", damaged + "its greatest value is no number"},
        {"P5 3 0 5\n", "has no pixels"},
        {"P5 3 2 0\n", damaged + "its greatest value is not from 1 to 65535"},
        {"P5 3 2 65536\n", damaged + "its greatest value is not from 1 to 65535"},
        {"P5 1048577 1 5\n", "has 1048577 x 1 pixels" + large},
        {"P5 16385 16384 5\n", "has 16385 x 16384 pixels" + large},
        {"P5 99999999999999999999999999 1 5\n", "has 4294967296 x 1 pixels" + large},
        // Nothing is made for the quarter of a billion pixels that do not come.
        {"P5 16384 16384 65535\n1", damaged + "pixel (0, 0) is missing or no number"},
        {"P2 3 2 5 0 1 2 3 4", damaged + "pixel (2, 1) is missing or no number"},
        {"P2 3 2 5 0 1 2 3 4.5 5", damaged + "pixel (1, 1) is missing or no number"},
        {"P2 3 2 5 0 1 2 3 6 5", damaged + "pixel (1, 1) is above the greatest value"},
        {"P5 2 1 256 \1\0\1\1"s, damaged + "pixel (1, 0) is above the greatest value"},
        {"P2 1 1 5 0 1", damaged + "it goes on after its last pixel"},
        {"P5 1 1 255\r\n1", damaged + "it goes on after its last pixel"},
        {"P2 1 1 5 " + std::string(std::size_t{65} << 20, ' '), "is far longer than its pixels can be"},
    };
    for (auto const& c : cases) EXPECT_EQ(outcome_of(c.bytes), c.reason) << c.bytes.substr(0, 40);

    image m;
    std::string reason;
    EXPECT_FALSE(read_image_file("/", m, reason));
    EXPECT_EQ(reason, "is a folder, not a file");
}

#ifdef TVMATH_READS_PNG

// A writer of PNG of its own, after the standard: stored blocks, no filters.
using grid = std::vector<std::vector<unsigned int>>;  // samples of each row, pixel by pixel

std::string big_endian(std::uint32_t value, int bytes = 4) {
    std::string text;
    for (int i = bytes; i-- > 0;) text += static_cast<char>(value >> 8 * i & 255);
    return text;
}

std::string chunk(std::string const& content) {  // its name and what it holds
    std::uint32_t crc = 0xFFFFFFFF;
    for (char const c : content) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return big_endian(static_cast<std::uint32_t>(content.size() - 4)) + content + big_endian(~crc);
}

std::string stored(std::string const& raw) {
    std::uint32_t a = 1, b = 0;
    for (char const c : raw) {
        a = (a + static_cast<unsigned char>(c)) % 65521;
        b = (b + a) % 65521;
    }
    auto const n = static_cast<unsigned int>(raw.size());
    std::string text = "\x78\x01\x01" + big_endian((n & 255) << 8 | n >> 8, 2);
    return text + big_endian((~n & 255) << 8 | (~n >> 8 & 255), 2) + raw + big_endian(b << 16 | a);
}

struct png_case {
    unsigned int type, depth, channels;
    std::string palette;  // the chunk
};

std::string rows_of(grid const& samples, png_case const& kind, std::array<unsigned int, 4> const& pass) {
    std::string raw;
    auto const width = static_cast<unsigned int>(samples[0].size()) / kind.channels;
    for (std::size_t y = pass[2]; y < samples.size() && pass[0] < width; y += pass[3]) {
        std::string bits(8, '0');  // of the filter
        for (unsigned int x = pass[0]; x < width; x += pass[1]) {
            for (unsigned int k = 0; k < kind.channels; ++k) {
                for (unsigned int bit = kind.depth; bit-- > 0;)
                    bits += (samples[y][x * kind.channels + k] >> bit & 1) != 0 ? '1' : '0';
            }
        }
        bits.resize((bits.size() + 7) / 8 * 8, '1');
        for (std::size_t i = 0; i < bits.size(); i += 8)
            raw += static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2));
    }
    return raw;
}

std::string png_of(grid const& samples, png_case const& kind, bool interlaced) {
    auto const width = static_cast<std::uint32_t>(samples[0].size()) / kind.channels;
    std::string raw;
    // x, its step, y, its step of the passes, as the standard's 8 by 8 pattern numbers them.
    std::array<unsigned int, 4> const passes[] = {{0, 8, 0, 8}, {4, 8, 0, 8}, {0, 4, 4, 8}, {2, 4, 0, 4},
                                                  {0, 2, 2, 4}, {1, 2, 0, 2}, {0, 1, 1, 2}};
    if (!interlaced) raw = rows_of(samples, kind, {0, 1, 0, 1});
    for (auto const& pass : passes) raw += interlaced ? rows_of(samples, kind, pass) : "";
    std::string const form = {static_cast<char>(kind.depth), static_cast<char>(kind.type), 0, 0, interlaced};
    return "\x89PNG\r\n\x1A\n" +
           chunk("IHDR" + big_endian(width) + big_endian(static_cast<std::uint32_t>(samples.size())) + form) +
           chunk(std::string("tEXtTitle\0a", 11)) + kind.palette + chunk("IDAT" + stored(raw)) +
           chunk("IEND");
}

grid random_samples(seeded_random& random, png_case const& kind) {
    unsigned int const largest = kind.type == 3 ? 2 : (1u << kind.depth) - 1;
    grid samples(1 + random.below(19), std::vector<unsigned int>(kind.channels * (1 + random.below(19))));
    for (auto& row : samples) {
        for (unsigned int& sample : row) sample = random.below(8) == 0 ? largest : random.below(largest + 1);
    }
    return samples;
}

std::string const colors("\xFF\0\0\0\xFF\0\x10\x20\xF0", 9);  // red, green, a blue
png_case const kinds[] = {{0, 1, 1, ""},
                          {0, 2, 1, ""},
                          {0, 4, 1, ""},
                          {0, 8, 1, ""},
                          {0, 16, 1, ""},
                          {2, 8, 3, ""},
                          {2, 16, 3, ""},
                          {4, 8, 2, ""},
                          {4, 16, 2, ""},
                          {6, 8, 4, ""},
                          {6, 16, 4, ""},
                          {3, 2, 1, chunk("PLTE" + colors)},
                          {3, 4, 1, chunk("PLTE" + colors) + chunk(std::string("tRNS\0", 5))},
                          {3, 8, 1, chunk("PLTE" + colors)}};

TEST(ImageFile, ReadsEveryKindOfPng) {
    seeded_random random(20261122);
    double const palette[] = {0.2126, 0.7152, (0.2126 * 16 + 0.7152 * 32 + 0.0722 * 240) / 255};
    for (png_case const& kind : kinds) {
        for (int trial = 0; trial < 20; ++trial) {
            SCOPED_TRACE(testing::Message()
                         << "type " << kind.type << ", depth " << kind.depth << ", " << trial);
            grid const samples = random_samples(random, kind);
            image m;
            ASSERT_EQ(read_bytes(png_of(samples, kind, trial % 2 == 1) + "behind", m), "read");
            ASSERT_TRUE(rows(m) == samples.size() && cols(m) * kind.channels == samples[0].size());
            for (unsigned int y = 0; y < rows(m); ++y) {
                for (unsigned int x = 0; x < cols(m); ++x) {
                    unsigned int const* const s = &samples[y][x * kind.channels];
                    double const white = (1 << kind.depth) - 1;
                    double const truth = kind.type == 3 ? palette[*s]
                                         : kind.channels >= 3
                                             ? (0.2126 * s[0] + 0.7152 * s[1] + 0.0722 * s[2]) / white
                                             : *s / white;
                    ASSERT_NEAR(m[y][x], truth, 1e-15);  // the rounding of the weights
                    ASSERT_TRUE(m[y][x] == 1 || truth < 0.9999999);
                }
            }
        }
    }
}

// No byte of what tells of the pixels may be wrong, and none be missing, without a word.
TEST(ImageFile, RefusesEveryDamagedPng) {
    seeded_random random(20261123);
    for (png_case const& kind : kinds) {
        std::string const whole = png_of(random_samples(random, kind), kind, random.coin());
        image original;
        ASSERT_EQ(read_bytes(whole, original), "read");
        for (std::size_t i = 0; i < whole.size(); ++i) {
            EXPECT_NE(outcome_of(whole.substr(0, i)), "read") << i << " bytes";
            std::string other = whole;
            other[i] = static_cast<char>(other[i] ^ 1 << random.below(8));
            image m;
            if (read_bytes(other, m) == "read") {
                EXPECT_EQ(values_of(m), values_of(original)) << "byte " << i;
            }
        }
    }
    grid const beyond = {{0, 1, 3}};
    EXPECT_EQ(outcome_of(png_of(beyond, kinds[11], false)),
              "is a damaged PNG: a pixel is beyond its palette");
    std::string const head = "\x89PNG\r\n\x1A\n" + chunk("IHDR" + big_endian(1 << 20) + big_endian(1 << 20) +
                                                         std::string("\1\0\0\0\0", 5));
    EXPECT_EQ(outcome_of(head + chunk("IDAT")).substr(0, 27), "has 1048576 x 1048576 pixel");
}

TEST(ImageFile, WritesPngThatReadBackAsTheyWere) {
    seeded_random random(20261124);
    image grey(13, 7);
    rgb_picture picture = {7, 13, {}};
    std::vector<double> rounded[2], luma;
    for (unsigned int y = 0; y < 13; ++y) {
        for (unsigned int x = 0; x < 7; ++x) {
            double const value = random.uniform(-0.1, 1.1), cut = std::min(1.0, std::max(0.0, value));
            grey(y)(x) = value;
            rounded[0].push_back(std::round(cut * 255) / 255);
            rounded[1].push_back(std::round(cut * 65535) / 65535);
            unsigned int const c[] = {random.below(256), random.below(256), random.below(256)};
            for (unsigned int const k : c) picture.rgb.push_back(static_cast<unsigned char>(k));
            luma.push_back((2126 * c[0] + 7152 * c[1] + 722 * c[2]) / 2550000.0);
        }
    }
    grey(12)(6) = std::numeric_limits<double>::quiet_NaN();
    rounded[0].back() = rounded[1].back() = 0;
    image m;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(read_bytes(png_bytes(grey, 8 << i), m), "read");
        EXPECT_EQ(values_of(m), rounded[i]);
    }
    std::string const bytes = png_bytes(picture);
    EXPECT_EQ(read_bytes(bytes, m), "read");
    EXPECT_EQ(values_of(m), luma);
    EXPECT_EQ(bytes.find("tIME"), std::string::npos);

    picture.rgb.pop_back();
    EXPECT_EQ(
        png_bytes(picture) + png_bytes(rgb_picture()) + png_bytes(image(), 8) + png_bytes(image(3, 0), 8),
        "");
}

#else

TEST(ImageFile, SaysThatItReadsNoPng) {
    EXPECT_EQ(outcome_of("\x89PNG\r\n\x1A\n"), "this build reads no PNG");
}

#endif

}  // namespace
}  // namespace tvmath
