#!/usr/bin/env python3
"""Prints the work that INTEGRATE takes for the problems of tests/data/odeproblems.txt, beside LSODA's (through SciPy).

Usage: bench/odework.py [build/tarn]. For each problem and ERRFAC: accepted steps, evaluations of the right-hand side
(those of difference Jacobians included), Jacobians, and the error at the end in units of ERRFAC times the largest size of
a state; then LSODA's evaluations and Jacobians at the same relative tolerance, and its error in the same units.
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
        yield cells[0], cells[2], [c.split(None, 4) for c in cells[3:]]


def worst(values, states):
    return max(abs(v - float(s[2])) / float(s[3]) for v, s in zip(values, states))


def ours(end, states, errfac):
    text = "ODERPT = 3; METHOD = 0; ERRFAC = %s\n" % errfac
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
    code = [compile(re.sub(r"\b(COS|SIN|EXP)\b", lambda m: "math." + m[1].lower(), s[4].replace("^", "**")), s[0], "eval")
            for s in states]
    counted = [0]

    def f(t, y):
        counted[0] += 1
        scope = dict(zip(names, y), T=t, math=math)
        return [eval(c, scope) for c in code]

    solver = ode(f).set_integrator("lsoda", rtol=float(errfac), atol=1e-14, nsteps=10**7)
    solver.set_initial_value([float(s[1]) for s in states], 0)
    last = float(end)
    for k in range(1, 11):
        solver.integrate(last * k / 10)
    return counted[0], worst(solver.y, states)


try:
    import scipy  # noqa: F401
    peer = True
except ImportError:
    peer = False
print("| Problem | ERRFAC | steps | evaluations | Jacobians | error | LSODA evaluations | error |")
print("|---|---|---|---|---|---|---|---|")
for name, end, states in problems():
    for errfac in ("1E-3", "1E-6", "1E-9"):
        (steps, evaluations, jacobians), error = ours(end, states, errfac)
        row = [name, errfac, str(steps), str(evaluations), str(jacobians), "%.2g" % (error / float(errfac))]
        if peer:
            count, off = lsoda(end, states, errfac)
            row += [str(count), "%.2g" % (off / float(errfac))]
        else:
            row += ["", ""]
        print("| " + " | ".join(row) + " |", flush=True)
