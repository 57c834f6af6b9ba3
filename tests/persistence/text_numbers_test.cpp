#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "support/seeded_random.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

std::string written(double value, int precision) {
    return to_utf8(Persistence::to_ascii(value, precision));
}

std::string printed(double value, int precision) {
    char text[2048];
    std::snprintf(text, sizeof text, "%.*g", precision, value);
    return text;
}

double read(std::string const& text) {
    return Persistence::to_real(to_wide(text).c_str(), 7);
}

// Equal to the last bit, except that any NaN of the same sign will do.
bool same(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
    }
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(TextOfANumber, IsWhatTheCLibraryPrints) {
    seeded_random random(31);
    for (int trial = 0; trial < 200000; ++trial) {
        // Any bits; measured values of all sizes; floats, halves and decimals, which often lie between two
        // texts.
        double value = std::bit_cast<double>(random.bits());
        unsigned int const kind = random.below(5);
        if (kind > 0) value = (random.coin() ? 1 : -1) * random.log_uniform(1e-22, 1e18);
        if (kind == 2) value = static_cast<float>(value);
        if (kind == 3) value = std::ldexp(std::round(std::fmod(value, 1e9) * 4), -2);
        if (kind == 4) value = std::round(std::fmod(value, 1e9) * 1e4) / 1e4;
        if (!std::isfinite(value)) continue;
        int const precision = static_cast<int>(random.below(19)) - 1;
        ASSERT_EQ(written(value, precision), printed(value, precision)) << precision;
    }
}

TEST(TextOfANumber, IsRightAtTheEdgesForAnyPrecision) {
    double const limits[] = {0.0, -0.0, 5e-324, 2.2250738585072009e-308, 1.7976931348623157e308, 0.5,
                             2.5, 9.5,  0.1};
    for (int precision : {-1000000, -1, 0, 1, 2, 8, 15, 17, 18, 25, 300, 767, 768, 1000}) {
        for (double const value : limits) EXPECT_EQ(written(-value, precision), printed(-value, precision));
        for (int decade = -30; decade < 30; ++decade) {
            double const power = std::stod("1e" + std::to_string(decade));
            for (double const value :
                 {power, std::nextafter(power, 0), std::nextafter(power, 1e99), 9.9999995 * power}) {
                ASSERT_EQ(written(value, precision), printed(value, precision)) << precision;
            }
        }
    }
    EXPECT_EQ(written(0.1, 2147483647), printed(0.1, 1000));
    // The longest number, in every place of a list that is as wide as that precision asks for.
    vector const longest(200, -5e-324);
    wide_string const text = Persistence::to_ascii(longest, 800);
    EXPECT_EQ(text.size(), 200 * (printed(-5e-324, 800).size() + 1) + 1);
}

TEST(TextOfANumber, TellsWhatIsNotFiniteAsTheReaderExpects) {
    double const nan = std::fabs(std::numeric_limits<double>::quiet_NaN());
    struct {
        double value;
        char const* text;
    } const cases[] = {{infinity, "1.#INF"}, {-infinity, "-1.#INF"}, {nan, "1.#QNAN"}, {-nan, "-1.#IND"}};
    for (auto const& c : cases) {
        EXPECT_EQ(written(c.value, 3), c.text);
        EXPECT_TRUE(same(read(c.text), c.value)) << c.text;
    }
}

TEST(NumberOfAText, IsReadByHand) {
    double const nan = domain_error_value;
    struct {
        double value;
        std::vector<char const*> texts;
    } const cases[] = {
        {7, {""}},
        // No number, then a number too small: a power of ten beyond 10^308 is infinite, however it comes
        // about.
        {0, {"abc", " ", ".", "e3", "0x10", "(1", "\xD9\xA1", "25e-309", "2.5e-308", "1e-4294967297"}},
        {-0.0, {"-", "--1", "-0", "-1e-99999999999999999999"}},
        {1, {"1,5", "1#inf", "1 #INF", "1.#", "1.#IN", "1.#QNA"}},
        {1.5,
         {"+1.5x", "1.5.3", "15e-1", " \t\n\v\f\r1.5 3", "\xC2\xA0 1.5",
          "\xE3\x80\x80"
          "1.5"}},
        {2000, {"2e3", "2E+3", "2000e", "2000e-", "2000e 3", "0.0002e7"}},
        {infinity, {"1.#INF", "#INF", "-0#INF", "1e309", "1e99999999999999999999"}},
        {-infinity, {"-1.#INFx", "-1e4294967296"}},
        {nan, {"1.#IND", "-1.#IND", "1.#QNAN", "0e309"}},
        // 2^53 + 1, and what is gathered digit by digit after it.
        {9007199254740992.0, {"9007199254740993"}},
        {90071992547409936.0, {"90071992547409939"}}};
    for (auto const& [expected, texts] : cases) {
        for (char const* const text : texts) {
            double const value = read(text);
            EXPECT_TRUE(same(value, expected) || (value != value && expected != expected))
                << text << ": " << value;
        }
    }
    EXPECT_EQ(Persistence::to_real(nullptr, 7), 7);
    EXPECT_EQ(Persistence::to_real(u"2.5", 7), 2.5);
}

// The recipe, digit by digit, with the power squared together from its lowest bit.
double by_recipe(std::string const& digits, std::string const& fraction, int exponent) {
    double v = 0;
    for (char const c : digits + fraction) v = 10 * v + (c - '0');
    exponent -= static_cast<int>(fraction.size());
    double power = 1, square = 10;
    for (int n = std::abs(exponent); n != 0; n /= 2, square *= square) {
        if (n % 2 != 0) power *= square;
    }
    if (exponent == 0) return v;
    return exponent < 0 ? v / power : v * power;
}

TEST(NumberOfAText, HasTheBitsOfTheRecipeInEveryPlace) {
    seeded_random random(32);
    auto const digits = [&] {
        std::string text(random.below(4) ? random.below(9) : random.below(400), '0');
        for (char& c : text) c = static_cast<char>('0' + random.below(10));
        return text;
    };
    for (int trial = 0; trial < 20000; ++trial) {
        std::string const whole = digits(), fraction = digits();
        int const exponent = random.coin() ? static_cast<int>(random.below(701)) - 350 : 0;
        std::string const text = whole + "." + fraction + (exponent ? "e" + std::to_string(exponent) : "");
        double const expected = by_recipe(whole, fraction, exponent);
        ASSERT_TRUE(same(std::fabs(read(text)), std::fabs(expected))) << text;
        // In a list, where the end of the text is known beforehand.
        vector const list = Persistence::to_vector(to_wide("-" + text + " 5").c_str(), vector());
        ASSERT_TRUE(list.capacity() == 2 && same(std::fabs(list[0]), std::fabs(expected)) && list[1] == 5)
            << text;
    }
}

TEST(NumberOfAText, IsFoundAmongMillionsOfDigits) {
    std::string const zeros(1000000, '0');
    EXPECT_TRUE(std::isnan(read("1" + zeros + "e-1000000")));  // infinite over infinite
    EXPECT_EQ(read("0." + zeros + "5e1000001"), 5);
    EXPECT_EQ(read(zeros + "5"), 5);
    EXPECT_EQ(read("1e" + zeros + "2"), 100);
    EXPECT_EQ(read("1e1" + zeros), infinity);
}

}  // namespace
}  // namespace tvmath
