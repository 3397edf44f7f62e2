#!/usr/bin/env bash
# The ABI of libispdsp.so as libabigail sees it in the library's debug
# information: the exported functions, and the layout of every record declared
# in the public headers (reachable from a function or not: the instance record
# and the operation table's run parameters are shared by address only).
#
#   abi.sh dump  LIBRARY INCLUDE_DIR OUTPUT     write the ABI (abidw)
#   abi.sh check LIBRARY INCLUDE_DIR BASELINE   compare LIBRARY with BASELINE (abidiff)
#
# INCLUDE_DIR is the folder of the public headers (include/ispdsp); types
# defined elsewhere (the library's internals) are left out (abidw.suppr).
# check exits 0 when nothing changed or when functions/types were only added
# (compatible; the baseline should then be updated), 1 on any other change
# (removed or changed functions, changed records, changed SONAME), 2 on a tool
# or usage error, 77 when the library has no debug information.
set -uo pipefail

usage() {
    echo "usage: $0 dump|check LIBRARY INCLUDE_DIR FILE" >&2
    exit 2
}
[ $# -eq 4 ] || usage
command=$1
library=$2
include_dir=$3
file=$4

for tool in abidw abidiff readelf; do
    command -v "$tool" >/dev/null || { echo "abi: $tool not found (install abigail-tools, binutils)" >&2; exit 2; }
done
[ -f "$library" ] || { echo "abi: no library $library" >&2; exit 2; }
[ -d "$include_dir" ] || { echo "abi: no header folder $include_dir" >&2; exit 2; }
include_dir=$(cd "$include_dir" && pwd)
if ! readelf -S -W "$library" | grep -q '\.debug_info'; then
    echo "abi: $library has no debug information (build with -g, e.g. RelWithDebInfo): not compared"
    exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# All types, reachable from an exported function or not, minus what
# abidw.suppr leaves out; short locations, so the file does not depend on
# where the tree was built (locations are matched by file name).
suppressions=$work/abidw.suppr
cp "$here/abidw.suppr" "$suppressions"
include_regexp=$(printf '%s' "$include_dir/" | sed 's/[][\\.^$*+?(){}|]/\\&/g')
# Kept: the public headers and the C headers that their types are built on
# (<stdint.h>, <stddef.h> and the typedefs behind them). Everything else from
# libc goes too: its anonymous enums would shift the numbering of ours.
printf '\n[suppress_type]\n  source_location_not_regexp = ^%s|/(stdint|stdint-intn|stdint-uintn|stddef|types)\\.h$\n  drop = yes\n' \
    "$include_regexp" >>"$suppressions"
abidw_options=(--load-all-types --suppr "$suppressions" --short-locs --no-corpus-path --no-comp-dir-path)
# Unreachable types are compared too. (No --headers-dir filter here: it hides
# a field whose type changes from one public typedef to another, because the
# leaf of that change lies in the C library's typedefs.)
abidiff_options=(--non-reachable-types)

# abi_dump LIBRARY OUTPUT
abi_dump() {
    abidw "${abidw_options[@]}" --out-file "$2" "$1" || { echo "abi: abidw failed on $1" >&2; exit 2; }
}

case $command in
dump)
    abi_dump "$library" "$file"
    functions=$(grep -c '<elf-symbol .*type=.func-type' "$file")
    records=$(grep -c '<class-decl ' "$file")
    echo "abi: wrote $file ($functions exported functions, $records record declarations)"
    ;;
check)
    [ -f "$file" ] || { echo "abi: no baseline $file (scripts/update-abi-baseline.sh writes it)" >&2; exit 2; }
    # Both sides are read from ABI files: the XML reader and the DWARF reader
    # do not classify unreachable types alike.
    current=$work/current.abi
    abi_dump "$library" "$current"
    abidiff "${abidiff_options[@]}" "$file" "$current" >"$work/report" 2>&1
    rc=$?
    # abidiff's status bits: 1 error, 2 usage error, 4 ABI change, 8 incompatible change.
    if [ "$rc" -eq 0 ]; then
        echo "abi: $library matches $file"
        exit 0
    fi
    cat "$work/report"
    if (( rc & 3 )); then
        echo "abi: abidiff failed (status $rc)" >&2
        exit 2
    fi
    if (( rc & 8 )); then
        echo "abi: INCOMPATIBLE change against $file (status $rc)" >&2
        exit 1
    fi
    # A change that abidiff does not call incompatible. Only additions (new
    # functions, new types) are accepted; a removed or changed function or
    # type (a record's field order or field type, a signature), a changed
    # SONAME or architecture fails.
    changed=$(grep -E 'summary:' "$work/report" | grep -oEi '[0-9]+ (removed|changed)' | awk '{n += $1} END {print n + 0}')
    if [ "$changed" -eq 0 ] && ! grep -Eqi 'SONAME changed|architecture changed' "$work/report"; then
        echo "abi: only additions against $file: compatible (record them with scripts/update-abi-baseline.sh)"
        exit 0
    fi
    echo "abi: ABI CHANGE against $file (status $rc): a public record, function or the SONAME changed" >&2
    exit 1
    ;;
*)
    usage
    ;;
esac
