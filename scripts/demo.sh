#!/bin/sh
# Best-fit of ubiquitin's measured couplings to its structure; the results go to out/demo.
set -eu
program=$1
example=examples/ubiquitin
out=out/demo
mkdir -p "$out"
"$program" -bestFit -pdb "$example/1d3z_model1.pdb" -inD "$example/bicelle_hn.tab" \
    -outD "$out/fit.tab" -pdbRot "$out/turned.pdb" -H 2> "$out/run.log"
echo "trelm -bestFit on $example/bicelle_hn.tab:"
grep -E '^DATA (SAUPE |Da_HN|Rhombicity|N |RMS|Chi2|CORR|Q )' "$out/fit.tab"
echo "The whole report and the coupling table: $out/fit.tab"
echo "The structure in the tensor's frame:     $out/turned.pdb, .0 to .3"
