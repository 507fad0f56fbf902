# The documents agree with the code: the README shows the program that the examples build, and CONTRIBUTING names the source
# of every exported function.
#   documents.sh SOURCE-FOLDER C-COMPILER
set -euo pipefail
export LC_ALL=C
root=$1 compiler=$2
failures=0

shown=$(awk '/^```cpp$/ { inside = 1; next } /^```$/ { if (inside) exit } inside' "$root/README.md")
if [ -z "$shown" ] || ! diff <(echo "$shown") "$root/examples/first_program.cpp"; then
    echo "README.md shows another program than examples/first_program.cpp"
    failures=1
fi

# Rows of the table: functions, unit, kernels.
rows=$(awk '/^## / { inside = $0 == "## Where a function is" } inside && /^\| `/' "$root/CONTRIBUTING.md")
declared=$("$compiler" -E -P -D'__attribute__(x)=' "$root/include/orv.h" | tr '\n' ' ' | grep -oE '\b(orv|krn)[A-Za-z0-9]+ *\(' |
    tr -d ' (' | sort)
listed=$(cut -d'|' -f2 <<<"$rows" | grep -oE '`[A-Za-z0-9]+`' | tr -d '`' | sort)
if ! diff <(echo "$declared") <(echo "$listed"); then
    echo "the table in CONTRIBUTING.md (>) differs from the header (<)"
    failures=1
fi
while read -r unit; do
    if [ ! -f "$root/_src/$unit.cpp" ] && [ ! -f "$root/$unit.cpp" ]; then
        echo "CONTRIBUTING.md names a source that does not exist: $unit"
        failures=1
    fi
done < <(cut -d'|' -f3 <<<"$rows" | grep -oE '`[A-Za-z0-9_/]+`' | tr -d '`')
while read -r folder; do
    if [ ! -d "$root/kernels/$folder" ]; then
        echo "CONTRIBUTING.md names a folder that does not exist: kernels/$folder"
        failures=1
    fi
done < <(cut -d'|' -f4 <<<"$rows" | grep -oE '`[a-z]+`' | tr -d '`')
exit $failures
