#!/bin/sh
# bench.sh [FILTER]: builds and runs the benchmarks (those whose name matches FILTER) and prints one table of medians.
# A benchmark is named family/who/size; where `who` is not tvmath it is a peer or a yardstick, and the last column is
# its time divided by tvmath's: above 1, tvmath is faster.
set -eu
cd "$(dirname "$0")/.."
scripts/install_packages.sh libbenchmark-dev
# The peers, which the benchmarks leave out where they are not there.
scripts/install_packages.sh libeigen3-dev libceres-dev || echo "Going on without the peers that are missing."
BUILD_OPTIONS="-DTVMATH_BUILD_BENCH=ON" scripts/build.sh release

results=build/bench.csv
: >"$results"
for program in build/release/bench/*_bench; do
    "$program" --benchmark_filter="${1:-.}" --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \
        --benchmark_min_time=0.05 --benchmark_report_aggregates_only=true --benchmark_format=csv \
        2>/dev/null | grep '_median"' >>"$results" || true
done
printf '%-28s %10s  %-16s %14s  %s\n' family size who 'median ns' '/ tvmath'
LC_ALL=C awk -F, -v OFMT=%.4g '
    {
        name = $1
        gsub(/"|_median/, "", name)
        split(name, part, "/")
        unit = $5
        time = $4 * (unit == "ns" ? 1 : unit == "us" ? 1e3 : unit == "ms" ? 1e6 : 1e9)
        key = part[1] "/" part[3]
        if (!(key in seen)) { seen[key] = ++keys; name_of[keys] = key }
        count[key]++
        who[key, count[key]] = part[2]
        times[key, count[key]] = time
        if (part[2] == "tvmath") own[key] = time
    }
    END {
        for (k = 1; k <= keys; ++k) {
            key = name_of[k]
            split(key, part, "/")
            for (i = 1; i <= count[key]; ++i) {
                ratio = (key in own) && who[key, i] != "tvmath" ? sprintf("%.2f", times[key, i] / own[key]) : ""
                printf "%-28s %10s  %-16s %14.1f  %s\n", part[1], part[2], who[key, i], times[key, i], ratio
            }
        }
    }' "$results" | LC_ALL=C sort -k1,1 -k2,2n -k3,3r
