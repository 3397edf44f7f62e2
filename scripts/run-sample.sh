#!/usr/bin/env bash
# The main job on the bundled sample: installs what is missing, builds the
# library and the host tools, checks the sample tuning file, shows which table
# each camera state selects, and runs the colour/mono pipe pair of the simulator
# through the gain-sweep scenario with every DSP message decoded.
# --all-rows (first argument) shows all 156 rows of the selection table instead
# of the rows that have their own table. Other arguments go to ispdsp-sim
# (e.g. --json, --console, another scenario).
set -euo pipefail

all_rows=0
if [ "${1:-}" = "--all-rows" ]; then
    all_rows=1
    shift
fi

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="$root/build/native"
sample="$root/data/sample"

bash "$root/scripts/setup.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "${ISPDSP_JOBS:-2}" --target ispdsp ispdsp_host ispdsp-cfg ispdsp-sim

cfg="$build/tools/ispdsp-cfg/ispdsp-cfg"
sim="$build/tools/ispdsp-sim/ispdsp-sim"

echo "=== ispdsp-cfg check $sample/dsp_isp_para.bin"
"$cfg" check "$sample/dsp_isp_para.bin"
echo
echo "=== ispdsp-cfg select --all (which table every camera state chooses)"
echo "    row: state map row; bw 1: black-and-white; hdr/wdr: HDR mode; night: sceneMode 2; scene: imageScene"
echo "    row names: the table the state asks for; present: in the file; chosen: the table the driver uses;"
echo "    fallback: the rule that chose another table when the asked one is missing"
if [ "$all_rows" = 1 ]; then
    "$cfg" select "$sample/dsp_isp_para.bin" --all
else
    # Compact: the rows whose own table is present, then the fallbacks counted.
    "$cfg" select "$sample/dsp_isp_para.bin" --all | awk '
        NR == 1 || $8 == "yes" || $1 !~ /^[0-9]+$/ { print; next }
        { fallback[$9]++ }
        END { for (t in fallback) printf "... %d more rows fall back to %s\n", fallback[t], t
              print "(all rows: scripts/run-sample.sh --all-rows)" }'
fi
echo
if [ $# -eq 0 ]; then
    set -- "$sample/scenarios/gain_sweep.json"
fi
echo "=== ispdsp-sim $*"
exec "$sim" --tuning "$sample/dsp_isp_para.bin" "$@"
