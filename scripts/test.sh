#!/usr/bin/env bash
# Installs what Plyra needs, builds it and runs the whole test suite: the Release build,
# then the tests of parsers under AddressSanitizer + UndefinedBehaviorSanitizer and the
# tests of thread code under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=$(nproc)
export QT_QPA_PLATFORM=offscreen
# Keep every test run away from the user's own settings.
export PLYRA_DEFAULTS_FILE="${TMPDIR:-/tmp}/plyra-test-defaults-$$.ini"
trap 'rm -f "$PLYRA_DEFAULTS_FILE"' EXIT

configure() { # build-dir, extra cmake arguments...
    local dir=$1
    shift
    cmake -S . -B "$dir" -G Ninja -Wno-dev -DPLYRA_PRECOMPILE_HEADERS=ON "$@" > /dev/null
}

echo "== Release build and tests"
configure build -DCMAKE_BUILD_TYPE=Release
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs" --timeout 300

# Test suites of the readers of files (property lists, colour archives, packages, fuzz
# regressions) and of the code that runs on several threads.
parsers='HostileFile|PackageHostile|FolderCarryOver|LargeImage|PropertyList|OpenStep|ColorArchive|ArchivedColor|FuzzRegression|DocumentPackage|TiffIo|MorphLineStoredForm|StringTable|MovieFile|CliOptions|PlyraRender|FaceNetworks|FaceImageSource|Autosave|MovieOutput'
threads='FrameConversionQueue|ConditionLock|MorphCalculationJob|Morpher|ImageRenderer|AsyncMovieWriter|FramePixels|FrameRender|MovieRender|SampleCoords|Autosave'
sanitized_targets=(platform_tests model_tests recovery_tests engine_tests render_tests cli_tests face_tests)

echo "== AddressSanitizer + UndefinedBehaviorSanitizer: parsers"
configure build-asan -DCMAKE_BUILD_TYPE=Debug -DPLYRA_SANITIZE=address -DPLYRA_BUILD_GUI=OFF
cmake --build build-asan -j "$jobs" --target "${sanitized_targets[@]}"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build-asan --output-on-failure -j "$jobs" --timeout 600 -R "$parsers"

echo "== ThreadSanitizer: threads"
configure build-tsan -DCMAKE_BUILD_TYPE=Debug -DPLYRA_SANITIZE=thread -DPLYRA_BUILD_GUI=OFF
cmake --build build-tsan -j "$jobs" --target "${sanitized_targets[@]}"
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
    ctest --test-dir build-tsan --output-on-failure -j "$jobs" --timeout 600 -R "$threads"
