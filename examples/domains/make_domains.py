#!/usr/bin/env python3
"""Builds a molecule of two domains out of two copies of one structure.

    make_domains.py STRUCTURE.pdb > domains.pdb

The second copy is numbered on by 100, turned by half a turn about the z axis of the file, and moved along
the x axis until the backbones of the copies are GAP apart. There is no linker: the pair stands for two rigid
domains, not for a molecule that was ever made.
"""
import math
import sys

OFFSET = 100  # added to the residue numbers of the second copy
GAP = 8.0  # smallest distance between the backbones of the two copies, angstrom
STEP = 0.25  # angstrom


def read_atoms(name):
    """Each ATOM line with its coordinates."""
    atoms = []
    with open(name, encoding="ascii") as lines:
        for line in lines:
            if line.startswith("ATOM"):
                atoms.append((line.rstrip("\n"), [float(line[k:k + 8]) for k in (30, 38, 46)]))
    if not atoms:
        sys.exit(f"{name} holds no ATOM line")
    return atoms


def centred(atoms):
    centre = [sum(xyz[k] for _, xyz in atoms) / len(atoms) for k in range(3)]
    return [(line, [xyz[k] - centre[k] for k in range(3)]) for line, xyz in atoms]


def backbone(atoms):
    return [xyz for line, xyz in atoms if line[12:16].strip() in ("N", "CA", "C")]


def apart(first, second, shift):
    """Whether the backbones keep their distance when the second is moved by `shift`."""
    return all(math.dist(a, (b[0] + shift, b[1], b[2])) >= GAP for a in first for b in second)


def atom_line(line, serial, residue, xyz):
    return f"ATOM  {serial:5d}{line[11:22]}{residue:4d}{line[26:30]}{xyz[0]:8.3f}{xyz[1]:8.3f}{xyz[2]:8.3f}{line[54:]}"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    first = centred(read_atoms(sys.argv[1]))
    second = [(line, [-xyz[0], -xyz[1], xyz[2]]) for line, xyz in first]
    fixed, moving = backbone(first), backbone(second)
    shift = 0.0
    while not apart(fixed, moving, shift):
        shift += STEP
    print("REMARK Two copies of one structure, put side by side: constructed, not observed.")
    serial = 0
    for atoms, offset, moved in ((first, 0, 0.0), (second, OFFSET, shift)):
        for line, xyz in atoms:
            serial += 1
            print(atom_line(line, serial, int(line[22:26]) + offset, (xyz[0] + moved, xyz[1], xyz[2])))
    print("END")


if __name__ == "__main__":
    main()
