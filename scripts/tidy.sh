#!/usr/bin/env bash
# clang-tidy on all sources, those of a folder together: to look through the headers of the standard library is most of its
# time, and so is paid once a folder. Names must differ within a folder for that, in unnamed namespaces too.
# Use: scripts/tidy.sh [JOBS]
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=${1:-$(nproc)}
folder=$(mktemp -d "${TMPDIR:-/tmp}/trelm_tidy.XXXXXX")
trap 'rm -rf "$folder"' EXIT
cp .clang-tidy "$folder"

while read -r file; do
    together=$folder/$(dirname "$file" | tr / _).cpp
    # Where each file begins: clang-tidy tells lines of the whole.
    echo "$together $(($(cat "$together" 2> /dev/null | wc -l) + 1)) $file" >> "$folder/starts"
    cat "$file" >> "$together"
done < <(git ls-files 'src/*.cpp' 'tools/*.cpp')

flags=(-std=c++20 -O2 -Isrc -Itools -DTRELM_VERSION='"0"' -Wall -Wextra)
# How many steps the analyzer goes through a function: a third of its default takes a third of the time.
flags+=(-Xclang -analyzer-config -Xclang max-nodes=75000)
status=0
find "$folder" -name '*.cpp' -printf '%s %p\n' | sort -rn | cut -d' ' -f2 |
    xargs -P "$jobs" -I{} clang-tidy --quiet {} -- "${flags[@]}" > "$folder/told" 2>&1 || status=1
awk -v starts="$folder/starts" '
    BEGIN { while ((getline line < starts) > 0) { split(line, part, " "); ++count; whole[count] = part[1]; first[count] = part[2]; name[count] = part[3] } }
    {
        split($0, place, ":")
        for (i = count; i > 0; --i)
            if (place[1] == whole[i] && place[2] >= first[i]) {
                $0 = name[i] ":" (place[2] - first[i] + 1) substr($0, length(place[1]) + length(place[2]) + 2)
                break
            }
        print
    }' "$folder/told" | grep -vE '^[0-9]+ (warnings?|errors?)( and [0-9]+ errors?)? (generated|treated)' || true
exit $status
