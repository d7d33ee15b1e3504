#!/usr/bin/env python3
"""Writes tests/data/odeproblems.txt: initial value problems in TARN's notation with reference values at their end.

Reference values by SciPy (DOP853 or Radau at a relative tolerance of 1e-13), and by closed forms where there are any.
Sources: T. E. Hull et al., SIAM J. Numer. Anal. 9 (1972) 603 (DETEST classes A to E); W. H. Enright, T. E. Hull,
B. Lindberg, BIT 15 (1975) 10 (stiff); E. Hairer, G. Wanner, Solving Ordinary Differential Equations I, II.
Run it to make the table anew: tools/odetable.py > tests/data/odeproblems.txt
"""
import math
import re
import numpy as np
from scipy.integrate import solve_ivp

# name, stiff, end, states with start values, right-hand sides in TARN's notation
problems = [
    ("A1 decay", 0, 20, {"Y": 1}, {"Y": "-Y"}),
    ("A2 Riccati", 0, 20, {"Y": 1}, {"Y": "-Y^3/2"}),
    ("A3 oscillation", 0, 20, {"Y": 1}, {"Y": "Y*COS(T)"}),
    ("A4 logistic", 0, 20, {"Y": 1}, {"Y": "Y/4*(1-Y/20)"}),
    ("A5 spiral", 0, 20, {"Y": 4}, {"Y": "(Y-T)/(Y+T)"}),
    ("B1 conflicting populations", 0, 20, {"P": 1, "R": 3}, {"P": "2*(P-P*R)", "R": "-(R-P*R)"}),
    ("B2 linear reaction", 0, 20, {"U": 2, "V": 0, "W": 1}, {"U": "-U+V", "V": "U-2*V+W", "W": "V-W"}),
    ("B3 nonlinear reaction", 0, 20, {"U": 1, "V": 0, "W": 0}, {"U": "-U", "V": "U-V^2", "W": "V^2"}),
    ("B5 rigid body", 0, 20, {"U": 0, "V": 1, "W": 1}, {"U": "V*W", "V": "-U*W", "W": "-0.51*U*V"}),
    ("D1 two bodies", 0, 20, {"X": 0.9, "Z": 0, "VX": 0, "VZ": math.sqrt(1.1 / 0.9)},
     {"X": "VX", "Z": "VZ", "VX": "-X/(X^2+Z^2)^1.5", "VZ": "-Z/(X^2+Z^2)^1.5"}),
    ("E2 van der Pol 1", 0, 20, {"U": 2, "V": 0}, {"U": "V", "V": "(1-U^2)*V-U"}),
    ("Lotka-Volterra", 0, 10, {"P": 1, "R": 1}, {"P": "1.5*P-P*R", "R": "P*R-3*R"}),
    ("Lorenz, short", 0, 2, {"X": 1, "U": 1, "W": 1}, {"X": "10*(U-X)", "U": "X*(28-W)-U", "W": "X*U-8/3*W"}),
    ("Brusselator", 0, 20, {"X": 1.5, "U": 3}, {"X": "1+X^2*U-4*X", "U": "3*X-X^2*U"}),
    ("Robertson", 1, 400, {"A": 1, "B": 0, "C": 0},
     {"A": "-0.04*A+1E4*B*C", "B": "0.04*A-1E4*B*C-3E7*B*B", "C": "3E7*B*B"}),
    ("van der Pol 100", 1, 200, {"U": 2, "V": 0}, {"U": "V", "V": "100*(1-U^2)*V-U"}),
    ("HIRES", 1, 321.8122, {"A": 1, "B": 0, "C": 0, "D": 0, "E": 0, "F": 0, "G": 0, "H": 0.0057},
     {"A": "-1.71*A+0.43*B+8.32*C+0.0007", "B": "1.71*A-8.75*B", "C": "-10.03*C+0.43*D+0.035*E",
      "D": "8.32*B+1.71*C-1.12*D", "E": "-1.745*E+0.43*F+0.43*G", "F": "-280*F*H+0.69*D+1.71*E-0.43*F+0.69*G",
      "G": "280*F*H-1.81*G", "H": "-280*F*H+1.81*G"}),
    ("Oregonator", 1, 30, {"A": 1, "B": 2, "C": 3},
     {"A": "77.27*(B+A*(1-8.375E-6*A-B))", "B": "(C-(1+A)*B)/77.27", "C": "0.161*(A-C)"}),
    ("Stiff B5 oscillating modes", 1, 20, {"A": 1, "B": 1, "C": 1, "D": 1, "E": 1, "F": 1},
     {"A": "-10*A+100*B", "B": "-100*A-10*B", "C": "-4*C", "D": "-D", "E": "-0.5*E", "F": "-0.1*F"}),
    ("Stiff D1 kinetics", 1, 400, {"A": 0, "B": 0, "C": 0},
     {"A": "0.2*(B-A)", "B": "10*A-(60-0.125*C)*B+0.125*C", "C": "1"}),
    ("Stiff linear, forced", 1, 10, {"Y": 0}, {"Y": "-1000*(Y-COS(T))"}),
    ("Decay chain, rates 1 to 1E4", 1, 5, {"A": 1, "B": 0, "C": 0}, {"A": "-1E4*A", "B": "1E4*A-100*B", "C": "100*B-C"}),
]


def python(text):
    text = text.replace("^", "**")
    return re.sub(r"\b(COS|SIN|EXP)\b", lambda m: "math." + m.group(1).lower(), text)


def reference(stiff, end, states, rhs):
    names = list(states)
    code = [compile(python(rhs[n]), n, "eval") for n in names]

    def f(t, y):
        scope = dict(zip(names, y), T=t, math=math)
        return [eval(c, scope) for c in code]

    y0 = list(states.values())
    if stiff:
        s = solve_ivp(f, (0, end), y0, method="Radau", rtol=3e-13, atol=1e-16)
    else:
        s = solve_ivp(f, (0, end), y0, method="DOP853", rtol=1e-13, atol=1e-15)
    assert s.success
    # the largest size of each state on the way: what an error is measured by where a solution has decayed
    return s.y[:, -1], np.max(np.abs(s.y), axis=1)


print("# name | stiff | end | state start value-at-end largest right-hand-side | ...   made by tools/odetable.py")
for name, stiff, end, states, rhs in problems:
    last, largest = reference(stiff, end, states, rhs)
    cells = ["%s %r %.14g %.3g %s" % (n, states[n], last[k], largest[k], rhs[n]) for k, n in enumerate(states)]
    print(" | ".join([name, str(stiff), repr(end)] + cells))
