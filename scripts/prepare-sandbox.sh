#!/usr/bin/env bash
# Lays out a sandbox root for a host built on libispdsp_host: the device files
# that the driver reads, at their device paths under ROOT. Run the host with
# ISPDSP_ROOT=ROOT and libispdsp_host puts ROOT in front of every absolute path.
#
#   prepare-sandbox.sh ROOT [--sample DIR] [--tuning F] [--pipe ID]
#                           [--calibration F|none] [--nir F|none] [--rlr F|none]
#
#   ROOT/var/tmp/dsp_isp_para.bin   --tuning (default: the sample); with --pipe ID
#                                   ROOT/var/tmp/ID/dsp_isp_para.bin instead
#   ROOT/var/tmp/calibration.txt    --calibration (registration file)
#   ROOT/tmp/nir.txt                --nir (NIR curve, read by the console's w_nir)
#   ROOT/var/custom/rlr_para.bin    --rlr (read by DRV_loadRlrCfg)
#   ROOT/mnt/mtd/3A/                empty: DRV_loadRlrCfg writes its flash copy there
#
# The files are copied (the RLR loader may rewrite its flash copy, never the
# originals); existing ones are replaced. "none" leaves that file out. The
# sample folder is found beside this script when installed
# (share/ispdsp/sample) or in the source tree (data/sample).
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
usage() {
    sed -n '6,7p' "${BASH_SOURCE[0]}" | sed 's/^# /usage:/; s/^#//' >&2
    exit 2
}
die() {
    echo "prepare-sandbox: $*" >&2
    exit 2
}

if [ $# -lt 1 ] || [ "${1#-}" != "$1" ]; then usage; fi
root=$1
shift
sample=""
for dir in "$here/sample" "$here/../data/sample"; do
    [ -d "$dir" ] && sample=$dir && break
done
declare -A file=()
pipe=""
while [ $# -gt 0 ]; do
    [ $# -ge 2 ] || usage
    case $1 in
    --sample) sample=$2 ;;
    --tuning | --calibration | --nir | --rlr) file[${1#--}]=$2 ;;
    --pipe) [[ $2 =~ ^[0-9]+$ ]] || die "--pipe wants a pipe number (aewPipeId), not '$2'"; pipe=$2 ;;
    *) usage ;;
    esac
    shift 2
done
# A root of "/" would write into the machine's own /var and /mnt.
if [ -z "$root" ] || [ "$root" -ef / ]; then
    die "refusing to use '$root' as the sandbox root"
fi

# name -> sample file, device path
declare -A default=([tuning]=dsp_isp_para.bin [calibration]=calibration.txt [nir]=nir.txt [rlr]=rlr_para.bin)
declare -A device=([tuning]=/var/tmp/${pipe:+$pipe/}dsp_isp_para.bin [calibration]=/var/tmp/calibration.txt
    [nir]=/tmp/nir.txt [rlr]=/var/custom/rlr_para.bin)

mkdir -p "$root/mnt/mtd/3A" || die "cannot create $root"
for name in tuning calibration nir rlr; do
    source=${file[$name]:-${sample:+$sample/${default[$name]}}}
    [ "$source" = none ] && continue
    [ -n "$source" ] || die "no sample folder found: give --sample DIR or --$name FILE"
    [ -f "$source" ] || die "$name file '$source': not a readable file"
    mkdir -p "$root$(dirname "${device[$name]}")"
    cp "$source" "$root${device[$name]}" || die "cannot copy '$source' to $root${device[$name]}"
    echo "$root${device[$name]}"
done
