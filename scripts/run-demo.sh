#!/usr/bin/env bash
# Installs what Plyra needs, builds it and renders the demo document: a 48-frame H.264
# movie at 24 frames per second and the frame at time 0.5.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -Wno-dev > /dev/null
cmake --build build -j "$(nproc)" --target plyra-render

mkdir -p out
document=resources/demo/demo.plyra
build/src/plyra-render "$document" -o out/demo.mov --frames 48 --fps 24 --codec avc1
build/src/plyra-render "$document" -o out/demo.jpg --time 0.5
echo "The demo movie is in $(pwd)/out/demo.mov and its middle frame in $(pwd)/out/demo.jpg"
