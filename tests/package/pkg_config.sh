# Builds an application against the installed tree by pkg-config, with the shared library and with the archive, and runs it.
#   pkg_config.sh PKG-CONFIG PREFIX READELF BUILD-FOLDER PROGRAM COMPILER FLAG...
set -euo pipefail
pkg_config=$1 prefix=$2 readelf=$3 build=$4 program=$5 compiler=$6
shift 6
run=(${ORV_EMULATOR:+"$ORV_EMULATOR"})

rm -rf "$build"
mkdir -p "$build"
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name orv.pc)")
export PKG_CONFIG_PATH
"$pkg_config" --print-errors --exists 'orv >= 1.0'
read -ra cflags <<<"$("$pkg_config" --cflags orv)"
read -ra libraries <<<"$("$pkg_config" --libs orv)"
libdir=$("$pkg_config" --variable=libdir orv)

"$compiler" "$@" "${cflags[@]}" "$program" -o "$build/with_shared" "${libraries[@]}"
"$compiler" "$@" "${cflags[@]}" "$program" -o "$build/with_rpath" "${libraries[@]}" "-Wl,-rpath,$libdir"
# The archive by its file name: -lorv selects the shared library if both are installed.
"$compiler" "$@" "${cflags[@]}" "$program" -o "$build/with_static" "$libdir/liborv.a" -lm

LD_LIBRARY_PATH=$libdir "${run[@]}" "$build/with_shared"
"${run[@]}" "$build/with_rpath"
"${run[@]}" "$build/with_static"
"$readelf" -d "$build/with_shared" | grep 'NEEDED.*\[liborv\.so\.[0-9]*\]'
if "$readelf" -d "$build/with_static" | grep 'NEEDED.*liborv'; then
    echo "the archive's application needs the shared library"
    exit 1
fi
