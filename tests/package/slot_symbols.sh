# No two builds of the kernels share a symbol. An external inline function is emitted by each build with its own
# instructions under one name, and the linker keeps an arbitrary one. So every name that the linker sees must contain its
# build, as the namespace of kernels does.
#   slot_symbols.sh NM [--slot NUMBER OBJECT...]...
set -euo pipefail
export LC_ALL=C
nm=$1
shift

failures=0
builds=0
while [ $# -gt 0 ]; do
    if [ "$1" != --slot ]; then
        echo "expected --slot, got $1"
        exit 1
    fi
    slot=$2
    shift 2
    objects=()
    while [ $# -gt 0 ] && [ "$1" != --slot ]; do
        objects+=("$1")
        shift
    done
    # Global, weak and unique definitions. On 32-bit x86 they include the compiler's own functions that read the program
    # counter: two base instructions, the same in every build.
    names=$("$nm" -A --defined-only --extern-only "${objects[@]}" |
        awk '$NF !~ /^__x86\.get_pc_thunk\.[a-z]+$/ { print $NF, $1 }')
    if [ "$(grep -c "^_ZN3orv5slot${slot}[0-9]*krn" <<<"$names")" -lt ${#objects[@]} ]; then
        echo "slot $slot: kernels were not seen"
        failures=1
    fi
    if shared=$(grep -vE "^_Z(Z|GV|T[ISV])*N[KVO]*3orv5slot$slot" <<<"$names"); then
        echo "slot $slot: symbols without the name of the build:"
        echo "$shared"
        failures=1
    fi
    builds=$((builds + 1))
done
if [ $builds -ne 7 ]; then
    echo "looked at $builds builds instead of 7"
    failures=1
fi
exit $failures
