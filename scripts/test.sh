#!/usr/bin/env bash
# Builds and tests ispdsp twice: natively (build/native) and for AArch64
# (build/aarch64, tests under qemu). Prints both summaries; exits non-zero when
# a configure, build or test step fails in either.
# Then the robustness runs: sanitize (build/sanitize, every test under
# AddressSanitizer and UndefinedBehaviorSanitizer), tsan (build/tsan, the
# concurrency tests under ThreadSanitizer, with the forbidden overlap as the
# negative case) and fuzz (build/fuzz, each libFuzzer
# target for ISPDSP_FUZZ_SECONDS, default 15 s; scripts/fuzz.sh).
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${ISPDSP_JOBS:-2}
build_type=${ISPDSP_BUILD_TYPE:-RelWithDebInfo}

bash "$root/scripts/setup.sh" --tests || exit 1

declare -A summary
status=0

# run_flavour NAME [cmake configure arguments...]
run_flavour() {
    local name=$1
    shift
    local dir="$root/build/$name"
    local log="$dir/ctest.log"
    echo "=== $name: configure and build in $dir"
    if ! cmake -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE="$build_type" -DISPDSP_LINE_TABLES_ONLY=ON "$@"; then
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

# Install, CMake/pkg-config consumer and Debian packages of the built trees
# (scripts/package-check.sh); a flavour that did not build is left out.
built() { [[ "${summary[$1]:-}" != *"configure FAILED"* && "${summary[$1]:-}" != *"build FAILED"* ]]; }
if built native; then
    echo "=== package: install, out-of-tree consumer, Debian packages"
    aarch64_dir="$root/build/aarch64"
    built aarch64 || aarch64_dir="$root/build/aarch64-not-built"
    bash "$root/scripts/package-check.sh" "$root/build/native" "$aarch64_dir" 2>&1 | tee "$root/build/package-check.log"
    [ "${PIPESTATUS[0]}" -eq 0 ] || status=1
    package_summary=$(tail -n 1 "$root/build/package-check.log")
else
    package_summary="package-check: not run (the native build failed)"
fi

# Every test under AddressSanitizer and UndefinedBehaviorSanitizer. The tools
# and benchmarks are left out and the build is unoptimised (the later
# CMAKE_BUILD_TYPE wins): the instrumented build takes less than half the time.
started=$SECONDS
run_flavour sanitize -DCMAKE_BUILD_TYPE=Debug -DISPDSP_SANITIZE=address,undefined \
    -DISPDSP_BUILD_TOOLS=OFF -DISPDSP_BUILD_BENCH=OFF || status=1
summary[sanitize]+=" ($((SECONDS - started))s)"

# ThreadSanitizer: the library and the robust suite's concurrency tests only.
run_tsan() {
    local dir="$root/build/tsan"
    echo "=== tsan: configure and build in $dir"
    if ! cmake -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE="$build_type" -DISPDSP_SANITIZE=thread -DISPDSP_LINE_TABLES_ONLY=ON \
            -DISPDSP_BUILD_TOOLS=OFF -DISPDSP_BUILD_BENCH=OFF; then
        summary[tsan]="configure FAILED"
        return 1
    fi
    if ! cmake --build "$dir" -j "$jobs" --target ispdsp_robust_tests; then
        summary[tsan]="build FAILED"
        return 1
    fi
    ctest --test-dir "$dir" --output-on-failure -R '^robust_concurrency_' --timeout 600 2>&1 | tee "$dir/ctest.log"
    local rc=${PIPESTATUS[0]}
    summary[tsan]=$(sed -n -e '/tests passed/p' -e '/^The following tests FAILED/,$p' "$dir/ctest.log")
    return "$rc"
}
started=$SECONDS
run_tsan || status=1
summary[tsan]+=" ($((SECONDS - started))s)"

# Each fuzz target for a short fixed time (the long run: scripts/fuzz.sh 600).
started=$SECONDS
mkdir -p "$root/build"
bash "$root/scripts/fuzz.sh" "${ISPDSP_FUZZ_SECONDS:-15}" 2>&1 | tee "$root/build/fuzz.log"
[ "${PIPESTATUS[0]}" -eq 0 ] || status=1
fuzz_summary=$(sed -n '/=== fuzz: summary/,$p' "$root/build/fuzz.log" | tail -n +2)
summary[fuzz]="${fuzz_summary:-fuzz: not run to the end, see build/fuzz.log} ($((SECONDS - started))s)"

echo
echo "=== Summary"
for name in native aarch64; do
    echo "--- $name"
    echo "${summary[$name]:-not run}"
done
echo "--- package"
echo "${package_summary:-not run}"
for name in sanitize tsan fuzz; do
    echo "--- $name"
    echo "${summary[$name]:-not run}"
done
[ "$status" -eq 0 ] && echo "ALL PASSED" || echo "FAILED"
exit "$status"
