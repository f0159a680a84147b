#!/usr/bin/env python3
"""Potentials of a charged rod for trelm, from the Gouy-Chapman formula.

  make_potential.py table > rod_potential.txt   distance [nm] and potential [kT/e], for -pf1 -pot
  make_potential.py grid  > rod_grid.txt        a grid in space around the rod, for -3D -pot3D

The potential at the distance D from a charged flat surface in salt is

  y(D) = 2 ln((1 + g exp(-kappa D)) / (1 - g exp(-kappa D))),   g = tanh(y0 / 4),
  y0 = 2 asinh(kappa sigma / (4 rho)),   kappa^2 = 8 pi rho lB

with the density rho of ion pairs, the surface charge sigma and the Bjerrum length lB of water (0.716 nm).
It is used here at the distance from the surface of a rod, which is fair as long as the rod is thick against
the Debye length 1/kappa. Sources: Gouy, J. Phys. 9 (1910) 457; Chapman, Philos. Mag. 25 (1913) 475.
"""
import math
import sys

SALT = 0.2          # mol/l, as -nacl
SIGMA = -0.47       # e per square nanometre
BJERRUM = 0.716     # nm
ROD_RADIUS = 3.35   # nm, of the grid's rod
STEP = 0.05         # nm, of the table
REACH = 15.0        # nm, of the table

COUNT = (33, 33, 9)  # points of the grid along x, y, z; the rod lies along z
SPACING = 0.4        # nm
INSIDE = 20.0        # kT/e, above -maxPot: no atom may be there

RHO = SALT * 0.6022  # ion pairs per cubic nanometre
KAPPA = math.sqrt(8.0 * math.pi * RHO * BJERRUM)
GAMMA = math.tanh(0.5 * math.asinh(KAPPA * SIGMA / (4.0 * RHO)))


def potential(distance):
    decayed = GAMMA * math.exp(-KAPPA * distance)
    return 2.0 * math.log((1.0 + decayed) / (1.0 - decayed))


def write_table():
    for i in range(round(REACH / STEP) + 1):
        print(f"{i * STEP:.3f} {potential(i * STEP):.8e}")


def write_grid():
    for line in ("potential of a rod along z [kT/e]", f"salt {SALT} mol/l", f"surface charge {SIGMA} e/nm^2",
                 f"radius {ROD_RADIUS} nm", f"points {COUNT[0]} {COUNT[1]} {COUNT[2]}",
                 f"spacing {SPACING} nm", "values: z fastest, then y, then x", "", "", "", ""):
        print(line)
    values = []
    for x in range(COUNT[0]):
        for y in range(COUNT[1]):
            # The rod's axis goes through the point number n / 2 + 1 of each axis.
            radius = SPACING * math.hypot(x - COUNT[0] // 2, y - COUNT[1] // 2)
            inside = radius <= ROD_RADIUS
            values += [INSIDE if inside else potential(radius - ROD_RADIUS)] * COUNT[2]
    for i in range(0, len(values), 3):
        print(" ".join(f"{value:.6e}" for value in values[i:i + 3]))


if __name__ == "__main__":
    roads = {"table": write_table, "grid": write_grid}
    if len(sys.argv) != 2 or sys.argv[1] not in roads:
        sys.exit(__doc__)
    roads[sys.argv[1]]()
