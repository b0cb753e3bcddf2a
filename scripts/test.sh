#!/bin/sh
# Installs what is missing, builds Vantrel and its tests, and runs every test (unit tests
# offscreen, end-to-end tests under their own Xvfb). VANTREL_SANITIZE=1 builds with ASan/UBSan.
set -eu
cd "$(dirname "$0")/.."
sh scripts/deps.sh
build=build sanitize=OFF
if [ "${VANTREL_SANITIZE:-0}" = 1 ]; then build=build-asan sanitize=ON; fi
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_SANITIZE=$sanitize >/dev/null
cmake --build "$build" -j2
cd "$build"
ctest --output-on-failure -j2
