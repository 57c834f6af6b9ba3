#include "files/image_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <utility>

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
    std::pair<std::string, std::vector<double>> const cases[] = {
        {"P5\n3 2\n5\n" + raster, six},
        {"P5#a\n# b\r3#c\n 2 # d\n\t5#\n" + raster, six},
        {"P5 3 1 32\n\n\x20\x09", {10 / 32.0, 1, 9 / 32.0}},  // pixels like blanks
        {"P5 3 1 65535 \0\0\x12\x34\xFF\xFF"s, {0, 0x1234 / 65535.0, 1}},
        {"P5 2 1 256 \1\0\0\1"s, {1, 1 / 256.0}},  // two bytes from here on
        {"P5 2 1 255 \x80\xFF", {128 / 255.0, 1}},
        {"P2\n3 2\n5\n0 1 2 3 4 5", six},
        {"P2#\n3\r\n2 0005\r\n0\t1\v2#x 9\n3 #\n4\f5#c\n # end", six},
    };
    for (auto const& [bytes, values] : cases) {
        SCOPED_TRACE(bytes);
        image m;
        EXPECT_EQ(read_bytes(bytes, m), "read");
        EXPECT_EQ(rows(m), values.size() / 3 > 1 ? 2u : 1u);
        EXPECT_EQ(values_of(m), values);
    }
}

