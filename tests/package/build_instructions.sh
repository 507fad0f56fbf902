# No build contains an instruction of a wider one: a processor would end the program at the first such instruction.
#   build_instructions.sh OBJDUMP BITS [--slot NUMBER OBJECT...]...
# BITS is 32 or 64. Slot 0 also names what every program runs: front end, status, platform. On x86-64 the base set has SSE2.
set -euo pipefail
export LC_ALL=C
objdump=$1 bits=$2
shift 2
expected_builds=7

# wider_than LEVEL OBJECT: prints the instructions beyond a level, and at the end the number of all instructions and of those
# of that very level. Levels are slots; 9 is what no build may use.
wider_than()
{
    "$objdump" -d --no-show-raw-insn "$2" | awk -v allowed="$1" '
        function level(name, operands)
        {
            if (name ~ /^vf(n?m)(add|sub)/ || operands ~ /%(zmm|k[0-7])/)
                return 9 # fused operations round once, and so differ from the other builds
            if (name ~ /^(andn|bextr|bls[ir]|blsmsk|bzhi|mulx|pdep|pext|rorx|sarx|shlx|shrx|lzcnt|popcnt|crc32|movbe)[bwlq]?$/)
                return 9
            if (name ~ /^v/ && name !~ /^ver[rw]/)
                return 6
            if (name ~ /^(pcmpgtq|pcmp[ei]str[im])$/)
                return 9 # SSE4.2
            if (name ~ /^(blend|dpp[sd]$|extractps|insertps|movntdqa|mpsadbw|packusdw|pblend|pcmpeqq|pextr[bdq]|phminpos)/ ||
                name ~ /^(pinsr[bdq]|pmax(sb|sd|uw|ud)|pmin(sb|sd|uw|ud)|pmov[sz]x|pmuldq|pmulld|ptest|round[ps][sd])/)
                return 5
            if (name == "pextrw" && operands ~ /\)$/)
                return 5 # to memory
            if (name ~ /^(pshufb|phadd|phsub|pmaddubsw|pmulhrsw|psign|pabs|palignr)/)
                return 4
            if (name ~ /^(addsub|hadd|hsub|lddqu|movddup|movshdup|movsldup|fisttp)/)
                return 3
            if (name ~ /^(movnti|lfence|mfence)/)
                return 2
            if (operands ~ /%xmm/)
                return name ~ /^p|^mov[dq]|pd|sd|^cvtdq|^cvtt?ps2dq|^maskmovdq/ ? 2 : 1
            if (operands ~ /%mm[0-7]/ || name ~ /^(f?cmov|fu?comip?$|sfence|prefetch)/)
                return 1
            return 0
        }
        /^ *[0-9a-f]+: *\t/ {
            ++instructions
            line = $0
            sub(/^[^\t]*\t/, "", line)
            sub(/^((rep|repz|repnz|lock|data16|notrack|bnd) +)+/, "", line)
            name = line
            sub(/[ \t].*/, "", name)
            operands = substr(line, length(name) + 1)
            of = level(name, operands)
            own += of == allowed
            if (of > allowed)
                print of ": " line
        }
        END { print "counted", instructions + 0, own + 0 }'
}

failures=0
builds=0
while [ $# -gt 0 ]; do
    if [ "$1" != --slot ]; then
        echo "expected --slot, got $1"
        exit 1
    fi
    slot=$2
    shift 2
    level=$slot
    if [ "$bits" -eq 64 ] && [ "$slot" -lt 2 ]; then
        level=2
    fi
    instructions=0 own=0
    while [ $# -gt 0 ] && [ "$1" != --slot ]; do
        listing=$(wider_than "$level" "$1")
        read -r _ all of_level <<<"$(tail -n 1 <<<"$listing")"
        instructions=$((instructions + all))
        own=$((own + of_level))
        if wider=$(grep -v '^counted' <<<"$listing"); then
            echo "$1, build $slot, uses instructions of a wider build:"
            head -n 5 <<<"$wider"
            failures=1
        fi
        # An object of nothing but data has no instructions.
        if [ "$all" -eq 0 ] && "$objdump" -t "$1" | grep -q ' F \.text'; then
            echo "not disassembled: $1"
            failures=1
        fi
        shift
    done
    # The search must find what it looks for. Compilers see little use for SSE3, so that its build may be the one before it.
    if [ $instructions -eq 0 ] || { [ $own -eq 0 ] && [ "$slot" -ne 3 ]; }; then
        echo "build $slot: $instructions instructions, $own of its own level"
        failures=1
    fi
    builds=$((builds + 1))
    echo "build $slot: $instructions instructions, $own of level $level"
done
if [ $builds -ne $expected_builds ]; then
    echo "looked at $builds builds instead of $expected_builds"
    failures=1
fi
exit $failures
