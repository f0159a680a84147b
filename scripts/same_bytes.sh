#!/usr/bin/env bash
# Builds the program with gcc at -O0, -O2 and -O3 and with clang at -O2, runs every mode on the examples with each
# build, and compares standard output, the error stream, the exit status and all files that a run wrote, byte by
# byte, with those of the first build. One line for each run and for each difference; the status is 1 if there is one.
# Use: scripts/same_bytes.sh [FOLDER]      (default: build/same_bytes; builds in FOLDER/VARIANT, results in FOLDER/runs)
set -euo pipefail
cd "$(dirname "$0")/.."
mkdir -p "${1:-build/same_bytes}"
folder=$(cd "${1:-build/same_bytes}" && pwd)
export LC_ALL=C
unset NMRCHECK

variants=(gcc_O0 gcc_O2 gcc_O3 clang_O2)
declare -A compiler=([gcc_O0]=g++ [gcc_O2]=g++ [gcc_O3]=g++ [clang_O2]=clang++)

ubiquitin=$PWD/examples/ubiquitin
assignment=$PWD/examples/assignment
domains=$PWD/examples/domains
runs=$folder/runs
made=$folder/made # inputs that the scripts of the examples make

build_all() {
    local variant
    for variant in "${variants[@]}"; do
        # No build type: the level of the variant is the only one on the compiler's line.
        cmake -S . -B "$folder/$variant" -G Ninja -DCMAKE_BUILD_TYPE=None -DTRELM_TESTS=OFF \
            -DCMAKE_CXX_COMPILER="${compiler[$variant]}" -DCMAKE_CXX_FLAGS="-${variant#*_}" > "$folder/$variant.log"
        cmake --build "$folder/$variant" --target trelm >> "$folder/$variant.log" || {
            tail -n 40 "$folder/$variant.log" >&2
            return 1
        }
    done
}

make_inputs() {
    mkdir -p "$made"
    python3 "$ubiquitin/make_potential.py" grid > "$made/rod_grid.txt"
    python3 "$domains/make_domains.py" "$ubiquitin/1d3z_model1.pdb" > "$made/domains.pdb"
    # The lysines and three residues that keep their couplings.
    awk 'FNR == NR || (($1 == 3 || $1 == 8 || $1 == 15) && $3 == "H")' "$assignment/lysines.tab" \
        "$ubiquitin/bicelle_hn.tab" > "$made/fixed.tab"
    printf -- '-180 18.69 180\n90 10 45\n0 25 -120\n' > "$made/states.txt"
    { cat "$domains/domains.inp"; echo 'OUTPUT_ENSEMBLE: 3'; } > "$made/listed.inp"
    { cat "$domains/domains.inp"; echo 'FIX_POSITION_DOM1: 1'; echo 'CENTER_PIVOT: 0'; } > "$made/pivot.inp"
}

# In a new folder, so that whatever the run writes there is compared. All are called by the same name.
run_variant() {
    local here=$runs/$1/$2 path=$folder/$1:$PATH status=0
    shift 2
    mkdir -p "$here"
    cd "$here"
    PATH=$path timeout 600 trelm "$@" > stdout.txt 2> stderr.txt < /dev/null || status=$?
    echo "$status" > status.txt
}

count=0 different=0 wanted=0
# run NAME ARGUMENTS...: one run with every build, at the same time, and the comparison. A run that ends with another
# status than $wanted is a fault, too: then there is nothing to compare.
run() {
    local name=$1 variant same=yes status
    for variant in "${variants[@]}"; do
        run_variant "$variant" "$@" &
    done
    wait
    local first=$runs/${variants[0]}/$name
    for variant in "${variants[@]:1}"; do
        if ! diff -rq "$first" "$runs/$variant/$name" > "$folder/difference.txt"; then
            same=no
            sed "s|^|  $variant: |" "$folder/difference.txt"
        fi
    done
    status=$(cat "$first/status.txt")
    [ "$status" -eq "$wanted" ] || same=no
    count=$((count + 1))
    if [ "$same" = yes ]; then
        echo "same: $name, status $status, $(cat "$first"/* | wc -c) bytes in $(find "$first" -type f | wc -l) files"
    else
        different=$((different + 1))
        echo "DIFFERENT: $name, status $status"
    fi
}

structure=(-pdb "$ubiquitin/1d3z_model1.pdb")
measured=(-inD "$ubiquitin/bicelle_hn.tab")

fit() {
    local name=$1 table=$2
    shift 2
    run "fit_$name" -bestFit "${structure[@]}" -inD "$ubiquitin/$table" -outD fit.tab -pdbRot turned.pdb -H "$@"
}

