#!/usr/bin/env bash
# Writes the man page from its own text, docs/stashkeep.1.in, and the sections of the README that it
# shares, so that the two cannot disagree: scripts/make_manual.sh [FILE]
# A line "@section HEADING" of the text stands for what the README says under that heading.
set -euo pipefail
cd "$(dirname "$0")/.."

# Turns the paragraphs, tables, lists and consoles of a README section into man macros.
# shellcheck disable=SC2016 # awk's own variables
section='
    # As it stands, for what is typed or printed.
    function literal(text) {
        gsub(/\\/, "\\e", text)
        gsub(/-/, "\\-", text)
        gsub(/\047/, "\\(aq", text)
        gsub(/`/, "\\(ga", text)
        gsub(/\^/, "\\(ha", text)
        gsub(/~/, "\\(ti", text)
        return text
    }
    # Prose with `code` and [links](to).
    function prose(text,   parts, count, i, code, result) {
        count = split(text, parts, "`")
        for (i = 1; i <= count; i++) {
            if (i % 2 == 0) {
                code = literal(parts[i])
                if (code ~ /^(extract|implant|check)[a-z0-9]* [A-Z]/) sub(/ .*/, "\\fI&\\fB", code)
                result = result "\\fB" code "\\fR"
            } else {
                gsub(/\]\([^)]*\)/, "", parts[i])
                gsub(/\[/, "", parts[i])
                result = result parts[i]
            }
        }
        return (result ~ /^[.\047]/ ? "\\&" : "") result
    }
    /^## / { inside = $0 == "## " heading; next }
    !inside { next }
    { found = 1 }
    /^```/ {
        inConsole = !inConsole
        print inConsole ? ".PP\n.RS 4\n.EX" : ".EE\n.RE"
        next
    }
    inConsole { text = literal($0); print (text ~ /^[.]/ ? "\\&" : "") text; next }
    /^\|---/ { rows = 1; next }
    /^\|/ {
        if (!rows) next # the heading
        gsub(/^\| *| *\|$/, "")
        cut = index($0, " | ")
        print ".TP\n" prose(substr($0, 1, cut - 1)) "\n" prose(substr($0, cut + 3))
        next
    }
    /^- / { print ".IP \\(bu 2\n" prose(substr($0, 3)); inText = 1; next }
    /^$/ { rows = inText = 0; next }
    { if (!inText++) print ".PP"; gsub(/^ +/, ""); print prose($0) }
    END { if (!found) exit 1 }'

{
    echo '.\" Made by scripts/make_manual.sh from docs/stashkeep.1.in and README.md: change those.'
    while IFS= read -r line; do
        case $line in
            '@section '*) awk -v heading="${line#@section }" "$section" README.md ;;
            *) printf '%s\n' "$line" ;;
        esac
    done <docs/stashkeep.1.in
} >"${1:-docs/stashkeep.1}"
