#!/usr/bin/env bash
# Runs the commands that the pages show and looks for the lines shown below them in what the run wrote: standard
# output, the error stream, or one of its files. One line for each difference; the status is 1 if there is one.
# How the pages are read:
# - A command is an indented line that begins with "trelm " or "python3 " at the start of its block, or with "$ "
#   anywhere; a backslash at its end continues it. The commands of a page run in one temporary folder, which has the
#   examples.
# - Any other indented line below it, up to the next command or heading of the second level, must be there, in this
#   order, but for blanks at its end. "..." stands for lines left out.
# - A command with "..." or with a structure.pdb in it is a pattern for the reader: neither it nor what follows is tried.
#   So are blocks that begin with make, cmake, sudo or build/.
# Links to files of the checkout must lead to one.
# Use: scripts/check_docs.sh [PROGRAM] [PAGE...]      (default: build/release/trelm, all pages)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
program=$(realpath "${1:-build/release/trelm}")
shift || true
if [ $# -gt 0 ]; then pages=("$@"); else pages=(README.md docs/*.md examples/README.md examples/*/README.md); fi
export LC_ALL=C
unset NMRCHECK

folder=$(mktemp -d "${TMPDIR:-/tmp}/check_docs.$$.XXXXXX")
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/bin"
ln -s "$program" "$folder/bin/trelm"
PATH=$folder/bin:$PATH

runs=0 blocks=0 patterns=0 faults=0

fault() {
    faults=$((faults + 1))
    echo "$page:$number: $1"
}

# What a command wrote are the files that are newer than a minute: all others are made older before it runs.
run_command() {
    state=active
    if [[ $command == *...* || $command == *structure.pdb* ]]; then
        state=pattern
        patterns=$((patterns + 1))
        return
    fi
    find "$here" -type f -exec touch -d '-1 hour' {} +
    touch -d '-1 minute' "$here/.start"
    local status=0
    (cd "$here" && eval "$command") > "$here/.stdout" 2> "$here/.stderr" < /dev/null || status=$?
    runs=$((runs + 1))
    [ "$status" -eq 0 ] || fault "status $status: $command"
}

# 0 if the lines of $here/.shown stand in the file, in this order.
stands_in() {
    awk 'function cut(line) { sub(/[ \t\r]+$/, "", line); return line }
         FNR == NR { if (cut($0) != "" && cut($0) != "...") wanted[++count] = cut($0); next }
         found < count && cut($0) == wanted[found + 1] { ++found }
         END { exit found == count ? 0 : 1 }' "$here/.shown" "$1"
}

check_block() {
    [ -s "$here/.shown" ] || return 0
    if [ "$state" = active ]; then
        blocks=$((blocks + 1))
        local file found=no
        while IFS= read -r file; do
            if stands_in "$file"; then found=yes; fi
        done < <(find "$here" -type f -newer "$here/.start" ! -name .shown)
        [ "$found" = yes ] || fault "not written by the run: $(head -n 1 "$here/.shown") ..."
    fi
    : > "$here/.shown"
}

# One indented line, without its four blanks.
read_indented() {
    local line=$1
    if [ "$continued" = yes ]; then
        command+=$'\n'$line
    elif [[ $line == '$ '* ]] || { [ "$first" = yes ] && [[ $line == 'trelm '* || $line == 'python3 '* ]]; } ||
        { [ "$ran" = yes ] && [ ! -s "$here/.shown" ] && [[ $line == 'trelm '* ]]; }; then
        check_block
        command=${line#\$ }
    else
        if [ "$first" = yes ] && [[ $line =~ ^(make|cmake|sudo|build/) ]]; then state=pattern; fi
        [ "$state" = none ] || printf '%s\n' "$line" >> "$here/.shown"
        first=no
        return
    fi
    first=no continued=no ran=yes
    if [[ $line == *\\ ]]; then continued=yes; else run_command; fi
}

read_page() {
    local line
    number=0 state=none continued=no first=yes ran=no
    while IFS= read -r line || [ -n "$line" ]; do
        number=$((number + 1))
        if [[ $line == '    '* && $line != '    '*([ ]) ]]; then
            read_indented "${line:4}"
            continue
        fi
        check_block
        first=yes ran=no
        if [[ $line == '## '* ]]; then state=none; fi
    done < "$page"
    check_block
}

check_links() {
    local target
    while IFS=: read -r number target; do
        case $target in *://* | '#'*) continue ;; esac
        [ -e "$(dirname "$page")/${target%%#*}" ] || fault "a link to nothing: $target"
    done < <(grep -no '](\([^)]*\))' "$page" | sed 's/:](/:/; s/)$//')
}

shopt -s extglob
for page in "${pages[@]}"; do
    here=$folder/$(echo "$page" | tr / _)
    mkdir "$here"
    ln -s "$root/examples" "$here/examples"
    : > "$here/.shown"
    read_page
    check_links
done
echo "$runs commands run, $blocks pieces of output compared, $patterns patterns passed over, $faults faults"
[ "$faults" -eq 0 ]
