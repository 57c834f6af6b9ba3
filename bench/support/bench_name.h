#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

inline namespace tvmath {

/// Registers `run` as family/who/size for each size. `who` is tvmath, a peer library, or a yardstick: the
/// table of medians sets its time beside that of tvmath. What takes many seconds asks for less `repetitions`
/// than the others; 0 leaves them to the command line.
inline void register_sizes(std::string const& family, std::string const& who, void (*run)(benchmark::State&),
                           std::vector<std::int64_t> const& sizes, int repetitions = 0) {
    for (std::int64_t const size : sizes) {
        auto* const bench = benchmark::RegisterBenchmark((family + "/" + who).c_str(), run)->Arg(size);
        if (repetitions > 0) bench->Repetitions(repetitions);
    }
}

}  // namespace tvmath
