#!/bin/sh
# bench.sh [FILTER]: builds and runs the benchmarks (those whose name matches FILTER) and prints one table of medians.
# A benchmark is named family/who/size; where `who` is not tvmath it is a peer or a yardstick, and the column "/ tvmath"
# is its time divided by tvmath's: above 1, tvmath is faster. "growth" is the power of the size with which the time has
# grown since the size before: 1 is linear.
set -eu
cd "$(dirname "$0")/.."
scripts/install_packages.sh libbenchmark-dev
# The peers, which the benchmarks leave out where they are not there.
for peer in libeigen3-dev libceres-dev libnanoflann-dev libcgal-dev libfmt-dev \
            libfast-float-dev libopencv-imgproc-dev; do
    scripts/install_packages.sh "$peer" || echo "Going on without $peer."
done
BUILD_OPTIONS="-DTVMATH_BUILD_BENCH=ON" scripts/build.sh release

results=build/bench.csv
: >"$results"
for program in build/release/bench/*_bench; do
    "$program" --benchmark_filter="${1:-.}" --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \
        --benchmark_min_time=0.05 --benchmark_report_aggregates_only=true --benchmark_format=csv \
        2>/dev/null | grep '_median"' >>"$results" || true
done
printf '%-30s %10s  %-16s %14s %9s  %s\n' family size who 'median ns' '/ tvmath' growth
LC_ALL=C awk -F, '
    {
        name = $1
        gsub(/"|_median/, "", name)
        split(name, part, "/")
        family = part[1]; who = part[2]; size = part[3]
        time = $4 * ($5 == "ns" ? 1 : $5 == "us" ? 1e3 : $5 == "ms" ? 1e6 : 1e9)
        series = family "/" who
        row[NR] = series "/" size
        median[series, size] = time
        sizes[series] = sizes[series] " " size
    }
    # The size of the series that comes before this one, 0 for none.
    function size_before(series, size,    list, n, i, best) {
        n = split(sizes[series], list, " ")
        best = 0
        for (i = 1; i <= n; ++i) if (list[i] + 0 < size + 0 && list[i] + 0 > best + 0) best = list[i]
        return best
    }
    END {
        for (i = 1; i <= NR; ++i) {
            split(row[i], part, "/")
            family = part[1]; who = part[2]; size = part[3]
            series = family "/" who
            time = median[series, size]
            own = family "/tvmath"
            ratio = who != "tvmath" && ((own, size) in median) ? sprintf("%.2f", time / median[own, size]) : ""
            before = size_before(series, size)
            growth = before > 0 ? sprintf("%.2f", log(time / median[series, before]) / log(size / before)) : ""
            printf "%-30s %10s  %-16s %14.1f %9s  %s\n", family, size, who, time, ratio, growth
        }
    }' "$results" | LC_ALL=C sort -k1,1 -k2,2n -k3,3r
