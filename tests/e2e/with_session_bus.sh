#!/bin/sh
# Runs an end-to-end test inside its own session bus (AT-SPI needs the test and the program on
# one bus), with a private home and runtime folder so the bus services touch no real files.
set -eu
tmp=$(mktemp -d "${TMPDIR:-/tmp}/vantrel-bus.XXXXXX")
trap 'rm -rf "$tmp"' EXIT
mkdir -m 700 "$tmp/runtime"
export HOME="$tmp" XDG_RUNTIME_DIR="$tmp/runtime" GSETTINGS_BACKEND=memory
set +e
dbus-run-session -- "$@" >"$tmp/out" 2>&1
status=$?
# The bus daemon's own chatter (fd limits, activations) is noise here.
grep -v -e '^dbus-daemon\[' -e 'SpiRegistry daemon' "$tmp/out"
exit $status
