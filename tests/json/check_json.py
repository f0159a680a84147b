#!/usr/bin/env python3
"""Runs fits with -outJ: the file keeps docs/schema.json, and every number of the told report stands in it.

check_json.py PROGRAM SOURCE_FOLDER
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

import jsonschema

program, root = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
ubiquitin = root / "examples/ubiquitin"
schema = json.loads((root / "docs/schema.json").read_text())
jsonschema.Draft7Validator.check_schema(schema)

# Labels of the report, and where their numbers stand.
TOLD = {
    "DATA SAUPE ": lambda r: list(r["tensor"]["saupe"].values()),
    "DATA IRREDUCIBLE ": lambda r: list(r["tensor"]["irreducible"].values()),
    "DATA IRREDUCIBLE GENERAL_MAGNITUDE": lambda r: [r["tensor"]["generalMagnitude"]],
    "DATA MAPPING ": lambda r: sum((r["tensor"]["axes"][a]["map"] for a in "zyx"), []),
    "DATA MAPPING INV": lambda r: sum((r["tensor"]["axes"][a]["mapOfOpposite"] for a in "zyx"), []),
    "DATA EIGENVALUES (Sxx_d,Syy_d,Szz_d)": lambda r: [r["tensor"]["axes"][a]["eigenvalue"] for a in "xyz"],
    "DATA EIGENVECTORS X_AXIS": lambda r: r["tensor"]["axes"]["x"]["direction"],
    "DATA EIGENVECTORS Y_AXIS": lambda r: r["tensor"]["axes"]["y"]["direction"],
    "DATA EIGENVECTORS Z_AXIS": lambda r: r["tensor"]["axes"]["z"]["direction"],
    "DATA Q_EULER_ANGLES": lambda r: [x for k, e in enumerate(r["tensor"]["eulerZyz"]) for x in (k + 1, *e.values())],
    "DATA EULER_SOLUTIONS": lambda r: [len(r["tensor"]["eulerXyz"])],
    "DATA EULER_ANGLES": lambda r: [x for e in r["tensor"]["eulerXyz"] for x in e.values()],
    "DATA Da ": lambda r: [r["tensor"]["da"]],
    "DATA Dr ": lambda r: [r["tensor"]["dr"]],
    "DATA Aa ": lambda r: [r["tensor"]["aa"]],
    "DATA Ar ": lambda r: [r["tensor"]["ar"]],
    "DATA Da_HN": lambda r: [r["tensor"]["daNH"]],
    "DATA Rhombicity": lambda r: [r["tensor"]["rhombicity"]],
    "DATA DA_RANGE": lambda r: r["tensor"]["limits"]["da"],
    "DATA DR_RANGE": lambda r: r["tensor"]["limits"]["dr"],
    "DATA PSI_RANGE": lambda r: r["tensor"]["limits"]["psi"],
    "DATA THETA_RANGE": lambda r: r["tensor"]["limits"]["theta"],
    "DATA PHI_RANGE": lambda r: r["tensor"]["limits"]["phi"],
    "DATA N ": lambda r: [r["statistics"]["count"]],
    "DATA RMS": lambda r: [r["statistics"]["rms"]],
    "DATA Chi2": lambda r: [r["statistics"]["chiSquare"]],
    "DATA CORR R": lambda r: [r["statistics"]["correlation"]],
    "DATA Q RDC_RMS": lambda r: [r["statistics"]["qRms"]],
    "DATA Q SAUPE": lambda r: [r["statistics"]["qSaupe"]],
    "DATA Q STDDEV": lambda r: [r["statistics"]["standardDeviation"]],
    "DATA REGRESSION OFFSET": lambda r: [r["statistics"]["offset"], r["statistics"]["offsetError"]],
    "DATA REGRESSION SLOPE": lambda r: [r["statistics"]["slope"], r["statistics"]["slopeError"]],
    "DATA REGRESSION BAX SLOPE": lambda r: [r["statistics"]["meanSlope"], r["statistics"]["meanSlopeError"]],
}


def spread(key):
    return lambda r: list(r["samples"][key].values())


MAPPING = "DATA STATISTICS MAPPING "
TOLD |= {MAPPING + label: place for label, place in {
    "NUMBER OF SUCCESFUL STEPS": lambda r: [r["samples"]["count"]],
    "G_MAG (AVERAGE/STD_DEV/MIN/MAX)": spread("generalMagnitude"),
    "Da_HN (AVERAGE/STD_DEV/MIN/MAX)": spread("daNH"),
    "ANGLE_5D (AVERAGE/STD_DEV/MIN/MAX)": spread("angle5d"),
    "SZZ (AVERAGE/STD_DEV/MIN/MAX)": spread("szz"),
    "Da (AVERAGE/STD_DEV/MIN/MAX)": spread("da"),
    "Dr (AVERAGE/STD_DEV/MIN/MAX)": spread("dr"),
    "SAUPE AVERAGE": lambda r: list(r["samples"]["saupe"]["mean"].values()),
    "SAUPE STD_DEV": lambda r: list(r["samples"]["saupe"]["standardDeviation"].values()),
    "SAUPE MIN": lambda r: list(r["samples"]["saupe"]["ofSmallest"].values()),
    "SAUPE MAX": lambda r: list(r["samples"]["saupe"]["ofLargest"].values()),
    "Phi (MIN/MAX)": lambda r: r["samples"]["phi"],
    "Psi (MIN/MAX)": lambda r: r["samples"]["psi"],
    "Theta (MIN/MAX)": lambda r: r["samples"]["theta"],
}.items()}

NUMBER = re.compile(r"[-+]?\d+(?:\.\d+)?(?:e[-+]\d+)?$")


def agrees(word, value):
    """Whether a printed number is the value to all its digits, one unit of the last place for a rounded middle."""
    mantissa, _, exponent = word.partition("e")
    unit = 10.0 ** (int(exponent or 0) - len(mantissa.partition(".")[2]))
    return abs(float(word) - value) <= 0.5000001 * unit + 2e-7 * abs(value)


def told_numbers(report):
    """The numbers of the DATA lines by their labels."""
    numbers = {}
    for line in report.splitlines():
        labels = [label for label in TOLD if (line + " ").startswith(label)]
        if not line.startswith("DATA ") or not labels:
            if line.startswith("DATA ") and any(NUMBER.match(w) for w in line.split()[1:]):
                raise SystemExit(f"no key for: {line}")
            continue
        label = max(labels, key=len)
        words = [word for word in line[len(label):].split() if NUMBER.match(word)]
        numbers.setdefault(label, []).extend(words)
    return numbers


def check(options, table, count):
    with tempfile.TemporaryDirectory() as folder:
        command = [program, "-bestFit", "-pdb", ubiquitin / "1d3z_model1.pdb", "-inD", ubiquitin / table, "-H", "-outD", "fit.tab",
                   "-nopdbRot", "-outJ", "fit.json", "-quiet", "-outDa", "a", "-outMap", "b", "-outAng", "c", "-outA", "d", "-outFail", "e",
                   *options.split()]
        subprocess.run(command, cwd=folder, check=True, stdout=subprocess.DEVNULL)
        document = json.loads(pathlib.Path(folder, "fit.json").read_text())
        report = pathlib.Path(folder, "fit.tab").read_text()
    jsonschema.validate(document, schema)
    result = document["result"]
    told = told_numbers(report)
    assert len(told) >= count, (options, sorted(told))
    for label, words in told.items():
        values = TOLD[label](result)
        assert len(words) == len(values) and all(map(agrees, words, values)), (options, label, words, values)
    lines = report[report.index("\nFORMAT"):].splitlines()[2:]
    rows = [line.split() for line in lines if line.strip()]
    shown = [row for row in result["rows"] if row.get("fitted", True) or row["weight"] != 0]
    assert len(rows) == len(shown), (options, len(rows), len(shown))
    for words, row in zip(rows, shown):
        assert [int(words[0]), words[1], words[2]] == [row["i"][k] for k in ("residue", "residueName", "atom")]
        for word, key in zip(words[6:], ("interactionConstant", "observed", "calculated", "difference", "error", "weight")):
            if float(word) != 9999.0:
                assert agrees(word, row[key]), (options, words, row)
    return document


assert check("-outQ q", "bicelle_hn.tab", 25)["result"]["quality"]["degreesOfFreedom"] == 58
assert len(check("-dropOut -free 4", "bicelle_hn_all.tab", 25)["result"]["quality"]["dropped"]) == 3
for way in ("-qRms", "-qStd -nofixed", "-dadr -da -4.354e-4 -dr -0.678e-4", "-saupe -5e-4 1e-4 1e-4 -1e-4 5e-4"):
    check(way, "bicelle_backbone.tab", 25)
for kind in ("-mcDc", "-mcStruc", "-jack"):
    check(f"{kind} -map 40", "bicelle_hn.tab", 36)
