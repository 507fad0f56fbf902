# Builds an application against the installed tree by its CMake package, with the shared library and with the archive,
# and runs it.
#   find_package.sh CMAKE GENERATOR SOURCE BUILD-FOLDER PREFIX READELF LANGUAGE PROGRAM COMPILER FLAG...
set -euo pipefail
cmake=$1 generator=$2 source=$3 build=$4 prefix=$5 readelf=$6 language=$7 program=$8 compiler=$9
shift 9
run=(${ORV_EMULATOR:+"$ORV_EMULATOR"})
flags=$*

rm -rf "$build"
"$cmake" -G "$generator" -S "$source" -B "$build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF -DCONSUMER_LANGUAGE="$language" -DCONSUMER_SOURCE="$program" \
    -DCMAKE_"$language"_COMPILER="$compiler" -DCMAKE_"$language"_FLAGS="$flags"
"$cmake" --build "$build"

"${run[@]}" "$build/with_orv"
"${run[@]}" "$build/with_orv_static"
# Each program is linked with the library in its name, from the installed tree.
"$readelf" -d "$build/with_orv" | grep 'NEEDED.*\[liborv\.so\.[0-9]*\]'
"$readelf" -d "$build/with_orv" | grep "R.*PATH.*$prefix"
if "$readelf" -d "$build/with_orv_static" | grep 'NEEDED.*liborv'; then
    echo "the archive's application needs the shared library"
    exit 1
fi
