#!/usr/bin/env bash
# Checks that ispdsp can be consumed the way a firmware image or a host
# framework consumes a C library, from already built trees:
#
#   1. cmake --install of the native build into a temporary prefix;
#   2. the example of docs/integration.md, its commands as written there (only
#      the prefix differs), against that prefix: with pkg-config and with
#      find_package(ispdsp), run on a sandbox root made by prepare-sandbox.sh;
#   3. the Debian packages of the native build (cpack: libispdspX,
#      libispdsp-dev, ispdsp-tools) and, when the AArch64 build exists, of that
#      one (libispdspX, libispdsp-dev for arm64): dpkg-deb --info/--contents,
#      architecture, SONAME, headers in -dev;
#   4. the consumer built once more against the unpacked native packages.
#
#   scripts/package-check.sh [NATIVE_BUILD_DIR [AARCH64_BUILD_DIR]]
#     defaults: build/native and build/aarch64 (skipped when missing)
#   ISPDSP_PACKAGE_OUT=<dir>  keep the packages there (default: a temporary
#                             folder, removed unless a step failed)
#
# Also runs the example of docs/integration.md as written there (its commands,
# CMakeLists.txt and consumer.c, the listings being those of examples/consumer).
# Prints one line per step and a last summary line; exits non-zero on failure.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
native=${1:-$root/build/native}
aarch64=${2:-$root/build/aarch64}
started=$SECONDS

work=$(mktemp -d "${TMPDIR:-/tmp}/ispdsp-package-check.XXXXXX")
out=${ISPDSP_PACKAGE_OUT:-$work/packages}
mkdir -p "$out"
failed=""
steps=()

finish() {
    local elapsed=$((SECONDS - started))
    if [ -n "$failed" ]; then
        echo "package-check: FAILED at '$failed' (${elapsed}s; logs in $work)"
        exit 1
    fi
    rm -rf "$work"
    local joined
    joined=$(printf '%s, ' "${steps[@]}")
    echo "package-check: PASSED in ${elapsed}s (${joined%, })"
    exit 0
}

