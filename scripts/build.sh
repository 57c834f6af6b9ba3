#!/bin/sh
# build.sh PRESET [PACKAGE...]: installs what the build needs, configures and builds a preset in build/PRESET.
# Quiet when all is well.
set -eu
cd "$(dirname "$0")/.."
preset=$1
shift
scripts/install_packages.sh g++ cmake ninja-build libutfcpp-dev libexpat1-dev libcli11-dev nlohmann-json3-dev \
    libcairo2-dev libpng-dev pkg-config "$@"

mkdir -p build
log=build/$preset.log
echo "Building (preset $preset, log in $log) ..."
if ! { cmake --preset "$preset" ${BUILD_OPTIONS:-} && cmake --build --preset "$preset" --parallel; } >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    exit 1
fi
