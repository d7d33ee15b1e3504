#!/usr/bin/env python3
"""Writes tests/data/odeproblems.txt: initial value problems in TARN's notation with reference values at their end.

Reference values by SciPy (DOP853 or Radau at a relative tolerance of 1e-13), and by closed forms where there are any.
Sources: T. E. Hull et al., SIAM J. Numer. Anal. 9 (1972) 603 (DETEST classes A to E); W. H. Enright, T. E. Hull,
B. Lindberg, BIT 15 (1975) 10, and W. H. Enright, J. D. Pryce, ACM Trans. Math. Softw. 13 (1987) 1 (stiff, classes A to
F); E. Hairer, G. Wanner, Solving Ordinary Differential Equations I, II; J. G. Verwer, SIAM J. Sci. Comput. 15 (1994)
1243 (pollution).
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


def numbered(name, stiff, end, starts, rhs):
    """A problem in states Y1, Y2, ..."""
    names = ["Y%d" % (i + 1) for i in range(len(starts))]
    problems.append((name, stiff, end, dict(zip(names, starts)), dict(zip(names, rhs))))


def chain(first, middle, last, n):
    return [first] + [middle.format(a=i - 1, b=i, c=i + 1) for i in range(2, n)] + [last]


ROOT = "SQRT(Y1^2+Y2^2)"
numbered("DETEST B4 torus", 0, 20, [3, 0, 0], ["-Y2-Y1*Y3/" + ROOT, "Y1-Y2*Y3/" + ROOT, "Y1/" + ROOT])
numbered("DETEST C1 decay chain", 0, 20, [1] + [0] * 9, chain("-Y1", "Y{a}-Y{b}", "Y9", 10))
numbered("DETEST C2 decay chain", 0, 20, [1] + [0] * 9, chain("-Y1", "{a}*Y{a}-{b}*Y{b}", "9*Y9", 10))
numbered("DETEST C3 diffusion", 0, 20, [1] + [0] * 9, chain("-2*Y1+Y2", "Y{a}-2*Y{b}+Y{c}", "Y9-2*Y10", 10))
for k, e in ((2, 0.3), (3, 0.5), (4, 0.7), (5, 0.9)):
    numbered("DETEST D%d two bodies" % k, 0, 20, [round(1 - e, 15), 0, 0, math.sqrt((1 + e) / (1 - e))],
             ["Y3", "Y4", "-Y1/(Y1^2+Y2^2)^1.5", "-Y2/(Y1^2+Y2^2)^1.5"])
numbered("DETEST E1 Bessel", 0, 20, [0.6713967071418030, 0.09540051444747446],
         ["Y2", "-(Y2/(T+1)+(1-0.25/(T+1)^2)*Y1)"])
numbered("DETEST E3 Duffing", 0, 20, [0, 0], ["Y2", "Y1^3/6-Y1+2*SIN(2.78535*T)"])
numbered("DETEST E4 falling body", 0, 20, [30, 0], ["Y2", "0.032-0.4*Y2^2"])
numbered("DETEST E5 pursuit", 0, 20, [0, 0], ["Y2", "SQRT(1+Y2^2)/(25-T)"])
numbered("Pendulum", 0, 20, [2, 0], ["Y2", "-SIN(Y1)"])
numbered("Epidemic", 0, 100, [0.999, 0.001, 0], ["-0.4*Y1*Y2", "0.4*Y1*Y2-0.1*Y2", "0.1*Y2"])
numbered("FitzHugh-Nagumo", 0, 100, [0, 0], ["Y1-Y1^3/3-Y2+0.5", "0.08*(Y1+0.7-0.8*Y2)"])
numbered("Arenstorf orbit", 0, 17.0652165601579625588917206249, [0.994, 0, 0, -2.00158510637908252240537862224],
         ["Y3", "Y4"] +
         [p + "-0.987722529*%s/((Y1+0.012277471)^2+Y2^2)^1.5-0.012277471*%s/((Y1-0.987722529)^2+Y2^2)^1.5" % q
          for p, q in (("Y1+2*Y4", ("(Y1+0.012277471)", "(Y1-0.987722529)")), ("Y2-2*Y3", ("Y2", "Y2")))])

numbered("Stiff A1", 1, 20, [1] * 4, ["-0.5*Y1", "-Y2", "-100*Y3", "-90*Y4"])
numbered("Stiff A2", 1, 120, [0] * 9, chain("-1800*Y1+900*Y2", "Y{a}-2*Y{b}+Y{c}", "1000*Y8-2000*Y9+1000", 9))
numbered("Stiff A3", 1, 20, [1] * 4, ["-1E4*Y1+100*Y2-10*Y3+Y4", "-1E3*Y2+10*Y3-10*Y4", "-Y3+10*Y4", "-0.1*Y4"])
numbered("Stiff A4", 1, 1, [1] * 10, ["-%d*Y%d" % (i**5, i) for i in range(1, 11)])
numbered("Stiff B1", 1, 20, [1, 0, 1, 0], ["-Y1+Y2", "-100*Y1-Y2", "-100*Y3+Y4", "-1E4*Y3-100*Y4"])
for k, a in ((2, 3), (3, 8), (4, 25)):
    numbered("Stiff B%d" % k, 1, 20, [1] * 6,
             ["-10*Y1+%d*Y2" % a, "-%d*Y1-10*Y2" % a, "-4*Y3", "-Y4", "-0.5*Y5", "-0.1*Y6"])
numbered("Stiff C1", 1, 20, [1] * 4, ["-Y1+Y2^2+Y3^2+Y4^2", "-10*Y2+10*(Y3^2+Y4^2)", "-40*Y3+40*Y4^2", "-100*Y4+2"])
for k, b in ((2, 0.1), (3, 1), (4, 10), (5, 20)):
    numbered("Stiff C%d" % k, 1, 20, [1] * 4,
             ["-Y1+2", "-10*Y2+%g*Y1^2" % b, "-40*Y3+%g*(Y1^2+Y2^2)" % (4 * b),
              "-100*Y4+%g*(Y1^2+Y2^2+Y3^2)" % (10 * b)])
numbered("Stiff D2", 1, 40, [1, 0, 0], ["-0.04*Y1+0.01*Y2*Y3", "400*Y1-100*Y2*Y3-3000*Y2^2", "30*Y2^2"])
numbered("Stiff D3", 1, 20, [1, 1, 0, 0],
         ["Y3-100*Y1*Y2", "Y3+2*Y4-100*Y1*Y2-2E4*Y2^2", "-Y3+100*Y1*Y2", "-Y4+1E4*Y2^2"])
numbered("Stiff D4", 1, 50, [1, 1, 0],
         ["-0.013*Y1-1000*Y1*Y3", "-2500*Y2*Y3", "-0.013*Y1-1000*Y1*Y3-2500*Y2*Y3"])
numbered("Stiff D5", 1, 100, [0, 0], ["0.01-(1+(Y1+1000)*(Y1+1))*(0.01+Y1+Y2)", "0.01-(1+Y2^2)*(0.01+Y1+Y2)"])
numbered("Stiff D6", 1, 1, [1, 0, 0],
         ["-Y1+1E8*Y3*(1-Y1)", "-10*Y2+3E7*Y3*(1-Y2)", "Y1-1E8*Y3*(1-Y1)+10*Y2-3E7*Y3*(1-Y2)"])
numbered("Stiff E2", 1, 1, [2, 0], ["Y2", "5*(1-Y1^2)*Y2-Y1"])
numbered("Stiff E3", 1, 500, [1, 1, 0], ["-(55+Y3)*Y1+65*Y2", "0.0785*(Y1-Y2)", "0.1*Y1"])
numbered("Stiff E5", 1, 1000, [1.76e-3, 0, 0, 0],
         ["-7.89E-10*Y1-1.1E7*Y1*Y3", "7.89E-10*Y1-1.13E9*Y2*Y3",
          "7.89E-10*Y1-1.1E7*Y1*Y3+1.13E3*Y4-1.13E9*Y2*Y3", "1.1E7*Y1*Y3-1.13E3*Y4"])
numbered("Stiff F1", 1, 1000, [761, 0, 600, 0.1],
         ["1.3*(Y3-Y1)+10400*EXP(20.7-1500/Y1)*Y2", "1880*(Y4-Y2*(1+EXP(20.7-1500/Y1)))", "1752-269*Y3+267*Y1",
          "0.1+320*Y2-321*Y4"])
numbered("Stiff F2", 1, 240, [1, 0], ["-Y1-Y1*Y2+294*Y2", "Y1*(1-Y2)/98-3*Y2"])
numbered("Stiff F3", 1, 100, [4e-6, 1e-6, 0, 0, 0],
         ["-1E7*Y2*Y1+10*Y3", "-1E7*Y2*Y1-1E7*Y2*Y5+10*Y3+10*Y4", "1E7*Y2*Y1-1.001E4*Y3+1E-3*Y4",
          "1E4*Y3-10.001*Y4+1E7*Y2*Y5", "10*Y4-1E7*Y2*Y5"])
numbered("Stiff F4", 1, 300, [4, 1.1, 4],
         ["77.27*(Y2-Y1*Y2+Y1-8.375E-6*Y1^2)", "(-Y2-Y1*Y2+Y3)/77.27", "0.161*(Y1-Y3)"])
numbered("van der Pol 1000", 1, 2000, [2, 0], ["Y2", "1000*(1-Y1^2)*Y2-Y1"])
numbered("Robertson, long", 1, 40000, [1, 0, 0], ["-0.04*Y1+1E4*Y2*Y3", "0.04*Y1-1E4*Y2*Y3-3E7*Y2^2", "3E7*Y2^2"])
numbered("Kaps", 1, 1, [1, 1], ["-10002*Y1+1E4*Y2^2", "Y1-Y2-Y2^2"])
numbered("Prothero-Robinson", 1, 10, [0], ["-1E6*(Y1-SIN(T))+COS(T)"])

# The 25 reactions of the pollution problem: rate constant, then what reacts; for each substance the reactions that use
# it and that make it.
RATES = [(0.35, 1), (26.6, 2, 4), (12.3e3, 5, 2), (0.86e-3, 7), (0.82e-3, 7), (15e3, 7, 6), (0.13e-3, 9), (24e3, 9, 6),
         (16.5e3, 11, 2), (9e3, 11, 1), (0.022, 13), (12e3, 10, 2), (1.88, 14), (16.3e3, 1, 6), (4.8e6, 3),
         (0.35e-3, 4), (0.0175, 4), (1e8, 16), (444e9, 16), (1240, 17, 6), (2.1, 19), (5.78, 19), (0.0474, 1, 4),
         (1780, 19, 1), (3.12, 20)]
BALANCE = ["-1-10-14-23-24+2+3+9+11+12+22+25", "-2-3-9-12+1+21", "-15+1+17+19+22", "-2-16-17-23+15",
           "-3+4+4+6+7+13+20", "-6-8-14-20+3+18+18", "-4-5-6+13", "+4+5+6+7", "-7-8", "-12+7+9", "-9-10+8+11", "+9",
           "-11+10", "-13+12", "+14", "-18-19+16", "-20", "+20", "-21-22-24+23+25", "-25+24"]


def rate(k):
    return "*".join(["%r" % RATES[k - 1][0]] + ["Y%d" % i for i in RATES[k - 1][1:]])


numbered("Pollution", 1, 60, [0, 0.2, 0, 0.04, 0, 0, 0.1, 0.3, 0.01] + [0] * 7 + [0.007, 0, 0, 0],
         [re.sub(r"\d+", lambda m: rate(int(m.group())), b).lstrip("+") for b in BALANCE])


def python(text):
    text = text.replace("^", "**")
    return re.sub(r"\b(COS|SIN|EXP|SQRT)\b", lambda m: "math." + m.group(1).lower(), text)


def reference(stiff, end, states, rhs):
    names = list(states)
    source = "def f(T, y):\n    %s, = y\n    return [%s]" % (", ".join(names), ", ".join(python(rhs[n]) for n in names))
    scope = {"math": math}
    exec(source, scope)
    y0 = [float(v) for v in states.values()]
    if not stiff:
        s = solve_ivp(scope["f"], (0, end), y0, method="DOP853", rtol=1e-13, atol=1e-15)
    else:
        rough = solve_ivp(scope["f"], (0, end), y0, method="Radau", rtol=1e-6, atol=1e-16)
        s = solve_ivp(scope["f"], (0, end), y0, method="Radau", rtol=3e-13,
                      atol=1e-14 * np.max(np.abs(rough.y), axis=1) + 1e-30)
    assert s.success
    # the largest size of each state on the way: what an error is measured by where a solution has decayed
    return s.y[:, -1], np.max(np.abs(s.y), axis=1)


print("# name | stiff | end | state start value-at-end largest right-hand-side | ...   made by tools/odetable.py")
for name, stiff, end, states, rhs in problems:
    last, largest = reference(stiff, end, states, rhs)
    cells = ["%s %r %.14g %.3g %s" % (n, states[n], last[k], largest[k], rhs[n]) for k, n in enumerate(states)]
    print(" | ".join([name, str(stiff), repr(end)] + cells), flush=True)
