#!/bin/sh
# reference_table.sh [--summary]: fits all sets with known answers by every fit that applies and rewrites
# docs/reference-fits.md with each answer, its reference and their difference; with --summary it prints the worst of each
# fit instead. Fails when a difference is above its bound.
set -eu
cd "$(dirname "$0")/.."
BUILD_OPTIONS="-DTVMATH_BUILD_EXAMPLES=ON" scripts/build.sh release
program=build/release/examples/reference_fits
if [ "${1:-}" = "--summary" ]; then
    exec "$program" examples/data --summary
fi
page=$(mktemp)
trap 'rm -f "$page"' EXIT
"$program" examples/data >"$page" || { grep EXCEEDED "$page" >&2; exit 1; }
cat "$page" >docs/reference-fits.md
