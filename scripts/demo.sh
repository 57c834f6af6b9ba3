#!/bin/sh
# demo.sh: builds the library and the program and measures a machined plate in two pictures, whose truth is known because
# they are rendered: the lens is calibrated from the picture of a chart, and what comes out stands beside the true values.
# Then it fits features to measured sets that were published with their answers. Pictures and files go to build/demo.
set -eu
cd "$(dirname "$0")/.."
preset=${DEMO_PRESET:-release} # another one where its build is there anyway
BUILD_OPTIONS="-DTVMATH_BUILD_EXAMPLES=ON" scripts/build.sh "$preset"
tvmath=$PWD/build/$preset/tools/tvmath/tvmath
render=$PWD/build/$preset/examples/render_plate
fits=$PWD/build/$preset/examples/reference_fits
data=$PWD/examples/data
mkdir -p build/demo
cd build/demo

echo "A camera looks through a lens that bends the picture by up to 9 pixels: at a chart of 285 dots, at a machined plate"
echo "before a light, and at the same plate in a photograph with noise, shading, scratches and dust."
"$render" .

echo
echo "1. The lens, from the dots of the chart (lens.svg)"
echo
"$tvmath" measure grid.png --config grid.json --centers dots.csv --summary | tail -n 1
"$tvmath" calibrate screen dots.csv grid_nominal.csv --screen-size 1280 1024 -o lens.txt --plot lens.svg |
    grep -E '^  (order|residual|largest)  |^  largest'

echo
echo "2. The plate before the light. Nominal are its true values, and the limits say how near the results must come"
echo
"$tvmath" measure plate.png --config plate_true.json --summary

echo
echo "3. The photograph, beside the same true values"
echo
"$tvmath" measure photo.png --config photo_true.json --summary

echo
echo "4. Both against the drawing, by which one hole was made too large, as sheets and drawn into the pictures"
echo
for picture in plate photo; do
    status=0
    "$tvmath" measure $picture.png --config $picture.json --plot ${picture}_sheet.png --overlay ${picture}_overlay.png \
        --records ${picture}_records.txt --points ${picture}_points.csv >${picture}_report.txt || status=$?
    [ $status -eq 1 ] # out of tolerance
    echo "$picture: $(tail -n 1 ${picture}_report.txt)"
    echo "  build/demo/${picture}_sheet.png ${picture}_overlay.png ${picture}_report.txt ${picture}_points.csv"
done

echo
"$fits" "$data" --summary >fits.txt # fails where one is beyond its bound
echo "5. The fits alone: $(($(grep -c '^|' fits.txt) - 2)) fits of sets with answers known to 25 digits, each within its bound: build/demo/fits.txt,"
echo "and every number: docs/reference-fits.md"
"$tvmath" fit circle "$data/roundness_literature_24.csv" --plot roundness.svg >roundness.txt
"$tvmath" render all -o shapes.svg
echo
echo "A measured roundness profile: build/demo/roundness.svg; a sheet of all shapes: build/demo/shapes.svg"
