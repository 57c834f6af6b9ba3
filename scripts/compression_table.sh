#!/bin/sh
# compression_table.sh: compresses the measured lists of examples/data by every method and rewrites the table of ratios
# and errors in docs/persistence.md.
set -eu
cd "$(dirname "$0")/.."
BUILD_OPTIONS="-DTVMATH_BUILD_EXAMPLES=ON" scripts/build.sh release
table=$(mktemp)
page=$(mktemp)
trap 'rm -f "$table" "$page"' EXIT
cd examples/data
../../build/release/examples/compression_table own_roundness_*.csv roundness_*.csv lsq_circle_imagingbook_pixels.csv \
    own_lsq_*.csv mz_line_*.csv >"$table"
cd ../..
awk -v table="$table" '
    /<!-- compression table: end -->/ { inside = 0 }
    !inside { print }
    /<!-- compression table: begin/ { inside = 1; while ((getline line < table) > 0) print line }
' docs/persistence.md >"$page"
cat "$page" >docs/persistence.md
