#!/usr/bin/env bash
# Builds and tests ispdsp twice: natively (build/native) and for AArch64
# (build/aarch64, tests under qemu). Prints both summaries; exits non-zero when
# a configure, build or test step fails in either.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${ISPDSP_JOBS:-2}
build_type=${ISPDSP_BUILD_TYPE:-RelWithDebInfo}

bash "$root/scripts/setup.sh" || exit 1

declare -A summary
status=0

# run_flavour NAME [cmake configure arguments...]
run_flavour() {
    local name=$1
    shift
    local dir="$root/build/$name"
    local log="$dir/ctest.log"
    echo "=== $name: configure and build in $dir"
    if ! cmake -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE="$build_type" "$@"; then
        summary[$name]="configure FAILED"
        return 1
    fi
    if ! cmake --build "$dir" -j "$jobs"; then
        summary[$name]="build FAILED"
        return 1
    fi
    echo "=== $name: ctest"
    ctest --test-dir "$dir" --output-on-failure -j "$jobs" --timeout 600 2>&1 | tee "$log"
    local rc=${PIPESTATUS[0]}
    summary[$name]=$(sed -n -e '/tests passed/p' -e '/^The following tests FAILED/,$p' "$log")
    return "$rc"
}

run_flavour native || status=1
run_flavour aarch64 -DCMAKE_TOOLCHAIN_FILE="$root/cmake/aarch64-linux-gnu.cmake" || status=1

echo
echo "=== Summary"
for name in native aarch64; do
    echo "--- $name"
    echo "${summary[$name]:-not run}"
done
[ "$status" -eq 0 ] && echo "ALL PASSED" || echo "FAILED"
exit "$status"
