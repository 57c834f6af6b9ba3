#!/bin/sh
# fuzz.sh [SECONDS]: builds the fuzzers with clang and runs each for so long (20 s). Says so and ends where there is no
# clang with libFuzzer.
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-20}
probe=$(mktemp -d)
trap 'rm -rf "$probe"' EXIT
echo 'extern "C" int LLVMFuzzerTestOneInput(unsigned char const*, unsigned long) { return 0; }' >"$probe/probe.cpp"
if ! clang++ -fsanitize=fuzzer "$probe/probe.cpp" -o "$probe/probe" 2>/dev/null; then
    echo "No fuzzing: there is no clang with libFuzzer here."
    exit 0
fi
scripts/build.sh fuzz
for fuzzer in build/fuzz/fuzz/*_fuzz; do
    echo "Fuzzing with $(basename "$fuzzer") for $seconds s ..."
    log=build/fuzz-$(basename "$fuzzer").log
    if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -artifact_prefix="$probe/" "$probe" >"$log" 2>&1; then
        tail -n 40 "$log" >&2
        exit 1
    fi
done
