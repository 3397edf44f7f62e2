#!/usr/bin/env bash
# The main job on the bundled sample: installs what is missing, builds the
# library and the host tools, checks the sample tuning file, shows which table
# each camera state selects, and runs the colour/mono pipe pair of the simulator
# through the gain-sweep scenario with every DSP message decoded.
# Extra arguments go to ispdsp-sim (e.g. --json, --console, another scenario).
set -euo pipefail

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
"$cfg" select "$sample/dsp_isp_para.bin" --all
echo
if [ $# -eq 0 ]; then
    set -- "$sample/scenarios/gain_sweep.json"
fi
echo "=== ispdsp-sim $*"
exec "$sim" --tuning "$sample/dsp_isp_para.bin" "$@"
