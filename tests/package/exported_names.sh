# The shared library exports exactly the names that the public header declares, all under one symbol version. The archive
# defines no global name outside the library's own namespaces.
#   exported_names.sh HEADER C-COMPILER NM SHARED-LIBRARY ARCHIVE
set -euo pipefail
export LC_ALL=C
header=$1 compiler=$2 nm=$3 shared=$4 archive=$5
failures=0

# A declared function is a name before a parenthesis, once the preprocessor has removed comments and attributes. A type
# precedes the parenthesis of a function pointer.
declared=$("$compiler" -E -P -D'__attribute__(x)=' "$header" | tr '\n' ' ' | grep -oE '[A-Za-z0-9_]+ *\(' | tr -d ' (' |
    grep -vE '^(void|Orv\w*)$' | sort)
exported=$("$nm" -D --defined-only --format=posix "$shared" | awk '
    $1 ~ /^ORV_1(@@ORV_1)?$/ { next } # the version itself
    { print sub(/@@ORV_1$/, "", $1) ? $1 : $1 " (without version)" }' | sort)
if [ "$(wc -l <<<"$declared")" -lt 10 ]; then
    echo "found hardly a declaration in the header: $declared"
    failures=1
fi
if ! diff <(echo "$declared") <(echo "$exported") >/dev/null; then
    echo "declared only: $(comm -23 <(echo "$declared") <(echo "$exported") | tr '\n' ' ')"
    echo "exported only: $(comm -13 <(echo "$declared") <(echo "$exported") | tr '\n' ' ')"
    failures=1
fi
foreign=$(echo "$declared" | grep -vE '^(orv[A-Z]\w*|orv[wisd]Malloc|krnClassify|krnCpuCode)$' || true)
if [ -n "$foreign" ]; then
    echo "declared without a name of the library: $foreign"
    failures=1
fi

# Mangled names are in namespace orv. On 32-bit x86 each position-independent object contains the compiler's own functions
# that read the program counter. AddressSanitizer adds a symbol for each variable.
global=$("$nm" --defined-only --extern-only --format=posix "$archive" | awk 'NF >= 2 { print $1 }' | sort -u)
foreign=$(echo "$global" | grep -vE '^(__odr_asan\.)?(orv|krn|_Z(Z|GV|T[ISV])*N[KVO]*3orv|__x86\.get_pc_thunk\.[a-z]+$)' || true)
if [ -n "$foreign" ]; then
    echo "global in the archive without a name of the library:"
    echo "$foreign"
    failures=1
fi
if ! grep -q '^_ZN3orv' <<<"$global" || ! grep -q '^orv' <<<"$global"; then
    echo "the archive's names were not seen"
    failures=1
fi
exit $failures
