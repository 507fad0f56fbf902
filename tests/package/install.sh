# Installs the build, moves the tree to another folder, and checks the installed files.
#   install.sh CMAKE BUILD-FOLDER PREFIX CONFIGURATION
set -euo pipefail
cmake=$1 build=$2 prefix=$3 configuration=$4

rm -rf "$prefix" "$prefix-before"
"$cmake" --install "$build" --config "$configuration" --prefix "$prefix-before"
mv "$prefix-before" "$prefix"

failures=0
for file in orv.h liborv.so liborv.a orvConfig.cmake orvConfigVersion.cmake orvTargets.cmake orv.pc; do
    if [ "$(find "$prefix" -name $file | wc -l)" -ne 1 ]; then
        echo "not installed once: $file"
        failures=1
    fi
done
if grep -rlI -e "$prefix" -e "$build" "$prefix"; then
    echo "a file names a folder of the build"
    failures=1
fi
exit $failures