# fail STEP MESSAGE [LOG]: report, show the log's end, stop.
fail() {
    failed=$1
    echo "package-check: $1: $2"
    if [ $# -ge 3 ] && [ -f "$3" ]; then
        tail -n 40 "$3"
    fi
    finish
}

ok() {
    echo "package-check: $1: ok${2:+ ($2)}"
    steps+=("$1")
}

# run LOG COMMAND...: run quietly into LOG.
run() {
    local log=$1
    shift
    "$@" >"$log" 2>&1
}

[ -f "$native/CMakeCache.txt" ] || fail configure "no native build in $native (run scripts/test.sh or configure it)"
[ -f "$native/CPackConfig.cmake" ] || fail configure "$native has no CPackConfig.cmake (reconfigure it)"
version=$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' "$native/CPackConfig.cmake")
major=${version%%.*}
[ -n "$version" ] || fail configure "no package version in $native/CPackConfig.cmake"
echo "package-check: ispdsp $version, native build $native"

# ---- 0. The example of the integration notes is the tested consumer ----

# doc_block MARKER: the first fenced block after the line that starts with MARKER.
doc=$root/docs/integration.md
doc_block() {
    awk -v marker="$1" 'index($0, marker) == 1 { marked = 1; next }
         marked && !inside && /^```/ { inside = 1; next }
         inside && /^```$/ { exit }
         inside { print }' "$doc"
}
example=$work/example
mkdir -p "$example"
for listing in CMakeLists.txt consumer.c; do
    doc_block "<!-- examples/consumer/$listing:" >"$example/$listing"
    cmp -s "$example/$listing" "$root/examples/consumer/$listing" ||
        fail docs "the $listing listing in docs/integration.md differs from examples/consumer/$listing"
done
doc_block "<!-- example commands:" >"$example/commands.sh"
grep -q '^prefix=/opt/ispdsp ' "$example/commands.sh" || fail docs "the example commands in docs/integration.md set no prefix=/opt/ispdsp"
ok docs "listings = examples/consumer/CMakeLists.txt, consumer.c"

# ---- 1. Install into a temporary prefix ----

prefix=$work/prefix
run "$work/install.log" cmake --install "$native" --prefix "$prefix" || fail install "cmake --install failed" "$work/install.log"
libdir=$(cd "$prefix" && find . -name "libispdsp.so.$version" -printf '%h\n' | head -n 1)
[ -n "$libdir" ] || fail install "libispdsp.so.$version not installed"
libdir=$prefix/${libdir#./}
for file in "$libdir/libispdsp.so.$major" "$libdir/libispdsp.so" "$libdir/libispdsp_host.so.$version" \
            "$prefix/include/ispdsp/ispdsp.h" "$prefix/include/ispdsp_host/host.h" \
            "$libdir/cmake/ispdsp/ispdspConfig.cmake" "$libdir/cmake/ispdsp/ispdspConfigVersion.cmake" \
            "$libdir/pkgconfig/ispdsp.pc" "$libdir/pkgconfig/ispdsp-host.pc"; do
    [ -e "$file" ] || fail install "missing ${file#"$prefix"/}"
done
soname=$(readelf -d "$libdir/libispdsp.so.$version" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = "libispdsp.so.$major" ] || fail install "SONAME is '$soname', expected libispdsp.so.$major"
ok install "prefix $prefix, SONAME $soname"

# ---- 2. The example, as written in the notes, against the prefix ----

# The device files that the driver reads at creation, in a sandbox root that
# libispdsp_host puts in front of absolute paths (for the package consumers).
device_root=$work/device
run "$work/sample.log" "$prefix/share/ispdsp/prepare-sandbox.sh" "$device_root" ||
    fail consumer "the installed prepare-sandbox.sh failed" "$work/sample.log"

# Only the prefix differs from the notes; the commands run in a clean
# environment so that nothing of this shell (PKG_CONFIG_*, LD_*) helps them.
sed -i "s|^prefix=/opt/ispdsp |prefix='$prefix' |" "$example/commands.sh"
(cd "$example" && env -i PATH="$PATH" HOME="$HOME" bash -ex commands.sh) >"$work/example.log" 2>&1 ||
    fail "docs example" "the commands of docs/integration.md failed" "$work/example.log"
[ "$(grep -c '^consumer: 2 pipes' "$work/example.log")" = 2 ] ||
    fail "docs example" "expected a report line from each of the two builds" "$work/example.log"
ok "docs example" "pkg-config and find_package: $(grep '^consumer:' "$work/example.log" | tail -n 1)"

# run_consumer STEP PROGRAM: runs it on the device files; its report line
# goes to $consumer_report.
consumer_report=""
run_consumer() {
    local log=$work/$1.run.log
    ISPDSP_ROOT=$device_root "$2" >"$log" 2>&1 || fail "$1" "the consumer failed" "$log"
    consumer_report=$(grep '^consumer:' "$log" | tail -n 1)
}

# build_with_cmake STEP PREFIX_PATH
build_with_cmake() {
    local dir=$work/$1.build
    run "$work/$1.log" cmake -S "$root/examples/consumer" -B "$dir" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$2" || fail "$1" "configuring the consumer failed" "$work/$1.log"
    run "$work/$1.log" cmake --build "$dir" || fail "$1" "building the consumer failed" "$work/$1.log"
    run_consumer "$1" "$dir/consumer"
}

# build_with_pkgconfig STEP OUTPUT (PKG_CONFIG_* set by the caller; pkgconf puts
# PKG_CONFIG_SYSROOT_DIR in front of libdir already)
build_with_pkgconfig() {
    local flags
    flags=$(pkg-config --cflags --libs ispdsp ispdsp-host 2>"$work/$1.log") ||
        fail "$1" "pkg-config does not know ispdsp/ispdsp-host" "$work/$1.log"
    local pc_libdir
    pc_libdir=$(pkg-config --variable=libdir ispdsp)
    # shellcheck disable=SC2086 # the flags are words
    run "$work/$1.log" cc -std=c11 -pedantic -Wall -Wextra -Werror "$root/examples/consumer/consumer.c" \
        $flags -Wl,-rpath,"$pc_libdir" -o "$2" || fail "$1" "cc \$(pkg-config ...) failed" "$work/$1.log"
    run_consumer "$1" "$2"
}

# ---- 3. Debian packages ----

# check_deb DEB PACKAGE ARCH: control fields and file list; prints the size.
check_deb() {
    local deb=$1 package=$2 arch=$3
    local info contents
    info=$(dpkg-deb --info "$deb") || fail "deb $package" "dpkg-deb --info failed"
    contents=$(dpkg-deb --contents "$deb") || fail "deb $package" "dpkg-deb --contents failed"
    printf '%s\n' "$info" >"$work/$package-$arch.info"
    printf '%s\n' "$contents" >"$work/$package-$arch.contents"
    grep -q "^ Package: $package\$" <<<"$info" || fail "deb $package" "Package field is not $package" "$work/$package-$arch.info"
    grep -q "^ Architecture: $arch\$" <<<"$info" || fail "deb $package" "Architecture field is not $arch" "$work/$package-$arch.info"
    grep -q "^ Version: $version\$" <<<"$info" || fail "deb $package" "Version field is not $version" "$work/$package-$arch.info"
}

# has DEB_CONTENTS_FILE PATTERN: the file list has an entry matching PATTERN (ERE).
has() {
    grep -Eq "$2" "$1"
}

# check_runtime_deb DEB ARCH ELF_MACHINE
check_runtime_deb() {
    local package=libispdsp$major
    check_deb "$1" "$package" "$2"
    local list=$work/$package-$2.contents
    has "$list" "^-.* \./usr/lib/(.*/)?libispdsp\.so\.$version\$" || fail "deb $package" "no libispdsp.so.$version" "$list"
    has "$list" "^l.* \./usr/lib/(.*/)?libispdsp\.so\.$major -> libispdsp\.so\.$version\$" ||
        fail "deb $package" "no SONAME link libispdsp.so.$major" "$list"
    has "$list" "libispdsp\.so -> |/include/" && fail "deb $package" "development files in the runtime package" "$list"
    grep -q '^ Depends: .*libc6' "$work/$package-$2.info" || fail "deb $package" "no libc6 dependency" "$work/$package-$2.info"
    # The SONAME and the target machine of the packaged library itself.
    local unpacked=$work/unpacked-$package-$2
    dpkg-deb -x "$1" "$unpacked" || fail "deb $package" "dpkg-deb -x failed"
    local lib
    lib=$(find "$unpacked" -name "libispdsp.so.$version" | head -n 1)
    local soname machine
    soname=$(readelf -d "$lib" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
    machine=$(readelf -h "$lib" | sed -n 's/^ *Machine: *//p')
    [ "$soname" = "libispdsp.so.$major" ] || fail "deb $package" "packaged SONAME is '$soname'"
    [[ "$machine" == *"$3"* ]] || fail "deb $package" "packaged library is for '$machine', expected $3"
}

# check_dev_deb DEB ARCH
check_dev_deb() {
    local package=libispdsp-dev
    check_deb "$1" "$package" "$2"
    local list=$work/$package-$2.contents header
    for header in "$root"/include/ispdsp/*.h; do
        has "$list" " \./usr/include/ispdsp/$(basename "$header")\$" ||
            fail "deb $package" "header $(basename "$header") missing" "$list"
    done
    has "$list" "^l.* \./usr/lib/(.*/)?libispdsp\.so -> libispdsp\.so\.$major\$" || fail "deb $package" "no libispdsp.so link" "$list"
    has "$list" "/cmake/ispdsp/ispdspConfig\.cmake\$" || fail "deb $package" "no CMake package" "$list"
    has "$list" "/cmake/ispdsp/ispdspConfigVersion\.cmake\$" || fail "deb $package" "no CMake version file" "$list"
    has "$list" "/pkgconfig/ispdsp\.pc\$" || fail "deb $package" "no ispdsp.pc" "$list"
    has "$list" "libispdsp\.so\.$version\$" && fail "deb $package" "the shared library itself is in -dev" "$list"
    grep -q "^ Depends: .*libispdsp$major (= $version)" "$work/$package-$2.info" ||
        fail "deb $package" "does not depend on libispdsp$major (= $version)" "$work/$package-$2.info"
}

# check_tools_deb DEB ARCH
check_tools_deb() {
    local package=ispdsp-tools
    check_deb "$1" "$package" "$2"
    local list=$work/$package-$2.contents tool
    has "$list" "^-.* \./usr/lib/(.*/)?libispdsp_host\.so\.$version\$" || fail "deb $package" "no libispdsp_host.so.$version" "$list"
    has "$list" " \./usr/include/ispdsp_host/host\.h\$" || fail "deb $package" "no host.h" "$list"
    has "$list" "/pkgconfig/ispdsp-host\.pc\$" || fail "deb $package" "no ispdsp-host.pc" "$list"
    has "$list" " \./usr/share/ispdsp/prepare-sandbox\.sh\$" || fail "deb $package" "no prepare-sandbox.sh" "$list"
    for tool in ispdsp-cfg ispdsp-sim; do
        if [ -n "$(find "$native/tools" -maxdepth 2 -type f -name "$tool" 2>/dev/null)" ]; then
            has "$list" " \./usr/bin/$tool\$" || fail "deb $package" "no $tool" "$list"
        fi
    done
}

# package FLAVOUR BUILD_DIR: runs cpack into $out/FLAVOUR.
package() {
    local dir=$out/$1
    rm -rf "$dir"
    mkdir -p "$dir"
    [ -f "$2/CPackConfig.cmake" ] || fail "cpack $1" "$2 has no CPackConfig.cmake (reconfigure it)"
    run "$work/cpack-$1.log" cpack --config "$2/CPackConfig.cmake" -B "$dir" || fail "cpack $1" "cpack failed" "$work/cpack-$1.log"
    rm -rf "$dir/_CPack_Packages"
}

sizes() {
    local deb list=""
    for deb in "$@"; do
        list+="${list:+, }$(basename "$deb") $(stat -c %s "$deb") B"
    done
    printf '%s' "$list"
}

host_arch=$(dpkg --print-architecture)
package native "$native"
native_runtime=$out/native/libispdsp${major}_${version}_${host_arch}.deb
native_dev=$out/native/libispdsp-dev_${version}_${host_arch}.deb
native_tools=$out/native/ispdsp-tools_${version}_${host_arch}.deb
for deb in "$native_runtime" "$native_dev" "$native_tools"; do
    [ -f "$deb" ] || fail "cpack native" "$(basename "$deb") was not made" "$work/cpack-native.log"
done
case $host_arch in
amd64) host_machine="X86-64" ;;
arm64) host_machine="AArch64" ;;
*) host_machine="" ;;
esac
check_runtime_deb "$native_runtime" "$host_arch" "$host_machine"
check_dev_deb "$native_dev" "$host_arch"
check_tools_deb "$native_tools" "$host_arch"
ok "deb $host_arch" "$(sizes "$native_runtime" "$native_dev" "$native_tools")"