run_fits() {
    local table
    for table in bicelle_hn bicelle2_hn bicelle_hn_all bicelle2_hn_all bicelle_hn_nfirst bicelle_backbone \
        bicelle2_backbone bicelle_cacb synthetic_backbone; do
        fit "$table" "$table.tab"
    done
    local saupe=(-5.6368e-4 0.8665e-4 0.2927e-4 -1.4116e-4 5.6394e-4) magnitude=(-da -4.354e-4 -dr -0.678e-4)
    fit saupe bicelle_hn.tab -saupe "${saupe[@]}"
    fit align bicelle_backbone.tab -align "${saupe[@]}"
    for table in bicelle_hn bicelle_backbone bicelle2_backbone; do
        fit "nofixed_$table" "$table.tab" -nofixed
        fit "dadr_$table" "$table.tab" -dadr "${magnitude[@]}"
        fit "fixed_$table" "$table.tab" -fixed "${magnitude[@]}" -psi 12 -theta 34 -phi 56
        fit "nofixedDI_$table" "$table.tab" -nofixedDI
    done
    fit qRms bicelle_backbone.tab -qRms
    fit qStd bicelle_backbone.tab -qStd
    fit yzInv bicelle_backbone.tab -yzInv -rotID 2
    fit noeuler bicelle_backbone.tab -noeuler
    fit noverb bicelle_hn.tab -noverb -rem "a remark"
    fit window bicelle_backbone.tab -d1 10 -dN 40 -excl -aD1 H -aD2 N
    fit weights bicelle_backbone.tab -inc -w 1 0 2 0.5
    fit selection bicelle_backbone.tab -chain A -cExact -atom "N H CA C"
    run fit_to_stdout -bestFit "${structure[@]}" "${measured[@]}"
}

errors() {
    local name=$1 table=$2
    shift 2
    fit "errors_$name" "$table" -outDa da.txt -outMap map.txt -outAng angles.txt -outA saupe.txt -outFail fails.tab "$@"
}

run_errors() {
    local table
    for table in bicelle_hn bicelle_backbone; do
        errors "mcDc_$table" $table.tab -mcDc -map 1000
        errors "mcStruc_$table" $table.tab -mcStruc -map 1000
        errors "jack_$table" $table.tab -jack -map 1000 -dFrac 0.8
        errors "jack_default_$table" $table.tab -jack -map 1000
    done
    errors mcDc_noauto bicelle_hn.tab -mcDc -map 500 -noautoMc -kAdjustMc 5
    errors mcDc_noerr bicelle2_backbone.tab -mcDc -map 500 -noerr
    errors mcDc_nofixed bicelle_hn.tab -mcDc -map 30 -nofixed
    errors mcDc_none_kept bicelle_hn.tab -mcDc -map 20 -noautoMc -kAdjustMc 0.1
    errors mcStruc_angles bicelle_hn.tab -mcStruc -map 100 -angNoise
    errors mcStruc_fixCone bicelle_backbone.tab -mcStruc -map 500 -noautoCone -fixCone -stdCone 3
    errors mcStruc_nofixedDI bicelle_cacb.tab -mcStruc -map 200 -noautoCone
    errors jack_number bicelle_backbone.tab -jack -map 500 -nDfixed -dFrac 40
}

run_assignments() {
    local search=(-bestFit "${structure[@]}" -H -outD assigned.tab -pdbRot turned.pdb)
    local lysines=(-inD "$assignment/lysines.tab") backbone=(-inD "$assignment/backbone.tab")
    run assign_lysines "${search[@]}" "${lysines[@]}" -exhaust
    run assign_backbone "${search[@]}" "${backbone[@]}" -exhaust
    run assign_classes "${search[@]}" "${lysines[@]}" -exhaust -fixAa 3 4
    run assign_fixed "${search[@]}" -inD "$made/fixed.tab" -exhaust -fixRes 3 8 15
    run assign_subset "${search[@]}" "${lysines[@]}" -exhaustSel -nSel 4
    run assign_subset_first "${search[@]}" "${lysines[@]}" -exhaustSel -nSel 5 -nodcOpt
    run assign_random "${search[@]}" "${lysines[@]}" -rand -map 1000
    run assign_random_backbone "${search[@]}" "${backbone[@]}" -rand -map 300
    run assign_outside "${search[@]}" "${lysines[@]}" -exhaust -lDa 200 -hDa 300
}

