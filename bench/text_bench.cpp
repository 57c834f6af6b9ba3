#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string>

#if __has_include(<fmt/format.h>)
#define FMT_HEADER_ONLY
#include <fmt/format.h>
#define HAS_FMT
#endif
#if __has_include(<fast_float/fast_float.h>)
#include <fast_float/fast_float.h>
#define HAS_FAST_FLOAT
#endif

#include "containers/parallel_for.h"
#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

// As records are written. The peers write and read bytes, half of the text.
constexpr int precision = 8;
constexpr std::size_t number_room = 32;

void count_points(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void write_points(benchmark::State& state, unsigned int threads) {
    auto const points = space_cloud(state.range(0));
    set_parallel_threads(threads);
    for (auto _ : state) benchmark::DoNotOptimize(Persistence::to_ascii(points, precision).data());
    set_parallel_threads(0);
    count_points(state);
}
void write_points_alone(benchmark::State& state) {
    write_points(state, 1);
}
void write_points_by_two(benchmark::State& state) {
    write_points(state, 2);
}

// `print` writes a point at its first argument and returns the end.
template <class printer>
void write_points_by(benchmark::State& state, printer const& print) {
    auto const points = space_cloud(state.range(0));
    for (auto _ : state) {
        std::string text;
        char buffer[4 * number_room];
        for (point const& p : points) text.append(buffer, print(buffer, p));
        benchmark::DoNotOptimize(text.data());
    }
    count_points(state);
}

void write_points_snprintf(benchmark::State& state) {
    write_points_by(state, [](char* to, point const& p) {
        return to + std::snprintf(to, 4 * number_room, "(%.*lg %.*lg %.*lg) ", precision, p.x(), precision,
                                  p.y(), precision, p.z());
    });
}
void write_points_to_chars(benchmark::State& state) {
    write_points_by(state, [](char* to, point const& p) {
        for (unsigned int i = 1; i < 4; ++i) {
            *to++ = ' ';
            to = std::to_chars(to, to + number_room, p[i], std::chars_format::general, precision).ptr;
        }
        return to;
    });
}
#ifdef HAS_FMT
void write_points_fmt(benchmark::State& state) {
    write_points_by(state, [](char* to, point const& p) {
        return fmt::format_to(to, "({:.{}g} {:.{}g} {:.{}g}) ", p.x(), precision, p.y(), precision, p.z(),
                              precision);
    });
}
#endif

// A list without its brackets.
wide_string list_text(benchmark::State& state) {
    wide_string text = Persistence::to_ascii(space_cloud(state.range(0)), precision);
    text.pop_back();
    return text.substr(1);
}

void read_points(benchmark::State& state) {
    wide_string const text = list_text(state);
    std::vector<point> points;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Persistence::from_ascii(text.c_str(), points));
        benchmark::DoNotOptimize(points.data());
    }
    count_points(state);
}

void read_points_by_tokens(benchmark::State& state) {
    wide_string const text = list_text(state);
    for (auto _ : state) {
        Persistence::tokens const tokens(text.c_str());
        std::vector<point> points;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            points.push_back(Persistence::to_point(true, tokens.token(i, text.c_str()).c_str(), point()));
        }
        benchmark::DoNotOptimize(points.data());
    }
    count_points(state);
}

// `parse` returns the end of the number at its first argument.
template <class parser>
void read_points_with(benchmark::State& state, parser const& parse) {
    std::string numbers = to_utf8(list_text(state));
    for (char& c : numbers) c = c == '(' || c == ')' ? ' ' : c;
    char const* const end = numbers.data() + numbers.size();
    std::vector<point> points;
    for (auto _ : state) {
        points.clear();
        char const* at = numbers.data();
        for (std::int64_t n = state.range(0); n > 0; --n) {
            double x[3];
            for (double& number : x) {
                while (*at == ' ') ++at;
                at = parse(at, end, number);
            }
            points.emplace_back(true, x[0], x[1], x[2]);
        }
        benchmark::DoNotOptimize(points.data());
    }
    count_points(state);
}

void read_points_strtod(benchmark::State& state) {
    read_points_with(state, [](char const* at, char const*, double& number) {
        char* behind;
        number = std::strtod(at, &behind);
        return behind;
    });
}
#ifdef HAS_FAST_FLOAT
void read_points_fast_float(benchmark::State& state) {
    read_points_with(state, [](char const* at, char const* end, double& number) {
        return fast_float::from_chars(at, end, number).ptr;
    });
}
#endif

void read_vector(benchmark::State& state) {
    vector numbers(static_cast<unsigned int>(state.range(0)));
    for (unsigned int i = 0; i < numbers.capacity(); ++i) numbers(i) = 100 * std::sin(i);
    wide_string text = Persistence::to_ascii(numbers, precision);
    text.pop_back();
    for (auto _ : state) {
        vector const read = Persistence::to_vector(text.c_str() + 1, vector());
        benchmark::DoNotOptimize(read.begin());
    }
    count_points(state);
}

int const registered = [] {
    // 100: an outline, from the stack; 5e5: a scan. 1e4 to 1e6 show that reading grows as the text does.
    std::vector<std::int64_t> const sizes = {100, 500000}, growth = {100, 10000, 100000, 500000, 1000000};
    register_sizes("text_write", "tvmath", write_points_alone, sizes);
    register_sizes("text_write", "tvmath_two_threads", write_points_by_two, sizes);
    register_sizes("text_write", "snprintf", write_points_snprintf, sizes);
    register_sizes("text_write", "to_chars", write_points_to_chars, sizes);
    register_sizes("text_read", "tvmath", read_points, growth);
    register_sizes("text_read", "tvmath_tokens", read_points_by_tokens, growth);
    register_sizes("text_read", "strtod", read_points_strtod, sizes);
    register_sizes("text_read_vector", "tvmath", read_vector, sizes);
#ifdef HAS_FMT
    register_sizes("text_write", "fmt", write_points_fmt, sizes);
#endif
#ifdef HAS_FAST_FLOAT
    register_sizes("text_read", "fast_float", read_points_fast_float, sizes);
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
