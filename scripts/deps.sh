#!/bin/sh
# Installs the Debian 12 packages Vantrel needs to build, run and test.
# Idempotent and non-interactive: packages already present are skipped.
set -eu

PKGS="cmake g++ make pkg-config git clang-format
qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins qt6-svg-dev libqt6svg6 libgl-dev
libplist-dev libplist-utils libxcb1-dev libxcb-keysyms1-dev libxcb-xtest0-dev libxkbcommon-dev
libmagick++-6.q16-dev libzstd-dev zlib1g-dev
imagemagick xclip xdotool xvfb x11-utils x11-xserver-utils xdg-utils poppler-utils
dbus at-spi2-core python3 python3-pyatspi gir1.2-atspi-2.0 python3-pil libimage-exiftool-perl netpbm file trayer
desktop-file-utils appstream lintian dpkg-dev dex libglib2.0-bin
slop maim openbox xcompmgr wmctrl
xdg-desktop-portal python3-dbus python3-dbusmock
sway swaybg xwayland pipewire xdg-desktop-portal-wlr xdg-desktop-portal-gtk grim wtype
kwin-wayland xdg-desktop-portal-kde qtwayland5
fonts-dejavu-core
clang-14 libclang-rt-14-dev"

missing=""
for p in $PKGS; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0

if [ "$(id -u)" != 0 ]; then
  echo "deps.sh: missing packages:$missing (run as root, or install them)" >&2
  exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
# shellcheck disable=SC2086
apt-get install -y -qq --no-install-recommends $missing >/dev/null
