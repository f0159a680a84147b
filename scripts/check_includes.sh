#!/bin/sh
# Who may include whom in src: each room names those below it; all stand on ground. And who may write to a stream:
# the command, the modes, and those that carry what is said. Prints every line that does otherwise; status 1 if there is
# any.
set -eu
cd "$(dirname "$0")/.."

structure="support structure"
couplings="$structure couplings"
obstacle="simulation/orientations simulation/charges simulation/obstacle"
simulation="$couplings simulation"
report="$simulation errors compare assignment magnitude report"

# Room, and the rooms that its files may include beside ground; a room holds its sub-rooms.
rooms="
ground                  : ground
support                 : support
structure               : $structure
couplings               : $couplings
simulation/orientations : $couplings simulation/orientations
simulation/charges      : $couplings simulation/orientations simulation/charges
simulation/obstacle     : $couplings $obstacle
simulation/alignment    : $couplings $obstacle simulation/alignment
simulation/domains      : $simulation
errors                  : $simulation errors
compare                 : $simulation compare
assignment              : $couplings assignment
magnitude               : $simulation errors magnitude
report                  : $report
modes                   : $report modes
command                 : $report modes command
"

status=0
for file in $(git ls-files 'src/*.h' 'src/*.cpp'); do
    place=${file#src/}
    below=$(echo "$rooms" | awk -v place="$place" '$1 != "" && index(place, $1 "/") == 1 { $1 = $2 = ""; print }')
    if [ -z "$below" ]; then
        echo "$file: this folder has no place in scripts/check_includes.sh" >&2
        status=1
        continue
    fi
    pattern=$(echo "ground $below" | sed 's/  */ /g; s/ $//; s| |/\||g')/
    if grep -HnE '^#include "' "$file" | grep -vE "#include \"($pattern)"; then
        echo "$file may include only: ground $below" >&2
        status=1
    fi
done

streams='\b(v?f?printf|puts|fputs|putchar|f?putc|fwrite|perror) *\(|\b(stdout|stderr)\b|\bstd::(cout|cerr|clog)\b'
if git ls-files 'src/*.h' 'src/*.cpp' | grep -vE '^src/(ground|command|modes)/|^src/support/text/output_file\.' |
    xargs grep -HnE "$streams" | grep -vE '^[^:]*:[0-9]*: *//'; then
    echo "only the command and the modes talk: what lies below hands its words to Messages" >&2
    status=1
fi
exit $status
