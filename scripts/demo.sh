#!/bin/sh
# demo.sh: builds the library and the program, fits features to measured sets that were published with their answers,
# shows how near both are, and draws a sheet of all shapes.
set -eu
cd "$(dirname "$0")/.."
scripts/reference_table.sh --summary
echo
echo "The worst difference of each fit from answers known to 25 digits, relative to the feature's size, and what it may be"
echo "at most. Every number: docs/reference-fits.md"

program=build/release/tools/tvmath/tvmath
echo
echo "Twenty-four points of a measured roundness profile:"
"$program" fit circle examples/data/roundness_literature_24.csv --plot build/roundness.svg
echo
echo "The points with their residuals enlarged: build/roundness.svg"
"$program" render all -o build/shapes.svg
echo "A sheet of all shapes, drawn by the program: build/shapes.svg"
