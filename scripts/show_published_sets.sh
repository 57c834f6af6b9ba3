#!/bin/sh
# Fits the point sets of examples/data and sets the results beside the published answers.
# usage: scripts/show_published_sets.sh PROGRAM
set -eu
LC_ALL=C
export LC_ALL

if [ $# -ne 1 ]; then
    echo "usage: $0 PROGRAM    (PROGRAM is the built tvmath)" >&2
    exit 2
fi
program=$1
data=$(dirname -- "$0")/../examples/data

report=$(mktemp)
trap 'rm -f "$report"' EXIT

echo "Fits of tvmath beside published answers. tvmath's quick fits of circle and sphere are algebraic:"
echo "they need no starting values, and differ a little from geometric least squares where points scatter."

for answer in "$data"/*.answer; do
    feature=$(sed -n 's/^feature = //p' "$answer")
    # Apart from the comparison, so that a program that fails ends the script.
    "$program" fit "$feature" "${answer%.answer}.csv" > "$report"
    awk '
        # First the report: a label of one or two words, then a number.
        NR == FNR {
            if (FNR == 1) next
            number = $NF
            label = $0
            sub(/^ +/, "", label)
            sub(/ +[^ ]+$/, "", label)
            fitted[label] = number
            next
        }
        FNR == 1 && ("direction x" in fitted) {
            fitted["slope"] = sprintf("%.15g", fitted["direction y"] / fitted["direction x"])
            fitted["intercept"] = sprintf("%.15g", fitted["center y"] - fitted["slope"] * fitted["center x"])
        }
        {
            at = index($0, " = ")
            label = substr($0, 1, at - 1)
            value = substr($0, at + 3)
        }
        label == "title" { printf "\n%s\n", value; next }
        label == "feature" { next }
        label == "note" { printf "  %s\n", value; next }
        label == "set" {
            printf "  against: %s\n", value
            printf "    %-14s %22s %22s %12s\n", "", "tvmath", "reference", "difference"
            next
        }
        at > 0 && !(label in fitted) {
            printf "%s: tvmath reports no %s\n", FILENAME, label | "cat 1>&2"
            failed = 1
            exit
        }
        at > 0 {
            printf "    %-14s %22s %22s %12.1e\n", label, fitted[label], value, fitted[label] - value
        }
        END { exit failed }
    ' "$report" "$answer"
done
