#!/usr/bin/env bash
# Brings the translation sources in resources/translations up to date with the code: new
# texts are added unfinished, texts that the code no longer has are dropped. Locations are
# left out, so that a change to one source file touches only the texts it changes.
#   --check   changes nothing; fails, naming them, when a text has no finished translation
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)
target=resources/translations
if [[ ${1:-} == --check ]]; then
    target=$(mktemp -d)
    trap 'rm -rf "$target"' EXIT
    cp resources/translations/*.ts "$target/"
fi

update() { # area, source folders or files...
    local area=$1
    shift
    "$lupdate" -silent -locations none -no-obsolete -I src "$@" -ts "$target/plyra_${area}_de.ts"
}

update app src/app
update editor src/editor
update inspector src/inspector
update render src/render/windows
update widgets src/widgets
# What the layers below the windows tell the user: why a file cannot be read or saved. The
# plain C++ code marks its texts with userText(), which reads like translate().
update core -tr-function-alias translate+=userText src/model src/platform src/render/*.h src/render/*.cpp

if [[ ${1:-} == --check ]]; then
    missing=$(grep -B2 'type="unfinished"' "$target"/*.ts | grep -o '<source>.*</source>' || true)
    if [[ -n $missing ]]; then
        echo "Texts without a German translation (run scripts/update-translations.sh and translate them):"
        echo "$missing"
        exit 1
    fi
    echo "Every text has a German translation."
fi
