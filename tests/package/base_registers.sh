# On 32-bit x86, what runs on every processor uses no MMX and no XMM register.
#   base_registers.sh OBJDUMP OBJECT... --vector OBJECT...
# The objects behind --vector do use them, which shows that the search finds what it looks for.
set -euo pipefail
export LC_ALL=C
objdump=$1
shift

# vector_instructions OBJECT: the instructions that use such a register; fails when there is no instruction at all.
vector_instructions()
{
    "$objdump" -d --no-show-raw-insn "$1" | awk '
        /^ *[0-9a-f]+:\t/ { ++instructions }
        /^ *[0-9a-f]+:\t.*%(mm[0-7]|[xyz]mm[0-9])/ { print }
        END { exit instructions == 0 }'
}

failures=0
plain=0
while [ $# -gt 0 ] && [ "$1" != --vector ]; do
    if ! found=$(vector_instructions "$1"); then
        # An object of nothing but data has no instructions.
        if "$objdump" -t "$1" | grep -q ' F \.text'; then
            echo "not disassembled: $1"
            failures=1
        fi
    elif [ -n "$found" ]; then
        echo "$1 uses vector registers:"
        head -n 5 <<<"$found"
        failures=1
    else
        plain=$((plain + 1))
    fi
    shift
done
if [ $plain -eq 0 ] && [ $failures -eq 0 ]; then
    echo "no object was disassembled"
    failures=1
fi

vector=0
[ $# -eq 0 ] || shift
for object; do
    if vector_instructions "$object" | grep '%xmm' >/dev/null; then
        vector=$((vector + 1))
    fi
done
if [ $vector -eq 0 ]; then
    echo "no vector register found where there must be some"
    failures=1
fi
echo "$plain objects of base instructions, $vector objects with vector registers"
exit $failures
