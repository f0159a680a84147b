#!/usr/bin/env python3
"""Turns assigned couplings into peaks without assignment, to see whether a search finds the assignment again.

  shuffle_peaks.py COUPLINGS.tab STRUCTURE.pdb NAME|FEWEST > shuffled.tab

NAME takes the residues of one type (LYS), a number all residues whose peak has at least so many couplings (1: every
residue with an N-H coupling). The couplings of a peak stay together and go to another residue of the set, by a
permutation that is the same in every run; the table tells it in REMARK lines as "peak P is residue R". The peak of
residue R has the couplings N-H of R, H-C, N-C, CA-HA and CA-C of R and the residue before it, as far as they were
measured. They are written under the number of the peak, also where the structure lacks the atoms there (HA of a
glycine): then the coupling takes no part in the search. W is 1/DD, so that all types weigh alike in the score.
"""
import random
import sys

TYPES = {("H", "N"): (0, 0), ("H", "C"): (0, -1), ("N", "C"): (0, -1), ("CA", "HA"): (-1, -1), ("CA", "C"): (-1, -1)}


def read_couplings(name):
    """(peak, type) -> coupling and error."""
    couplings = {}
    for line in open(name):
        words = line.split()
        if len(words) != 9 or words[0] in ("VARS", "FORMAT", "REMARK"):
            continue
        first, second = int(words[0]), int(words[3])
        pair = (words[2], words[5])
        if pair[::-1] in TYPES:
            first, second, pair = second, first, pair[::-1]
        if pair in TYPES:
            couplings[(first - TYPES[pair][0], pair)] = (float(words[6]), float(words[7]))
    return couplings


def read_residues(name):
    """Residue number -> residue name."""
    return {int(line[22:26]): line[17:20].strip() for line in open(name) if line.startswith("ATOM")}


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    couplings = read_couplings(sys.argv[1])
    residues = read_residues(sys.argv[2])
    peaks = sorted(peak for peak, pair in couplings if pair == ("H", "N"))
    if sys.argv[3].isdigit():
        peaks = [p for p in peaks if sum((p, pair) in couplings for pair in TYPES) >= int(sys.argv[3])]
    else:
        peaks = [p for p in peaks if residues[p] == sys.argv[3]]
    shuffled = peaks[:]
    random.Random(1).shuffle(shuffled)
    for label, residue in zip(peaks, shuffled):
        print(f"REMARK peak {label} is residue {residue}")
    print("VARS   RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W")
    print("FORMAT %5d %6s %6s %5d %6s %6s %9.3f %12.3f %.6f\n")
    for pair, offsets in TYPES.items():
        def write(peak, value, error, weight):
            i, j = peak + offsets[0], peak + offsets[1]
            print(f"{i:5d} {residues[i]:>6s} {pair[0]:>6s} {j:5d} {residues[j]:>6s} {pair[1]:>6s}"
                  f" {value:9.3f} {error:12.3f} {weight:.6f}")

        for label, residue in zip(peaks, shuffled):
            if (residue, pair) in couplings:
                value, error = couplings[(residue, pair)]
                write(label, value, error, 1.0 / error)


if __name__ == "__main__":
    main()
