#!/bin/bash
# check_contact_sheet.sh PROGRAM IMAGES: runs the contact sheet on photographs, on unusual pictures, and on files that it
# must refuse with one line and exit code 1.
set -uo pipefail

program=$1
images=$2
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT
failures=0

complain()
{
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# accepts ARGUMENTS...: a page with as many figures as there are pictures
accepts()
{
    rm -rf "$room/sheet"
    "$program" --output "$room/sheet" "$@" >"$room/out" 2>"$room/err" || complain "refused: $*: $(cat "$room/err")"
    local pictures=("$room"/sheet/*.png)
    [[ $(grep -c '<figure' "$room/sheet/index.html") -eq ${#pictures[@]} ]] || complain "page and pictures differ: $*"
}

# refuses WHAT ARGUMENTS...: one line with these words on standard error, exit code 1
refuses()
{
    local what=$1 code=0
    shift
    "$program" --output "$room/refused" "$@" >"$room/out" 2>"$room/err" || code=$?
    [[ $code -eq 1 ]] || complain "exit code $code: $*"
    [[ $(wc -l <"$room/err") -eq 1 ]] || complain "not one line: $*: $(cat "$room/err")"
    grep -qF -- "$what" "$room/err" || complain "without \"$what\": $*: $(cat "$room/err")"
}

accepts --images "$images" --overview "$room/overview.png"
[[ -s $room/overview.png ]] || complain "no overview"

# One white pixel.
base64 -d >"$room/one.png" <<<'iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGP4DwABAQEAsTj2FAAAAABJRU5ErkJggg=='
accepts "$room/one.png"

head -c 20000 "$images/boats.png" >"$room/truncated.png"
head -c 10 "$images/boats.png" >"$room/stub.png"
{ head -c 20000 "$images/boats.png"; printf 'damage'; tail -c +20007 "$images/boats.png"; } >"$room/damaged.png"
# The same with a header that claims 900000 x 900000 pixels.
base64 -d >"$room/huge.png" <<<'iVBORw0KGgoAAAANSUhEUgANu6AADbugCAIAAABf3wbYAAAACklEQVR4nGP4DwABAQEAsTj2FAAAAABJRU5ErkJggg=='
: >"$room/empty.png"
echo 'no picture' >"$room/text.png"
mkdir "$room/folder.png" "$room/no-pictures"
for name in truncated stub damaged empty text folder missing; do
    refuses "$room/$name.png: " "$room/$name.png"
done
refuses 'too large: 900000 x 900000' "$room/huge.png"
refuses 'no PNG file' --images "$room/no-pictures"
refuses "$room/missing: " --images "$room/missing"
refuses '--unknown' --unknown
refuses '--output' --output
refuses "$room/text.png" "$room/one.png" --output "$room/text.png"
refuses "$room/text.png" "$room/one.png" --output "$room/text.png/sheet"
refuses '/dev/null' "$room/one.png" --output "$room/last" --overview /dev/null/overview.png
mkdir -p "$room/blocked/index.html"
refuses "$room/blocked/index.html" "$room/one.png" --output "$room/blocked"

[[ $failures -eq 0 ]] && echo "all as expected"
exit $((failures > 0))