if [ -f "$aarch64/CPackConfig.cmake" ]; then
    package arm64 "$aarch64"
    arm_runtime=$out/arm64/libispdsp${major}_${version}_arm64.deb
    arm_dev=$out/arm64/libispdsp-dev_${version}_arm64.deb
    for deb in "$arm_runtime" "$arm_dev"; do
        [ -f "$deb" ] || fail "cpack arm64" "$(basename "$deb") was not made" "$work/cpack-arm64.log"
    done
    [ -z "$(find "$out/arm64" -name 'ispdsp-tools_*')" ] || fail "cpack arm64" "host tools packaged for the device"
    check_runtime_deb "$arm_runtime" arm64 AArch64
    check_dev_deb "$arm_dev" arm64
    ok "deb arm64" "$(sizes "$arm_runtime" "$arm_dev")"
else
    echo "package-check: deb arm64: skipped (no AArch64 build in $aarch64)"
fi

# ---- 4. The consumer against the unpacked native packages ----

debroot=$work/debroot
for deb in "$native_runtime" "$native_dev" "$native_tools"; do
    dpkg-deb -x "$deb" "$debroot" || fail "deb consumer" "dpkg-deb -x $(basename "$deb") failed"
done
debpc=$(find "$debroot" -name ispdsp.pc -printf '%h\n' | head -n 1)
[ -n "$debpc" ] || fail "deb consumer" "no ispdsp.pc in the packages"
build_with_cmake deb-find_package "$debroot/usr"
ok "deb find_package" "$consumer_report"
PKG_CONFIG_LIBDIR="$debpc" PKG_CONFIG_PATH="" PKG_CONFIG_SYSROOT_DIR="$debroot" \
    build_with_pkgconfig deb-pkg-config "$work/consumer-deb-pc"
ok "deb pkg-config" "unpacked packages"

[ -z "${ISPDSP_PACKAGE_OUT:-}" ] || echo "package-check: packages kept in $out"
finish
