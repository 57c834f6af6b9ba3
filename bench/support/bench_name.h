#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

inline namespace tvmath {

/// Registers `run` as family/who/size for each size. `who` is tvmath, a peer library, or a yardstick: the
/// table of medians sets its time beside that of tvmath.
inline void register_sizes(std::string const& family, std::string const& who, void (*run)(benchmark::State&),
                           std::vector<std::int64_t> const& sizes) {
    for (std::int64_t const size : sizes) {
        benchmark::RegisterBenchmark((family + "/" + who).c_str(), run)->Arg(size);
    }
}

}  // namespace tvmath