run_structural_noise() {
    local noise=(-struc "${structure[@]}" "${measured[@]}" -H -pdbRot noisy.pdb)
    run struc_default "${noise[@]}"
    run struc_seed "${noise[@]}" -idum -77 -stdCone 2
    run struc_fixCone "${noise[@]}" -fixCone -stdCone 8 -digCone 7
    run struc_angNoise "${noise[@]}" -angNoise -stdCone 1
}

predict() {
    local name=$1
    shift
    run "predict_$name" "${structure[@]}" "${measured[@]}" -outD predicted.tab -pdbRot turned.pdb "$@"
}

run_steric() {
    predict wall -stTrelm -H
    predict rod -pf1 -H
    predict no_hydrogens -stTrelm
    predict all_atoms -H -nosurf
    predict rod_all_atoms -pf1 -nosurf
    predict fine -H -dot 700 -digPsi 36 -dGrid 0.05
    predict dilute -H -dGrid 0.002
    predict thick -H -rM 40 -wv 0.1 -lcS 0.4 -rA 2 -rim 1
    predict rod_thick -pf1 -H -wv 0.01 -rA 1.5
    predict acid -H -pH 3.5 -outPka charges.txt
    predict charmm -H -charmm -outPka charges.txt
    predict charmm22 -H -charmm22 -outPka charges.txt
    predict grid -H -3D -pot3D "$made/rod_grid.txt" -nX 33 -nY 33 -nZ 9 -dX 4 -dY 4 -dZ 4 -z1 1 -zN 9
    run predict_no_table "${structure[@]}" -H -outD predicted.tab
    run predict_free -stTrelmFree -pdbF "$ubiquitin/heavy_atoms.txt" -outA tensor.tab
    run predict_free_rod -stTrelmFree -pf1 -rA 1.5 -pdbF "$ubiquitin/heavy_atoms.txt"
}

run_electrostatic() {
    local charge grid=(-3D -pot3D "$made/rod_grid.txt" -nX 33 -nY 33 -nZ 9 -dX 4 -dY 4 -dZ 4 -z1 1 -zN 9 -massLC 0.005)
    for charge in -0.47 -0.1 0.0 0.1 0.2; do
        predict "el_wall_$charge" -elTrelm -H -chSurf "$charge"
    done
    predict el_wall_cut -elTrelm -H -cut 400
    predict el_wall_no_hydrogens -elTrelm -elInfo
    predict el_wall_dipole -elTrelm -H -dipole -kDipo 2
    predict el_wall_charges -elTrelm -H -chSel
    predict el_wall_warm -elTrelm -H -temp 320 -nacl 0.05 -pH 5
    predict el_wall_charmm -elTrelm -H -charmm
    predict el_rod -elTrelm -pf1 -H -pot "$ubiquitin/rod_potential.txt"
    predict el_rod_scaled -elTrelm -pf1 -H -pot "$ubiquitin/rod_potential.txt" -kPot 2 -elInfo
    predict el_rod_dipole -elTrelm -pf1 -pot "$ubiquitin/rod_potential.txt" -dipole
    predict el_rod_no_field -elTrelm -pf1 -H
    predict el_grid -elTrelm -H "${grid[@]}"
    predict el_grid_rough -elTrelm -H "${grid[@]}" -maxPot 0.5 -dot 30
    local mode
    for mode in elTrelmFree elTrelmGrid csSim asRan; do
        run "inputs_$mode" -$mode "${structure[@]}" -elInfo -outPka charges.txt
    done
}

ensemble() {
    local name=$1
    shift
    run "ensemble_$name" -stTrelmGrid -pdb "$made/domains.pdb" "${measured[@]}" -H -pdbRot start.pdb -outE states.txt \
        -outEAx axes.txt -flex angles.log -dcEns states.tab -ave average.tab "$@"
}

run_ensembles() {
    local config=(-inp "$domains/domains.inp" -nopkaDef)
    ensemble wall "${config[@]}"
    ensemble rod "${config[@]}" -pf1 -dot 30
    ensemble charged -inp "$domains/domains.inp" -el -chSurf 0.1 -dot 30
    ensemble charged_rod -inp "$domains/domains.inp" -el -pf1 -pot "$ubiquitin/rod_potential.txt" -dot 12
    ensemble read "${config[@]}" -inE "$made/states.txt"
    ensemble listed -inp "$made/listed.inp" -nopkaDef
    ensemble pivot -inp "$made/pivot.inp" -nopkaDef -dot 30
}

