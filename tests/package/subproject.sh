# A parent project that adds the library by add_subdirectory keeps its own build type, tests and install rules.
#   subproject.sh CMAKE CTEST GENERATOR SOURCE BUILD-FOLDER LIBRARY-SOURCE C-COMPILER C++-COMPILER FLAG...
# Kernels are not built again here; their objects do not depend on who is on top.
set -euo pipefail
cmake=$1 ctest=$2 generator=$3 source=$4 build=$5 library=$6 c=$7 cxx=$8
shift 8
flags=$*

rm -rf "$build"
# A parent that builds tests of its own, as include(CTest) sets it up.
"$cmake" -G "$generator" -S "$source" -B "$build" -DORV_SOURCE="$library" -DBUILD_TESTING=ON -DCMAKE_C_COMPILER="$c" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags"
# One room of the library, and the parent's program up to its link.
"$cmake" --build "$build" --target orv_status program_objects

failures=0
if ! grep -q '^CMAKE_BUILD_TYPE:[A-Z]*=$' "$build/CMakeCache.txt"; then
    echo "the parent's build type was set: $(grep '^CMAKE_BUILD_TYPE' "$build/CMakeCache.txt")"
    failures=1
fi
tests=$(cd "$build" && "$ctest" -N | sed -n 's/^ *Test *#[0-9]*: //p')
if [ "$tests" != parent_test ]; then
    echo "tests other than the parent's: $tests"
    failures=1
fi
"$cmake" --install "$build" --prefix "$build/installed"
files=$(cd "$build/installed" && find . -type f)
if [ "$files" != ./share/parent.txt ]; then
    echo "installed files other than the parent's: $files"
    failures=1
fi
exit $failures
