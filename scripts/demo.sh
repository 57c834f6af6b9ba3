#!/bin/sh
# demo.sh: builds the library and the program, fits features to measured sets that were published with their answers,
# shows both side by side, and draws a sheet of all shapes.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh release
scripts/show_published_sets.sh build/release/tools/tvmath/tvmath

build/release/tools/tvmath/tvmath render all -o build/shapes.svg
echo
echo "A sheet of all shapes, drawn by the program: build/shapes.svg"
