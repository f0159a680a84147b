#!/usr/bin/env bash
# Runs the test programs of the floors, the replay of the fuzzers' corpus, and a short whole run of every mode under
# valgrind's memcheck: reads and writes outside of blocks, values that were never set, blocks that were lost. One line
# each; where one fails its log is shown and the status is 1.
# Use: scripts/valgrind.sh [FOLDER]        (default: build/valgrind; built there, logs in FOLDER/logs)
set -euo pipefail
cd "$(dirname "$0")/.."
command -v valgrind > /dev/null || { echo "valgrind.sh: please install valgrind" >&2; exit 1; }
mkdir -p "${1:-build/valgrind}"
folder=$(cd "${1:-build/valgrind}" && pwd)
logs=$folder/logs
jobs=$(nproc)
export LC_ALL=C
unset NMRCHECK

# These compare a time with a limit, and here everything takes twenty to fifty times as long.
left_out=(Table.ManyTextsAndManyColumnsStayFast AdjustDC.LargeTablesTakeNoTime)
# Likelihoods on whole grids: some twenty minutes here. Other tests go through the same lines on small grids.
left_out+=(Likelihood.TensorsComeBackWithinTheirErrors Likelihood.LimitsOfEitherOrderAndSign)
# Counts beyond 1e308: valgrind works with doubles where the processor has long doubles.
left_out+=(Candidates.AreNeverWrapped)
# test_cli and test_faults are not among the programs: they start the program hundreds and thousands of times and look
# at what comes out. What is worth watching is the program, and the whole runs below do that. The longest come first.
floors=(ground simulation magnitude assignment errors support structure couplings report compare command tools)

ubiquitin=$PWD/examples/ubiquitin
assignment=$PWD/examples/assignment
domains=$PWD/examples/domains
corpus=$PWD/tests/fuzz/corpus
mapfile -t readers < <(ls "$corpus")
memcheck=(valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite --num-callers=20)

build() {
    local targets=(trelm "${floors[@]/#/test_}" "${readers[@]/#/fuzz_}")
    # -O1 keeps the lines of a report near to those of the source, and is several times as fast as -O0.
    cmake -S . -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS="-O1 -g" > "$folder/build.log"
    cmake --build "$folder" --target "${targets[@]}" >> "$folder/build.log" || {
        tail -n 40 "$folder/build.log" >&2
        return 1
    }
}

# watch NAME STATUS COMMAND...: in a new folder, beside the others that run; it has to end with the status.
watch() {
    local name=$1 wanted=$2
    shift 2
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do
        wait -n || true
    done
    watch_one "$name" "$wanted" "$@" &
}

watch_one() {
    local name=$1 wanted=$2 status=0 before=$SECONDS
    shift 2
    mkdir -p "$logs/$name"
    cd "$logs/$name"
    "${memcheck[@]}" --log-file=memcheck.txt "$@" > stdout.txt 2> stderr.txt < /dev/null || status=$?
    if [ "$status" -eq "$wanted" ] && [ ! -s memcheck.txt ]; then
        echo "clean: $name, $((SECONDS - before)) s"
        touch clean
    else
        echo "FAULT: $name, status $status, $((SECONDS - before)) s"
        tail -n 15 stdout.txt stderr.txt
        head -n 60 memcheck.txt
    fi
}

watch_tests() {
    local floor reader leave_out
    leave_out=$(IFS=:; echo "${left_out[*]}")
    for floor in "${floors[@]}"; do
        watch "test_$floor" 0 "$folder/tests/test_$floor" --gtest_brief=1 --gtest_filter="*-$leave_out"
    done
    for reader in "${readers[@]}"; do
        watch "corpus_$reader" 0 "$folder/tests/fuzz/fuzz_$reader" "$corpus/$reader"
    done
}

run() {
    local name=$1
    shift
    watch "run_$name" 0 "$folder/trelm" "$@"
}

structure=(-pdb "$ubiquitin/1d3z_model1.pdb")
measured=(-inD "$ubiquitin/bicelle_hn.tab")

watch_fits() {
    local fit=(-bestFit "${structure[@]}" "${measured[@]}" -H -outD fit.tab -pdbRot turned.pdb) kind
    local samples=(-map 10 -nAdjustMc 10 -nCone 3 -outDa da.txt -outMap map.txt -outAng angles.txt -outA saupe.txt
        -outFail fails.tab)
    run fit "${fit[@]}"
    run fit_saupe "${fit[@]}" -saupe -5.6e-4 0.9e-4 0.3e-4 -1.4e-4 5.6e-4
    run fit_nofixed "${fit[@]}" -nofixed
    run fit_dadr "${fit[@]}" -dadr -da -4.354e-4 -dr -0.678e-4
    run fit_fixed "${fit[@]}" -fixed
    for kind in mcDc mcStruc jack; do
        run "fit_$kind" "${fit[@]}" -$kind "${samples[@]}"
    done
    run fit_angNoise "${fit[@]}" -mcStruc -angNoise "${samples[@]}"
    local search=(-bestFit "${structure[@]}" -H -inD "$assignment/lysines.tab" -outD assigned.tab)
    run exhaust "${search[@]}" -exhaust
    run exhaust_classes "${search[@]}" -exhaust -fixAa 3 4
    run exhaustSel "${search[@]}" -exhaustSel -nSel 3
    run rand "${search[@]}" -rand -map 10
    run struc -struc "${structure[@]}" "${measured[@]}" -H -pdbRot noisy.pdb
    run struc_angNoise -struc -angNoise "${structure[@]}" "${measured[@]}" -H
}

