#!/usr/bin/env python3
"""Measures the tests: plants faults drawn by lot into src, one at a time, builds, runs all tests but the walks of
tests/faults, and tells which faults no test saw. Works in a folder of its own; the checkout is only read.

A fault is one small change of one line: a comparison, a sign, an index or a number in code ("code"), or a width, a
precision, a line end, a stream or the order of two lines that are written ("text"). Changes that do not compile are
drawn again. A survivor is not always a fault of the tests: some changes make no difference. Read each of them.

Use: scripts/plant_faults.py [--seed N] [--count N] [--folder FOLDER]
"""

import argparse
import pathlib
import random
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# Pattern, replacement. Each match on a line is a place of its own.
CODE = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "),
    (r" == ", " != "), (r" != ", " == "), (r" && ", " || "), (r" \|\| ", " && "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" \+= ", " -= "),
    (r"\[0\]", "[1]"), (r"\[1\]", "[0]"), (r"\[2\]", "[1]"), (r"\[i\]", "[i - 1]"), (r"\[i\]", "[i + 1]"),
    (r"\b0\.5f?\b", "0.25"), (r"\b1\.0\b", "2.0"), (r"\b2\.0\b", "1.0"), (r"= 0;", "= 1;"), (r"= 1;", "= 0;"),
    (r"return false;", "return true;"), (r"return true;", "return false;"),
    (r"std::min\b", "std::max"), (r"std::max\b", "std::min"), (r"\bcos\(", "sin("), (r"\bsin\(", "cos("),
]
TEXT = [
    (r"%(\d)", lambda m: "%" + str(int(m.group(1)) % 9 + 1)),
    (r"\.(\d)([ef])", lambda m: "." + str(int(m.group(1)) + 1) + m.group(2)),
    (r'(%[^"]*)\\n"', lambda m: m.group(1) + '"'),
    (r"\bstdout\b", "stderr"), (r"\bstderr\b", "stdout"),
    (r'" (?=[A-Za-z%])', '"'), (r"%\+", "%"), (r"%e", "%f"), (r"%f", "%e"),
    (r"^( +appendf\(.*;)$", "SWAP"), (r"^( +std::f?printf\(.*;)$", "SWAP"),
]


def changes_of(path, lines, table):
    """All (line number, new lines) that a table allows in a file."""
    found = []
    for at, line in enumerate(lines):
        code = line.split("//")[0]
        if not code.strip() or code.lstrip().startswith(("#", "*", "template")):
            continue
        for pattern, new in table:
            for match in re.finditer(pattern, code):
                inside_text = code[: match.start()].count('"') % 2 == 1
                if inside_text == (table is CODE) and new != "SWAP" and "std" not in pattern:
                    continue
                if new == "SWAP":
                    if at + 1 < len(lines) and re.match(pattern, lines[at + 1]) and lines[at + 1] != line:
                        found.append((path, at, [lines[at + 1], line], 2))
                    continue
                text = new(match) if callable(new) else new
                changed = line[: match.start()] + text + line[match.end():]
                found.append((path, at, [changed], 1))
    return found


def run(command, folder, seconds):
    try:
        done = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=seconds, check=False)
    except subprocess.TimeoutExpired:
        return 1, "(too slow)"
    return done.returncode, done.stdout


def caught_by(output):
    names = re.findall(r"\d+ - (\S+)", output)
    return ", ".join(names[:2]) or output.strip().splitlines()[-1][:80]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=30)
    parser.add_argument("--folder", type=pathlib.Path, default=ROOT / "build" / "planted")
    arguments = parser.parse_args()

    tree = arguments.folder / "tree"
    shutil.rmtree(tree, ignore_errors=True)
    tree.mkdir(parents=True)
    names = subprocess.run(["git", "ls-files"], cwd=ROOT, capture_output=True, text=True, check=True).stdout.split("\n")
    for name in filter(None, names):
        (tree / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(ROOT / name, tree / name)
    build = tree / "build" / "release"
    for command in (["cmake", "--preset", "release"], ["cmake", "--build", "--preset", "release"]):
        status, output = run(command, tree, 3600)
        if status != 0:
            sys.exit(output[-2000:])
    tests = ["ctest", "-j2", "-E", "EveryFaultIsTold", "--stop-on-failure"]
    status, output = run(tests, build, 900)
    if status != 0:
        sys.exit("the tests fail before any fault: " + caught_by(output))

    places = {"code": [], "text": []}
    for path in sorted((tree / "src").rglob("*.cpp")):
        lines = path.read_text(encoding="utf-8").split("\n")
        places["code"] += changes_of(path, lines, CODE)
        places["text"] += changes_of(path, lines, TEXT)
    draw = random.Random(arguments.seed)
    for kind in places:
        draw.shuffle(places[kind])

    score = {"code": [0, 0], "text": [0, 0]}
    for number in range(arguments.count):
        kind = "text" if number % 3 == 2 else "code"
        while True:
            path, at, new, length = places[kind].pop()
            whole = path.read_text(encoding="utf-8")
            lines = whole.split("\n")
            old = lines[at : at + length]
            lines[at : at + length] = new
            path.write_text("\n".join(lines), encoding="utf-8")
            status, _ = run(["cmake", "--build", "--preset", "release"], tree, 900)
            if status == 0:
                break
            path.write_text(whole, encoding="utf-8")
        status, output = run(tests, build, 300)
        path.write_text(whole, encoding="utf-8")
        score[kind][0] += status != 0
        score[kind][1] += 1
        place = f"{path.relative_to(tree)}:{at + 1}"
        print(f"{kind} {place}: " + (f"caught ({caught_by(output)})" if status != 0 else "SURVIVED"), flush=True)
        if status == 0:
            print("   was: " + " / ".join(line.strip() for line in old))
            print("   is:  " + " / ".join(line.strip() for line in new), flush=True)
    for kind, (caught, planted) in score.items():
        print(f"{kind}: {caught} of {planted} caught")


main()