TEST(ImageFile, SaysInOneLineWhatIsWrong) {
    using namespace std::string_literals;
    std::string const damaged = "is a damaged PGM: ",
                      large = "; at most 268435456 are read, and 1048576 to a side";
    std::pair<std::string, std::string> const cases[] = {
        {"", "is empty"},
        {"P5", "is neither a PNG nor a PGM picture"},
        {"\xFF\xD8\xFF\xE0", "seems to be a JPEG picture; only PNG and PGM are read"},
        {"P6 1 1 255\nrgb", "seems to be a PPM picture; only PNG and PGM are read"},
        {"P2 3 2x 5", damaged + "its height is no number"},
        {"P5 3 0 5\n", "has no pixels"},
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
    for (auto const& [bytes, why] : cases) EXPECT_EQ(outcome_of(bytes), why) << bytes.substr(0, 40);

    image m;
    std::string reason;
    EXPECT_FALSE(read_image_file("/", m, reason));
    EXPECT_EQ(reason, "is a folder, not a file");
}

#ifdef TVMATH_READS_PNG

// A writer of PNG of its own, after the standard: stored blocks, no filters. It reads back what it is given
// as samples[y][x * channels + k].
using grid = std::vector<std::vector<unsigned int>>;

struct png_kind {
    unsigned int type, depth;
    unsigned int channels() const { return type == 2 ? 3 : type == 4 ? 2 : type == 6 ? 4 : 1; }
};
png_kind const kinds[] = {{0, 1}, {0, 2}, {0, 4}, {0, 8}, {0, 16}, {2, 8}, {2, 16},
                          {3, 2}, {3, 4}, {3, 8}, {4, 8}, {4, 16}, {6, 8}, {6, 16}};
std::string const palette("\xFF\0\0\0\xFF\0\x10\x20\xF0", 9);  // red, green, a blue

std::string big_endian(std::size_t value, int bytes = 4) {
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
    return big_endian(content.size() - 4) + content + big_endian(~crc);
}

std::string stored(std::string const& raw) {
    std::size_t a = 1, b = 0, n = raw.size();
    for (char const c : raw) b = (b + (a = (a + static_cast<unsigned char>(c)) % 65521)) % 65521;
    auto const little_endian = [](std::size_t k) { return big_endian((k & 255) << 8 | (k >> 8 & 255), 2); };
    return "\x78\x01\x01" + little_endian(n) + little_endian(~n) + raw + big_endian(b << 16 | a);
}

std::string png_of(grid const& samples, png_kind const& kind, bool interlaced) {
    // The passes as the standard numbers them.
    char const* const pattern[] = {"16462646", "77777777", "56565656", "77777777",
                                   "36463646", "77777777", "56565656", "77777777"};
    std::size_t const width = samples[0].size() / kind.channels();
    std::string raw;
    for (char pass = '1'; pass <= (interlaced ? '7' : '1'); ++pass) {
        for (std::size_t y = 0; y < samples.size(); ++y) {
            std::string bits;
            for (std::size_t i = 0; i < samples[y].size(); ++i) {
                if (interlaced && pattern[y % 8][i / kind.channels() % 8] != pass) continue;
                bits += std::bitset<16>(samples[y][i]).to_string().substr(16 - kind.depth);
            }
            if (!bits.empty()) raw += '\0';  // no filter
            for (bits.resize((bits.size() + 7) / 8 * 8, '1'); !bits.empty(); bits.erase(0, 8))
                raw += static_cast<char>(std::bitset<8>(bits, 0, 8).to_ulong());
        }
    }
    std::string const form = {static_cast<char>(kind.depth), static_cast<char>(kind.type), 0, 0, interlaced};
    return "\x89PNG\r\n\x1A\n" + chunk("IHDR" + big_endian(width) + big_endian(samples.size()) + form) +
           (kind.type == 3 ? chunk("PLTE" + palette) + chunk(std::string("tRNS\0", 5)) : "") +
           chunk("IDAT" + stored(raw)) + chunk("IEND");
}

grid random_samples(seeded_random& random, png_kind const& kind) {
    unsigned int const largest = kind.type == 3 ? 2 : (1u << kind.depth) - 1;
    grid samples(1 + random.below(19), std::vector<unsigned int>(kind.channels() * (1 + random.below(19))));
    for (auto& row : samples) {
        for (unsigned int& sample : row) sample = random.below(8) == 0 ? largest : random.below(largest + 1);
    }
    return samples;
}

double grey_of(unsigned int const* s, png_kind const& kind) {
    double const of_palette[] = {0.2126, 0.7152, (0.2126 * 16 + 0.7152 * 32 + 0.0722 * 240) / 255};
    if (kind.type == 3) return of_palette[*s];
    double const level = kind.channels() < 3 ? *s : 0.2126 * s[0] + 0.7152 * s[1] + 0.0722 * s[2];
    return level / ((1 << kind.depth) - 1);
}

TEST(ImageFile, ReadsEveryKindOfPng) {
    seeded_random random(20261122);
    for (int trial = 0; trial < 280; ++trial) {
        png_kind const kind = kinds[trial % 14];
        SCOPED_TRACE(testing::Message() << "type " << kind.type << ", depth " << kind.depth << ", " << trial);
        grid const samples = random_samples(random, kind);
        image m;
        ASSERT_EQ(read_bytes(png_of(samples, kind, random.coin()) + "behind", m), "read");
        ASSERT_TRUE(rows(m) == samples.size() && cols(m) * kind.channels() == samples[0].size());
        for (unsigned int y = 0; y < rows(m); ++y) {
            for (unsigned int x = 0; x < cols(m); ++x) {
                double const truth = grey_of(&samples[y][x * kind.channels()], kind);
                ASSERT_NEAR(m[y][x], truth, 1e-15);  // the rounding of the weights
                ASSERT_TRUE(m[y][x] == 1 || truth < 0.9999999);
            }
        }
    }
}

// No byte of what tells of the pixels may be wrong, and none be missing, without a word.
TEST(ImageFile, RefusesEveryDamagedPng) {
    seeded_random random(20261123);
    for (png_kind const& kind : kinds) {
        std::string const whole = png_of(random_samples(random, kind), kind, random.coin());
        image original;
        ASSERT_EQ(read_bytes(whole, original), "read");
        for (std::size_t i = 0; i < whole.size(); ++i) {
            EXPECT_NE(outcome_of(whole.substr(0, i)), "read") << i << " bytes";
            std::string other = whole;
            other[i] = static_cast<char>(other[i] ^ 1 << random.below(8));
            image m;
            EXPECT_TRUE(read_bytes(other, m) != "read" || values_of(m) == values_of(original)) << i;
        }
    }
    EXPECT_EQ(outcome_of(png_of({{0, 1, 3}}, {3, 2}, false)),
              "is a damaged PNG: a pixel is beyond its palette");
    std::string const sizes = big_endian(1 << 20) + big_endian(1 << 20) + std::string("\1\0\0\0\0", 5);
    EXPECT_EQ(outcome_of("\x89PNG\r\n\x1A\n" + chunk("IHDR" + sizes) + chunk("IDAT")),
              "has 1048576 x 1048576 pixels; at most 268435456 are read, and 1048576 to a side");
}

TEST(ImageFile, WritesPngThatReadBackAsTheyWere) {
    seeded_random random(20261124);
    image grey(13, 7), m;
    rgb_picture picture = {7, 13, std::vector<unsigned char>(273)};
    for (unsigned char& byte : picture.rgb) byte = static_cast<unsigned char>(random.below(256));
    std::vector<double> rounded[2], luma;
    for (unsigned int i = 0; i < 91; ++i) {
        double const value = random.uniform(-0.1, 1.1), cut = std::min(1.0, std::max(0.0, value));
        grey(i / 7)(i % 7) = i > 0 ? value : std::numeric_limits<double>::quiet_NaN();
        rounded[0].push_back(i > 0 ? std::round(cut * 255) / 255 : 0);
        rounded[1].push_back(i > 0 ? std::round(cut * 65535) / 65535 : 0);
        unsigned char const* const c = picture.rgb.data() + 3 * i;
        luma.push_back((2126 * c[0] + 7152 * c[1] + 722 * c[2]) / 2550000.0);
    }
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(read_bytes(png_bytes(grey, 8 << i), m), "read");
        EXPECT_EQ(values_of(m), rounded[i]);
    }
    EXPECT_EQ(read_bytes(png_bytes(picture), m), "read");
    EXPECT_EQ(values_of(m), luma);
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
