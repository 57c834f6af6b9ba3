#!/bin/sh
# demo.sh: builds the library and the program, fits features to measured sets that were published with their answers,
# and shows both side by side.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh release
scripts/show_published_sets.sh build/release/tools/tvmath/tvmath
