# The first program of the README is the one that the examples build and run.
#   readme_program.sh README PROGRAM
set -euo pipefail
readme=$1 program=$2
shown=$(awk '/^```cpp$/ { inside = 1; next } /^```$/ { if (inside) exit } inside' "$readme")
if [ -z "$shown" ]; then
    echo "$readme shows no program"
    exit 1
fi
diff <(echo "$shown") "$program"
