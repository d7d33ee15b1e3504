#!/usr/bin/env python3
"""Prints what INTEGRATE reaches and takes for the problems of tests/data/odeproblems.txt, beside LSODA (through SciPy).

Usage: bench/odework.py [build/tarn]. Cells hold three figures, for ERRFAC 1E-3, 1E-6, 1E-9: the error at the end in units
of ERRFAC times the largest size of a state, in the automatic mode, METHOD 1 or 2, and METHOD 3; evaluations of the
right-hand side (those of difference Jacobians included) and Jacobians of the automatic mode; LSODA's error and
evaluations at the same relative tolerance.
"""
import math
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TARN = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/tarn")


def problems():
    for line in (ROOT / "tests/data/odeproblems.txt").read_text().splitlines():
        if line.startswith("#"):
            continue
        cells = [c.strip() for c in line.split("|")]
        yield cells[0], cells[1] == "1", cells[2], [c.split(None, 4) for c in cells[3:]]


def worst(values, states):
    return max(abs(v - float(s[2])) / float(s[3]) for v, s in zip(values, states))


def ours(end, states, errfac, method):
    text = "ODERPT = 3; METHOD = %d; ERRFAC = %s\n" % (method, errfac)
    for name, start, _, _, rhs in states:
        text += "FUNCTION %s'T(T) = %s\nINITIAL %s(0) = %s\n" % (name, rhs, name, start)
    text += 'SOLN = INTEGRATE(%s,0:%s!11)\nNFORMAT = "%%.15e"; NAMESW = 1\n' % (",".join(s[0] for s in states), end)
    for k in range(len(states)):
        text += "ANSWER = SOLN(11,%d); TYPE ANSWER\n" % (2 * k + 2)
    out = subprocess.run([TARN, "--batch", "-"], input=text, capture_output=True, text=True).stdout
    counts = re.search(r"# steps = (\d+)\n # system derivative evaluations = (\d+), # jacobian evaluations = (\d+)", out)
    values = [float(v) for v in re.findall(r"ANSWER = (\S+)", out)]
    return [int(c) for c in counts.groups()], worst(values, states)


def lsoda(end, states, errfac):
    from scipy.integrate import ode

    names = [s[0] for s in states]
    rhs = [re.sub(r"\b(COS|SIN|EXP|SQRT)\b", lambda m: "math." + m[1].lower(), s[4].replace("^", "**")) for s in states]
    counted = [0]
    scope = {"math": math, "counted": counted}
    exec("def f(T, y):\n    counted[0] += 1\n    %s, = y\n    return [%s]" % (", ".join(names), ", ".join(rhs)), scope)

    solver = ode(scope["f"]).set_integrator("lsoda", rtol=float(errfac), atol=1e-14, nsteps=10**6)
    solver.set_initial_value([float(s[1]) for s in states], 0)
    last = float(end)
    for k in range(1, 11):
        solver.integrate(last * k / 10)
        if not solver.successful():
            return None, None
    return counted[0], worst(solver.y, states)


try:
    import scipy  # noqa: F401
    peer = True
except ImportError:
    peer = False
TOLERANCES = ("1E-3", "1E-6", "1E-9")


def cell(values, form="%.2g"):
    return " / ".join("stops" if v is None else form % v for v in values)


def row(name, stiff, end, states):
    reached = {}
    for method in (0, 2, 3) if stiff else (0, 1):
        runs = [ours(end, states, errfac, method) for errfac in TOLERANCES]
        reached[method] = cell([error / float(errfac) for (_, error), errfac in zip(runs, TOLERANCES)])
        if method == 0:
            evaluations, jacobians = cell([r[0][1] for r in runs], "%d"), cell([r[0][2] for r in runs], "%d")
    cells = [name, reached[0], reached[2 if stiff else 1], reached.get(3, ""), evaluations, jacobians]
    if not peer:
        return cells + ["", ""]
    runs = [lsoda(end, states, errfac) for errfac in TOLERANCES]
    off = [error and error / float(errfac) for (_, error), errfac in zip(runs, TOLERANCES)]
    return cells + [cell(off), cell([r[0] for r in runs], "%d")]


print("| Problem | error | METHOD 1 or 2 | METHOD 3 | evaluations | Jacobians | LSODA error | LSODA evaluations |")
print("|---|---|---|---|---|---|---|---|")
for problem in problems():
    print("| " + " | ".join(row(*problem)) + " |", flush=True)