watch_predictions() {
    local few=(-dot 6 -digPsi 4) mode
    local all=("${structure[@]}" "${measured[@]}" -H -outD predicted.tab -pdbRot turned.pdb "${few[@]}")
    local grid=(-3D -pot3D "$folder/rod_grid.txt" -nX 33 -nY 33 -nZ 9 -dX 4 -dY 4 -dZ 4 -z1 1 -zN 9 -massLC 0.005)
    local ensemble=(-stTrelmGrid -pdb "$folder/domains.pdb" "${measured[@]}" "${few[@]}" -pdbRot start.pdb
        -outE states.txt -outEAx axes.txt -flex angles.log -dcEns states.tab -ave average.tab)
    run stTrelm "${all[@]}"
    run stTrelm_rod "${all[@]}" -pf1 -charmm22 -outPka charges.txt
    run stTrelm_grid "${all[@]}" "${grid[@]}"
    run stTrelmFree -stTrelmFree -pdbF "$ubiquitin/heavy_atoms.txt" -outA tensor.tab "${few[@]}"
    run elTrelm -elTrelm "${all[@]}" -elInfo
    run elTrelm_rod -elTrelm "${all[@]}" -pf1 -pot "$ubiquitin/rod_potential.txt"
    run elTrelm_grid -elTrelm "${all[@]}" "${grid[@]}"
    run elTrelm_dipole -elTrelm "${all[@]}" -dipole
    run stTrelmGrid "${ensemble[@]}" -inp "$folder/few.inp"
    run stTrelmGrid_el "${ensemble[@]}" -inp "$folder/few.inp" -el
    for mode in elTrelmFree elTrelmGrid csSim asRan; do
        run $mode -$mode "${structure[@]}" -elInfo
    done
}

watch_other_modes() {
    local kind report=(-outD report.tab)
    for kind in ster el user; do
        run "anPdb_$kind" -anPdb -$kind "${structure[@]}" -H -inS -2e-3 1e-3 5e-4 4e-4 3e-4 -outP report.txt \
            -pdbRot turned.pdb
    done
    run anA -anA -inS1 -5.6e-4 7.2e-5 2.7e-5 -1.4e-4 5.6e-4 -inS2 -1.0e-3 5.2e-4 -5.1e-4 -2.3e-4 8.5e-4
    run anDc -anDc -sub -c1 1 -inD1 "$ubiquitin/bicelle_hn.tab" -inD2 "$ubiquitin/bicelle2_hn.tab" "${report[@]}"
    for kind in tbl xplor cns dyana rosetta trelm; do
        run "conv_$kind" -conv -$kind -dcNoise -scale "${measured[@]}" -outD converted.txt
    done
    run daHist -daHist "${measured[@]}" "${report[@]}"
    run daMl -daMl -clearMl -mapMl -lDa 5 -hDa 12 -incDa 1 -incR 0.2 "${measured[@]}" "${report[@]}" -outSc scores.txt
    run daFlex -daFlex -nFit 2 -nRun 10 "${measured[@]}" "${report[@]}" -outSc sets.txt -outCol map.txt
    run version -version
    watch run_help 1 "$folder/trelm" -help
    watch run_no_file 1 "$folder/trelm" -bestFit -pdb none.pdb -inD none.tab
}

main() {
    local start=$SECONDS count clean
    build
    echo "build: $((SECONDS - start)) s"
    rm -rf "$logs"
    python3 "$ubiquitin/make_potential.py" grid > "$folder/rod_grid.txt"
    python3 "$domains/make_domains.py" "$ubiquitin/1d3z_model1.pdb" > "$folder/domains.pdb"
    sed 's/^ENSEMBLE_DENSITY:.*/ENSEMBLE_DENSITY: 30/; s/^ENSEMBLE_GAMMA:.*/ENSEMBLE_GAMMA: 2/' \
        "$domains/domains.inp" > "$folder/few.inp"
    start=$SECONDS
    watch_tests
    watch_fits
    watch_predictions
    watch_other_modes
    wait
    count=$(find "$logs" -mindepth 1 -maxdepth 1 -type d | wc -l)
    clean=$(find "$logs" -name clean | wc -l)
    echo "$count programs and runs under valgrind in $((SECONDS - start)) s, $((count - clean)) of them with a fault"
    [ "$count" -eq "$clean" ]
}

main; exit # all on one line: read before the run, so that the script may change meanwhile
