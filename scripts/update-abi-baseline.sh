#!/usr/bin/env bash
# Records the ABI of the built libispdsp.so as the new baseline,
# abi/libispdsp.abi, which the abi_baseline test (ctest, native build)
# compares every build with.
#
# Run it deliberately, and commit the new baseline with the change that
# caused it:
#   - after compatible additions (new functions or records; the test passes
#     but says so), to record them;
#   - after an intended incompatible change (a record's layout, a removed or
#     changed function), together with a new major version in project() at the
#     top of CMakeLists.txt, which gives the library a new SONAME.
#
#   scripts/update-abi-baseline.sh [BUILD_DIR]    default: build/native
#
# BUILD_DIR must be a native GCC build with debug information (RelWithDebInfo
# or Debug). The script builds the library, shows what changed against the old
# baseline, and writes the new one.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build/native}
baseline=$root/abi/libispdsp.abi
abi=$root/tests/package/abi.sh

[ -f "$build/CMakeCache.txt" ] || { echo "update-abi-baseline: no build in $build" >&2; exit 2; }

cmake --build "$build" --target ispdsp
library=$(find "$build/src" -maxdepth 1 -name 'libispdsp.so.*.*.*' -type f | head -n 1)
[ -n "$library" ] || { echo "update-abi-baseline: no libispdsp.so.X.Y.Z in $build/src" >&2; exit 2; }
# The baseline is the native (build machine) reading of the library.
case $(uname -m) in
x86_64) native_machine=X86-64 ;;
aarch64) native_machine=AArch64 ;;
*) native_machine="" ;;
esac
machine=$(readelf -h "$library" | sed -n 's/^ *Machine: *//p')
if [ -n "$native_machine" ] && [[ "$machine" != *"$native_machine"* ]]; then
    echo "update-abi-baseline: $library is built for $machine: use a native build" >&2
    exit 2
fi
# ... and GCC's description of it (the abi_baseline test runs with GCC only).
if readelf -p .comment "$library" | grep -qi clang; then
    echo "update-abi-baseline: $library is built with clang: use the GCC build" >&2
    exit 2
fi

if [ -f "$baseline" ]; then
    echo "=== Changes against the current baseline"
    set +e
    "$abi" check "$library" "$root/include/ispdsp" "$baseline"
    status=$?
    set -e
    [ "$status" -ne 2 ] && [ "$status" -ne 77 ] || exit "$status"
fi

mkdir -p "$(dirname "$baseline")"
"$abi" dump "$library" "$root/include/ispdsp" "$baseline"
echo "update-abi-baseline: review and commit $(realpath --relative-to="$root" "$baseline")"
