#!/bin/sh
# Best-fit of ubiquitin's measured couplings to its structure, and their prediction from its shape alone; the
# results go to out/demo. The program is named as seen from the checkout's root.
set -eu
cd "$(dirname "$0")/.."
program=$1
example=examples/ubiquitin
out=out/demo
mkdir -p "$out"
"$program" -bestFit -pdb "$example/1d3z_model1.pdb" -inD "$example/bicelle_hn.tab" \
    -outD "$out/fit.tab" -pdbRot "$out/turned.pdb" -H 2> "$out/fit.log"
echo "trelm -bestFit on $example/bicelle_hn.tab:"
grep -E '^DATA (SAUPE |Da_HN|Rhombicity|N |RMS|Chi2|CORR|Q )' "$out/fit.tab"
echo "The whole report and the coupling table: $out/fit.tab"
echo "The structure in the tensor's frame:     $out/turned.pdb, .0 to .3"
echo
"$program" -stTrelm -pdb "$example/1d3z_model1.pdb" -inD "$example/bicelle_hn.tab" \
    -outD "$out/predicted.tab" -pdbRot "$out/predicted.pdb" -H 2> "$out/prediction.log"
echo "trelm -stTrelm, the same couplings predicted from the shape beside a wall of bicelles:"
grep -E '^DATA (SAUPE |Da_HN|Rhombicity|N |RMS|CORR)' "$out/predicted.tab"
# Q from rms: the root of sum (measured - predicted)^2 / sum measured^2, over the table's rows.
awk '/^VARS/ { for (i = 2; i <= NF; ++i) column[$i] = i - 1 }
     rows && NF { d = $column["D_OBS"]; c = $column["D"]; square += (d - c) ^ 2; measured += d ^ 2 }
     /^FORMAT/ { rows = 1 }
     END { printf "Q from rms, prediction against measurement: %.3f\n", sqrt(square / measured) }' "$out/predicted.tab"
echo "The whole report and the coupling table: $out/predicted.tab"
