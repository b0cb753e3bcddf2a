#!/bin/sh
# Installs what is missing, builds Vantrel and its tests, and runs every test (unit tests
# offscreen, end-to-end tests under their own Xvfb). VANTREL_SANITIZE=1 builds with ASan/UBSan.
set -eu
cd "$(dirname "$0")/.."
sh scripts/deps.sh
# The layers and the house format first: either failing names the files.
python3 scripts/check-layers.py
sh scripts/check-format.sh
build=build sanitize=OFF
if [ "${VANTREL_SANITIZE:-0}" = 1 ]; then
  build=build-asan sanitize=ON
  # Qt and fontconfig keep caches to the end of the process: leak reports would be noise.
  export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=0}"
  export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
fi
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_SANITIZE=$sanitize >/dev/null
cmake --build "$build" -j2
cd "$build"
ctest --output-on-failure -j2
