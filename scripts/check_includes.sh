#!/bin/sh
# Who may include whom in src: each folder names those below it; all stand on ground. Prints every include that goes
# elsewhere; status 1 if there is any.
set -eu
cd "$(dirname "$0")/.."

allowed() {
    case $1 in
    ground | support) echo "" ;;
    structure) echo "support" ;;
    couplings) echo "structure support" ;;
    simulation) echo "couplings structure support" ;;
    errors | compare) echo "simulation couplings structure support" ;;
    assignment) echo "couplings structure support" ;;
    magnitude) echo "errors simulation couplings structure support" ;;
    driver) echo "magnitude assignment compare errors simulation couplings structure support" ;;
    *) echo "unknown" ;;
    esac
}

status=0
for folder in src/*/; do
    name=$(basename "$folder")
    below=$(allowed "$name")
    if [ "$below" = unknown ]; then
        echo "src/$name: this folder has no place in scripts/check_includes.sh" >&2
        status=1
        continue
    fi
    pattern="ground/|$name/"
    for other in $below; do
        pattern="$pattern|$other/"
    done
    if grep -nE '^#include "' "$folder"*.h "$folder"*.cpp | grep -vE "#include \"($pattern)"; then
        echo "src/$name may include only: $below ground" >&2
        status=1
    fi
done
exit $status
