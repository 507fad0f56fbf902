# The public header compiles alone in a file, in each language it promises, without a warning.
#   header_alone.sh HEADER C-COMPILER C++-COMPILER FLAG...
set -euo pipefail
header=$1 c=$2 cxx=$3
shift 3

# compiles LANGUAGE STANDARD COMPILER FLAG...
compiles()
{
    local language=$1 standard=$2 compiler=$3
    shift 3
    printf '#include "%s"\n' "$header" |
        "$compiler" "$@" -x "$language" -std="$standard" -Wall -Wextra -pedantic -Werror -c -o /dev/null -
}

failures=0
for standard in c99 c11; do
    compiles c $standard "$c" "$@" || { echo "does not compile as $standard"; failures=1; }
done
for standard in c++11 c++20; do
    compiles c++ $standard "$cxx" "$@" || { echo "does not compile as $standard"; failures=1; }
done
exit $failures
