#!/usr/bin/env bash
# Fetches the npm package that holds the face networks (@mediapipe/face_mesh, Apache-2.0)
# into the download cache, once; the build converts its networks to ONNX. Without npm or
# the registry the build goes on without face lines, so nothing here fails the set-up.
# PLYRA_NO_FACE_MODEL=1 skips the fetch (an offline machine then waits for nothing).
set -uo pipefail

version=0.4.1657299874
sha256=c08a7e0742a326285da666cf81d77c8b6f3a181a2ee948cadaf166008e0d3bc7
cache="${PLYRA_DOWNLOAD_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/plyra}"
package="$cache/mediapipe-face_mesh-$version.tgz"
# Offline, npm would retry with growing pauses for minutes; one attempt of at most 30 s
# per request and a minute in all is enough for a 10 MB package.
overall_timeout=60

verified() { echo "$sha256  $1" | sha256sum --check --status; }

[[ -f $package ]] && verified "$package" && exit 0
if [[ ${PLYRA_NO_FACE_MODEL:-} == 1 ]]; then
    echo "fetch-face-model: PLYRA_NO_FACE_MODEL=1; building without face lines" >&2
    exit 0
fi
if ! command -v npm > /dev/null; then
    echo "fetch-face-model: npm is not installed; building without face lines" >&2
    exit 0
fi
mkdir -p "$cache"
work=$(mktemp -d "$cache/fetch.XXXXXX")
trap 'rm -rf "$work"' EXIT
if (cd "$work" && timeout "$overall_timeout" npm pack --silent --fetch-retries=0 --fetch-timeout=30000 \
        "@mediapipe/face_mesh@$version" > /dev/null) \
    && verified "$work/mediapipe-face_mesh-$version.tgz"; then
    mv "$work/mediapipe-face_mesh-$version.tgz" "$package"
    echo "fetch-face-model: fetched $package; a build folder configured before needs 'cmake' run again" >&2
else
    echo "fetch-face-model: could not fetch @mediapipe/face_mesh@$version; building without face lines" >&2
fi
exit 0
