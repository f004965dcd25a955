#!/usr/bin/env bash
# The Debian package, checked without installing it: CPack builds it from the build folder,
# it is unpacked into a scratch folder, and the unpacked plyra-render renders the demo
# document. Its name, its declared dependencies and its file list are checked too. A build
# with the face networks must ship them with their licence, and the unpacked plyra-render
# must find them; one without must say that face lines are not available.
#   deb_package_test.sh BUILD-DIR with-face-networks|without-face-networks
set -euo pipefail
build=$1
face_networks=$2
photos=$(cd "$(dirname "$0")/../data/photos" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$scratch/out" > "$scratch/cpack.log" 2>&1) || { cat "$scratch/cpack.log"; fail "cpack"; }
debs=("$scratch"/out/plyra_*.deb)
[[ ${#debs[@]} -eq 1 && -f ${debs[0]} ]] || fail "no single package in $(ls "$scratch/out")"
deb=${debs[0]}
[[ $(basename "$deb") =~ ^plyra_[0-9]+\.[0-9]+\.[0-9]+_amd64\.deb$ ]] || fail "package name $(basename "$deb")"

files=$(dpkg-deb -c "$deb" | awk '{print $6}')
expected=(
  ./usr/bin/plyra ./usr/bin/plyra-render
  ./usr/share/applications/org.plyra.Plyra.desktop
  ./usr/share/metainfo/org.plyra.Plyra.metainfo.xml
  ./usr/share/mime/packages/org.plyra.Plyra.xml
  ./usr/share/icons/hicolor/scalable/apps/org.plyra.Plyra.svg
  ./usr/share/icons/hicolor/48x48/apps/org.plyra.Plyra.png
  ./usr/share/icons/hicolor/scalable/mimetypes/application-x-plyra-document.svg
  ./usr/share/plyra/translations/plyra_app_de.qm
  ./usr/share/plyra/translations/plyra_core_de.qm
  ./usr/share/doc/plyra/help/en/index.html ./usr/share/doc/plyra/help/de/index.html
  ./usr/share/plyra/kernels/sampleCoords.cikernel ./usr/share/plyra/Errors.strings
  ./usr/share/plyra/demo/demo.plyra/info.plist
  ./usr/share/doc/plyra/copyright
)
face=(./usr/share/plyra/face/face_detection_short_range.onnx ./usr/share/plyra/face/face_landmark.onnx
  ./usr/share/plyra/face/LICENSE)
if [[ $face_networks == with-face-networks ]]; then
  expected+=("${face[@]}")
elif grep -q '/face/' <<< "$files"; then
  fail "face networks in the package of a build without them"
fi
for path in "${expected[@]}"; do
  grep -qxF "$path" <<< "$files" || fail "$path is not in the package"
done
# Nothing of the build or the tests goes in.
if grep -E '_tests$|/include/|\.a$|/tests?/' <<< "$files"; then fail "build or test files in the package"; fi

depends=$(dpkg-deb -f "$deb" Depends)
names=$(sed 's/([^)]*)//g; s/,/\n/g' <<< "$depends" | tr -d ' ')
for package in libc6 libstdc++6 libqt6core6 libqt6gui6 libqt6widgets6 libqt6network6 libqt6svg6 \
    libavcodec59 libavformat59 libswscale6 libtiff6 libplist3 libpoppler-qt6-3 libtbb12 libhwy1 \
    qt6-image-formats-plugins; do
  grep -qxF "$package" <<< "$names" || fail "Depends lacks $package: $depends"
done

# The unpacked programs run from where they lie, with their own data.
root=$scratch/root
dpkg-deb -x "$deb" "$root"
env -u PLYRA_KERNEL_DIR -u PLYRA_RESOURCE_DIR "$root/usr/bin/plyra-render" "$root/usr/share/plyra/demo/demo.plyra" \
    -o "$scratch/middle.png" --size 96x64 --quiet || fail "the unpacked plyra-render did not render the demo"
[[ $(head -c 8 "$scratch/middle.png" | od -An -tx1 | tr -d ' \n') == 89504e470d0a1a0a ]] || fail "no PNG written"
env -u PLYRA_KERNEL_DIR "$root/usr/bin/plyra-render" "$root/usr/share/plyra/demo/demo.plyra" --info > "$scratch/info.json"
grep -q '"loaded": true' "$scratch/info.json" || fail "the demo's images did not load: $(cat "$scratch/info.json")"

# Face lines from the unpacked tree: the networks lie in its share/plyra/face.
faces=(--new "$photos/ast_face.png" "$photos/hopper_face.png" -o "$scratch/faces.plyra" --face-lines --quiet)
if [[ $face_networks == with-face-networks ]]; then
  env -u PLYRA_FACE_MODEL_DIR "$root/usr/bin/plyra-render" "${faces[@]}" || fail "the unpacked plyra-render made no face lines"
  lines=$("$root/usr/bin/plyra-render" "$scratch/faces.plyra" --info | grep -c '"startPoints"' || true)
  [[ $lines -eq 39 ]] || fail "the unpacked plyra-render made $lines face lines, not 39"
else
  message=$(env -u PLYRA_FACE_MODEL_DIR "$root/usr/bin/plyra-render" "${faces[@]}" 2>&1) && fail "--face-lines succeeded without networks"
  grep -q "face lines are not available in this build" <<< "$message" || fail "--face-lines said: $message"
fi
echo "$(basename "$deb"): $(wc -l <<< "$files") entries; Depends: $depends"
