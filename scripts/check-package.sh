#!/bin/sh
# Builds the Debian package, checks it with lintian, installs it into a clean Debian 12 root
# (debootstrap) and starts it there on a virtual display. Slow (a few minutes, downloads the
# base system): run by hand or before a release, not in the test suite.
#   sh scripts/check-package.sh [build folder]
set -eu
cd "$(dirname "$0")/.."
build=${1:-build}
sh scripts/deps.sh
command -v debootstrap >/dev/null 2>&1 || { apt-get update -qq; apt-get install -y -qq debootstrap >/dev/null; }
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 >/dev/null
work=$(mktemp -d /var/tmp/vantrel-package-XXXXXX)
display_pid=""
cleanup() {
  [ -n "$display_pid" ] && kill "$display_pid" 2>/dev/null || true
  for m in proc tmp/.X11-unix; do umount "$work/root/$m" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT
cpack -G DEB -B "$work" --config "$build/CPackConfig.cmake" >/dev/null
deb=$(ls "$work"/vantrel_*.deb)
echo "package: $(basename "$deb")"
lintian --tag-display-limit 0 "$deb" | tee "$work/lintian.txt"
if grep -q '^E:' "$work/lintian.txt"; then echo "lintian reports errors" >&2; exit 1; fi

echo "a clean Debian 12 root..."
debootstrap --variant=minbase bookworm "$work/root" http://deb.debian.org/debian >/dev/null
cp "$deb" "$work/root/tmp/"
mount -t proc proc "$work/root/proc"
chroot "$work/root" sh -c "apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq /tmp/$(basename "$deb")" >/dev/null
echo "installed; starting it"
# The host's virtual display, reached through its socket.
Xvfb :97 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
display_pid=$!
sleep 1
mkdir -p "$work/root/tmp/.X11-unix"
mount --bind /tmp/.X11-unix "$work/root/tmp/.X11-unix"
set +e
chroot "$work/root" env DISPLAY=:97 HOME=/root timeout 4 vantrel
status=$?
set -e
# timeout's 124: the program was still running, resident, when it was stopped.
if [ "$status" != 124 ]; then echo "the installed program did not stay up (status $status)" >&2; exit 1; fi
grep -q "com.Morlane.Vantrel.desktop" "$work/root/var/lib/dpkg/info/vantrel.list"
echo "package check passed: builds, lintian clean of errors, installs into Debian 12 and starts"