run_analyses() {
    local tensor=(-inS -2.0e-3 1e-3 5e-4 4e-4 3e-4) axes
    for axes in ster el user; do
        run "structure_$axes" -anPdb "${structure[@]}" -H "${tensor[@]}" -$axes -outP report.txt -pdbRot turned.pdb
        run "structure_plain_$axes" -anPdb "${structure[@]}" -$axes -nosurf -outP report.txt -pdbRot turned.pdb
    done
    local first=(-inS1 -5.6237e-04 7.1774e-05 2.7480e-05 -1.3829e-04 5.6242e-04) action
    local second=(-inS2 -1.0494e-03 5.1898e-04 -5.0508e-04 -2.3027e-04 8.4644e-04)
    for action in add sub mul div max; do
        run "tensors_$action" -anA "${first[@]}" "${second[@]}" -$action -c1 2 -c2 0.5 -outA report.txt
        run "tables_$action" -anDc -$action -c1 1 -inD1 "$ubiquitin/bicelle_backbone.tab" \
            -inD2 "$ubiquitin/bicelle2_backbone.tab" -outD combined.tab
    done
    # Frames, hinges and quotients that are no numbers: their signs are printed, too.
    run tensors_equal -anA "${first[@]}" -inS2 "${first[@]:1}" -outA report.txt
    run tensors_one -anA "${first[@]}" -div
    run tensors_none -anA
    run tensors_hinge -anA "${first[@]}" "${second[@]}" -hinge 0.6 0 0.8 -twist 0 1 0 -rotID 2 -yzInv
    run tensors_hinge_twist -anA "${first[@]}" "${second[@]}" -hinge 0 0 1 -twist 0 0 1
    run tensors_axes -anA -inS1 1e-3 0 0 0 0 -inS2 1e-3 2e-4 0 0 0
    run tables_default -anDc -inD1 "$ubiquitin/bicelle_hn.tab" -inD2 "$ubiquitin/bicelle2_hn.tab"
}

run_conversions() {
    local form
    for form in tbl xplor cns dyana rosetta trelm; do
        run "convert_$form" -conv -$form -inD "$ubiquitin/bicelle_backbone.tab" -outD converted.txt
        run "convert_noise_$form" -conv -$form -dcNoise -scale -dcHH -inD "$ubiquitin/bicelle_backbone.tab"
    done
}

run_magnitudes() {
    local name table hist=(-outD report.tab)
    for name in bicelle_hn bicelle2_hn; do
        table=(-inD "$ubiquitin/$name.tab")
        run "hist_$name" -daHist "${table[@]}" "${hist[@]}"
        run "hist_noave_$name" -daHist "${table[@]}" "${hist[@]}" -noave
        run "hist_2_$name" -daHist "${table[@]}" "${hist[@]}" -nFit 2
        run "hist_2_noave_$name" -daHist "${table[@]}" "${hist[@]}" -nFit 2 -noave
        run "hist_bin_$name" -daHist "${table[@]}" "${hist[@]}" -bin 20
        run "hist_0_$name" -daHist "${table[@]}" "${hist[@]}" -nFit 0
        run "likelihood_$name" -daMl "${table[@]}" "${hist[@]}" -outSc scores.txt
        run "likelihood_clear_$name" -daMl -clearMl "${table[@]}" "${hist[@]}" -outSc scores.txt
        run "likelihood_map_$name" -daMl -clearMl -mapMl -lDa 3 -hDa 25 "${table[@]}" "${hist[@]}" -outSc scores.txt
        run "sets_$name" -daFlex "${table[@]}" "${hist[@]}" -outSc sets.txt -outCol map.txt
        run "sets_2_$name" -daFlex -nFit 2 "${table[@]}" "${hist[@]}" -outSc sets.txt -outCol map.txt
        run "sets_45_$name" -daFlex -nFit 2 -nSel 45 "${table[@]}" "${hist[@]}" -outSc sets.txt -outCol map.txt
    done
    run likelihood_to_stdout -daMl -incDa 0.5 -lR 0.1 -hR 0.4 "${measured[@]}"
    run sets_all -daFlex -nSel 0 -nRun 20 -bin 15 "${measured[@]}"
}

run_texts() {
    run version -version
    wanted=1
    run help -help
    run no_arguments
    run no_file -bestFit -pdb none.pdb -inD none.tab -outD fit.tab
    wanted=0
}

main() {
    local start=$SECONDS
    build_all
    echo "builds: $((SECONDS - start)) s"
    make_inputs
    rm -rf "$runs"
    start=$SECONDS
    run_fits
    run_errors
    run_assignments
    run_structural_noise
    run_steric
    run_electrostatic
    run_ensembles
    run_analyses
    run_conversions
    run_magnitudes
    run_texts
    echo "$count runs with each of ${variants[*]} in $((SECONDS - start)) s, $different of them different"
    [ "$different" -eq 0 ]
}

main; exit # all on one line: read before the run, so that the script may change meanwhile
