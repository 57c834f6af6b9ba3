#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "containers/parallel_for.h"
#include "support/nurb_curves.h"
#include "support/shape_points.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

using namespace Persistence;

struct with_threads {
    explicit with_threads(unsigned int most) { set_parallel_threads(most); }
    ~with_threads() { set_parallel_threads(0); }
};

// Every reader on one text. A record that comes of it has a text that brings it back.
void read_everything(wide_string const& text) {
    std::vector<point> points;
    from_ascii(text.c_str(), points);
    to_real(text.c_str(), 0);
    to_point(true, text.c_str(), point());
    to_vector(text.c_str(), vector());
    to_spline_to_nurb(text.c_str(), nurb());
    for (unsigned long long type = 1; type <= 0x4000000; type *= 2) {
        std::unique_ptr<Geometry_Description> const record(Geometry_Description::create(type));
        if (!record || !to_description(text.c_str(), *record)) continue;
        wide_string const written = to_ascii(*record);
        bool const bare = type == Number_Description::type_value || type == Rotation_Description::type_value;
        wide_string const inside = bare ? written : token(0, written.c_str());
        if (inside.empty()) continue;  // a list without points is written, but an empty text is no list
        EXPECT_TRUE(to_description(inside.c_str(), *record) && to_ascii(*record) == written) << type;
    }
}

TEST(HostileTexts, AreReadInOneGoAndWithoutDepth) {
    for (char16_t const unit : std::u16string_view(u"([{\")1.e#\t \xFFFF")) {
        wide_string const long_text(100000, unit);
        for (wide_string const& start : {u""_w, u"Bez "_w, u"2 2 "_w}) read_everything(start + long_text);
    }
    wide_string const opened(1000000, u'('), closed(1000000, u')');
    read_everything(opened);
    // Every item leads over all that follow to the number at the end.
    wide_string tabs;
    for (int i = 0; i < 300000; ++i) tabs += u"\t "_w;
    vector const numbers = to_vector((tabs + wide_string(300000, u'0') + u"7 8"_w).c_str(), vector());
    ASSERT_EQ(numbers.capacity(), 300002u);
    EXPECT_TRUE(numbers[0] == 7 && numbers[299999] == 7 && numbers[300001] == 8);
    std::vector<point> points;
    ASSERT_TRUE(from_ascii((opened + u"1 2"_w + closed + u" (3 4)"_w).c_str(), points) && points.size() == 2);
    EXPECT_TRUE(points[1] == at(3, 4));
}

TEST(HostileTexts, ThatWereRecordsOnceDoNoHarm) {
    seeded_random random(51);
    std::vector<wide_string> seeds;
    for (unsigned long long type = 1; type <= 0x4000000; type *= 2) {
        std::unique_ptr<Geometry_Description> const record(Geometry_Description::create(type));
        if (!record) continue;
        if (auto* const nurb_record = dynamic_cast<Nurb_Description*>(record.get()))
            nurb_record->geometry = random_nurb(random);
        record->apply_transform(transform(1, 2, 3).rotate(1, 2, 3));
        seeds.push_back(token(0, to_ascii(*record).c_str()));
    }
    seeds.push_back(u"a b c d 1 (f) g ((1 2 3) (4 5 6)) (1 2) (0 0 2 2) k l"_w);
    seeds.push_back(u"Bez ((1 2) (3 4) (5 6) (7 8))"_w);
    seeds.push_back(u"(1.5 2e300) {1.#INF -1.#IND 3} () (1 2 3)"_w);
    wide_string const units = u"()[]{}\" 0123456789.-+eE#INDQ\t\xFFFF"_w + wide_string(1, 0);
    for (int trial = 0; trial < 6000; ++trial) {
        wide_string text = seeds[random.below(static_cast<unsigned int>(seeds.size()))];
        for (unsigned int n = 1 + random.below(4); n > 0; --n) {
            auto const size = static_cast<unsigned int>(text.size());
            wide_char const unit = units[random.below(static_cast<unsigned int>(units.size()))];
            wide_string const added = random.coin() ? wide_string(random.below(3), unit)
                                                    : text.substr(random.below(size + 1), random.below(9));
            // Now and then all that follows goes.
            text.replace(random.below(size + 1), random.below(20) ? random.below(6) : size, added);
        }
        SCOPED_TRACE(to_utf8(text));
        read_everything(text);
    }
}

TEST(LongTexts, DoNotDependOnTheNumberOfThreads) {
    seeded_random random(52);
    std::vector<point> points;
    std::string expected = "(";
    for (int i = 0; i < 20000; ++i) {
        int const kind = static_cast<int>(random.below(4));
        points.push_back(kind == 0 ? point() : at(random.below(1000), 0.25 * random.below(9)));
        char text[64] = "() ";
        if (kind != 0) std::snprintf(text, sizeof text, "(%g %g) ", points.back().x(), points.back().y());
        expected += text;
    }
    expected.back() = ')';
    for (unsigned int const threads : {1u, 2u, 3u, 7u, 64u}) {
        with_threads const most(threads);
        wide_string const text = to_ascii(points, 6);
        ASSERT_TRUE(to_utf8(text) == expected) << threads;
        std::vector<point> read;
        EXPECT_TRUE(from_ascii(token(0, text.c_str()).c_str(), read) && read == points);
    }
}

TEST(ParallelFor, VisitsEveryElementOnce) {
    with_threads const most(4);
    for (std::size_t const count : {0u, 1u, 5u, 999u, 1000u, 1001u}) {
        for (std::size_t const grain : {0u, 1u, 7u, 333u, 5000u}) {
            std::vector<std::atomic<int>> visits(count);
            parallel_for(count, grain, [&](std::size_t first, std::size_t last) {
                EXPECT_TRUE(first < last && last - first <= std::max<std::size_t>(grain, 1));
                for (; first < last; ++first) ++visits[first];
            });
            for (auto const& n : visits) EXPECT_EQ(n, 1);
        }
    }
}

TEST(ParallelFor, RaisesTheFirstExceptionOfTheRange) {
    with_threads const most(4);
    for (int trial = 0; trial < 20; ++trial) {
        std::atomic<bool> later_failed{false};
        try {
            parallel_for(1000, 1, [&](std::size_t first, std::size_t) {
                if (first < 37) return;
                if (first > 37) later_failed = true;
                while (!later_failed) std::this_thread::yield();
                // Either of the two may be the last to fail.
                if ((first == 37) == (trial % 2 == 0))
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
                throw std::runtime_error(std::to_string(first));
            });
            FAIL();
        } catch (std::runtime_error const& error) {
            EXPECT_STREQ(error.what(), "37");
        }
    }
}

}  // namespace
}  // namespace tvmath
