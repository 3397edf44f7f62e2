#!/usr/bin/env bash
# Installs the Debian packages listed in scripts/packages.txt that are missing:
# those of the main job (the native build), and with --tests also those below
# the "## tests" line (cross compiler, emulator, sanitizers, fuzzing, packaging).
# Idempotent: when everything is present it touches nothing and needs no network.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
section='/^## tests/q'
[ "${1:-}" = "--tests" ] && section=''
mapfile -t packages < <(sed -e "$section" "$here/packages.txt" | sed -e 's/#.*//' -e 's/[[:space:]]//g' | grep -v '^$')

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then
    echo "setup: all ${#packages[@]} packages present"
    exit 0
fi

echo "setup: installing ${missing[*]}"
sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: need root (or sudo) to install: ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update
"${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
