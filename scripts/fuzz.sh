#!/usr/bin/env bash
# Builds the libFuzzer targets with clang, address and undefined-behaviour
# sanitizers (build/fuzz) and runs each for a fixed time (ISPDSP_JOBS targets
# at a time, default 2), starting from the
# committed seeds in fuzz/corpus/<target>/. Prints the executions per target;
# exits non-zero when a build fails or a target finds a crash, a leak or a
# failed check (the reproducer lands in build/fuzz/artifacts/).
#
# Usage: scripts/fuzz.sh [SECONDS_PER_TARGET] [TARGET...]
#   scripts/fuzz.sh            15 s per target (the CI run)
#   scripts/fuzz.sh 600        the long run
#   scripts/fuzz.sh 60 rlr     one target
# Targets: param_file table_block registration nir_curve rlr console (the library's inputs),
# tuning_codec scenario console_line file_kind (the host tools' inputs).
# New inputs that the run finds go to build/fuzz/corpus/<target>/, never into
# the source tree; copy the interesting ones to fuzz/corpus/ by hand.
# ISPDSP_FUZZ_BUILD_DIR overrides the build folder.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
seconds=${1:-15}
shift || true
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(param_file table_block registration nir_curve rlr console
                                      tuning_codec scenario console_line file_kind)
# A source grows into whole tables quickly; a few kilobytes reach every part of the codec
# and keep each round trip short.
declare -A target_options=([tuning_codec]="-max_len=2048")
jobs=${ISPDSP_JOBS:-2}
dir=${ISPDSP_FUZZ_BUILD_DIR:-$root/build/fuzz}

case $seconds in
    '' | *[!0-9]*) echo "fuzz: SECONDS_PER_TARGET must be a whole number, not '$seconds'" >&2; exit 2 ;;
esac
for tool in clang clang++; do
    command -v "$tool" >/dev/null || { echo "fuzz: $tool not found (install clang and libclang-rt-14-dev)" >&2; exit 1; }
done

echo "=== fuzz: configure and build in $dir"
mkdir -p "$dir"
if ! CC=clang CXX=clang++ cmake -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DISPDSP_LINE_TABLES_ONLY=ON \
        -DISPDSP_BUILD_FUZZ=ON -DISPDSP_SANITIZE=address,undefined \
        -DISPDSP_BUILD_TESTS=OFF -DISPDSP_BUILD_TOOLS=ON -DISPDSP_BUILD_BENCH=OFF >"$dir/configure.log" 2>&1; then
    cat "$dir/configure.log"
    echo "fuzz: configure FAILED"
    exit 1
fi
build_targets=()
for target in "${targets[@]}"; do build_targets+=(--target "fuzz_$target"); done
if ! cmake --build "$dir" -j "$jobs" "${build_targets[@]}"; then
    echo "fuzz: build FAILED"
    exit 1
fi

mkdir -p "$dir/artifacts"
# fuzz_one TARGET: runs one target, leaves its summary line in $dir/TARGET.summary; exit status of the run.
fuzz_one() {
    local target=$1
    local seeds="$root/fuzz/corpus/$target"
    local work="$dir/corpus/$target"
    local log="$dir/$target.log"
    mkdir -p "$work"
    rm -f "$dir/$target.summary"
    # Leaks are checked per input by LeakSanitizer and by the in-memory host;
    # -timeout catches a hang of one input. The driver's log lines on every
    # refused input would fill gigabytes over a long run: the target's own
    # stdout and stderr are closed (-close_fd_mask=3; libFuzzer's and the
    # sanitizers' reports still come through). Run an artifact to see its lines.
    ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1} UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1} \
        "$dir/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -close_fd_mask=3 ${target_options[$target]:-} \
        -print_final_stats=1 -artifact_prefix="$dir/artifacts/$target-" "$work" "$seeds" >"$log" 2>&1
    local rc=$?
    local runs
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    runs=${runs:-0}
    if [ "$rc" -ne 0 ]; then
        printf '%-13s FAILED (exit %d) after %s executions; see %s\n' "$target" "$rc" "$runs" "$log" >"$dir/$target.summary"
    else
        printf '%-13s %9s executions in %ss, %s corpus units\n' "$target" "$runs" "$seconds" "$(ls "$work" | wc -l)" \
            >"$dir/$target.summary"
    fi
    return "$rc"
}

# Each target is one process on one core: $jobs of them at a time.
status=0
started=$SECONDS
running=0
for target in "${targets[@]}"; do
    if [ "$running" -ge "$jobs" ]; then
        wait -n || status=1
        running=$((running - 1))
    fi
    echo "=== fuzz: $target for ${seconds}s"
    fuzz_one "$target" &
    running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
    wait -n || status=1
    running=$((running - 1))
done

summary=()
total_runs=0
for target in "${targets[@]}"; do
    line=$(cat "$dir/$target.summary" 2>/dev/null) || line="$target: no result; see $dir/$target.log"
    summary+=("$line")
    case $line in
        *FAILED* | *"no result"*) status=1; tail -n 40 "$dir/$target.log" ;;
        *) total_runs=$((total_runs + $(awk '{print $2}' <<<"$line"))) ;;
    esac
done

echo
echo "=== fuzz: summary (${seconds}s per target)"
printf '%s\n' "${summary[@]}"
echo "total: $total_runs executions in $((SECONDS - started))s"
[ "$status" -eq 0 ] && echo "fuzz: PASSED" || echo "fuzz: FAILED"
exit "$status"
