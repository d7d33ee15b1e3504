#!/usr/bin/env python3
"""Runs the examples and holds what they find against figures from elsewhere.

Each example runs as ./run would run it, in a directory of its own; then the expressions of FIGURES are typed in the same
session. An example without a row is a fault, and so are words on standard error and a PLOT without its picture.
"""
import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SECONDS = 120
TOLERANCE = 1e-4  # relative; of zero, absolute
NUMBER = r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?"

# Example: (where the figures come from, {expression: value}).
FIGURES = {
    "absorption": ("Bateman's formula fitted by scipy.optimize.least_squares", {
        "KA": 1.20270958, "KE": 0.14998748, "VD": 20.013101, "STDEST(1)": 0.00338624, "SOSQ": 7.2051854e-5}),
    "besselplot": ("scipy.special.jv", {"BESSJ(0,10)": -0.24593576445, "J(19.9)*(ORDER=3)": -0.08385427491}),
    "bloodgroups": ("Lange (2002), chapter 2, gives .2136, .0501, .7363; scipy.optimize.minimize", {
        "P": 0.21359094, "Q": 0.05014533, "R": 0.73626373, "L": -511.5714697}),
    "enzyme": ("scipy.optimize.least_squares", {
        "VM1": 209.596816, "K1": 0.0606538003, "VM2": 155.958798, "K2": 0.0425730508, "STDEST(1)": 8.72105743,
        "STDEST(4)": 0.00738671261, "SOSQ": 21.8656610961}),
    "enzymeplot": ("Bates and Watts (1988) give 212.7 +- 6.95 and 0.0641 +- 0.0083; scipy.optimize.least_squares", {
        "VM": 212.683744, "K": 0.0641212823, "STDEST(1)": 6.94715551, "STDEST(2)": 0.00828095, "SOSQ": 1195.4488144}),
    "faces": ("15 faces", {"NROWS(NAMES)": 15}),
    "galaxies": ("scipy.optimize.least_squares", {
        "BACK": 0.41071373, "A1": 3.53438874, "M1": 9.70626069, "M2": 19.84395284, "M3": 23.00868358, "S": 0.84344126,
        "STDEST(8)": 0.05607252, "SOSQ": 32.07385721, "SUMV(H COL 2)": 82}),
    "indomethacin": ("matrix exponentials fitted by scipy.optimize.least_squares", {
        "VOLUME": 8.87347875, "K10": 1.00598014, "K12": 0.71215916, "K21": 0.32103353, "STDEST(2)": 0.12496479,
        "SOSQ": 4.63554335, "VOLUME*K10": 8.92654343}),
    "lynxhare": ("scipy.integrate.solve_ivp, scipy.optimize.least_squares", {
        "H0": 34.914288, "L0": 3.86186639, "BIRTH": 0.481199034, "HUNT": 0.0248317607, "FEED": 0.0275329506,
        "DEATH": 0.926018342, "SOSQ": 594.74456, "DEATH/FEED": 33.633095}),
    "mine": ("scipy.optimize.least_squares", {
        "HIGH": 154.1630485, "HALF": 627.1932186, "PACE": 362.5717023, "STDEST(1)": 11.33178888, "SOSQ": 176.9948617}),
    "misra1a": ("NIST Statistical Reference Datasets, Misra1a, certified", {
        "B1": 238.94212918, "B2": 5.5015643181e-4, "STDEST(1)": 2.7070075241, "STDEST(2)": 7.2668688436e-6,
        "SOSQ": 0.12455138894}),
    "nitric": ("the literature's 4.577E-6, 2.797E-4 and 21.87; scipy, by Radau's method for the steps", {
        "K1": 4.5770879e-6, "K2": 2.7962421e-4, "MANY": 4.5778371e-6, "K4": 2.7981965e-4, "FEW": 4.5794823e-6,
        "SOSQ": 21.8607317}),
    "orange": ("scipy.optimize.least_squares", {
        "A1": 161.88731178, "A4": 233.07018468, "MID": 727.89058043, "PACE": 347.96737082, "STDEST(6)": 35.69191853,
        "SOSQ": 1845.38314508}),
    "panels": ("the fixed point 1-1/2.8; 40 steps of the map in another language", {
        "ORBITS(41,1)": 0.6428571429, "ORBITS(41,2)": 0.8236032832}),
    "pasture": ("NIST Statistical Reference Datasets, Rat42, certified", {
        "B1": 72.462237576, "B2": 2.6180768402, "B3": 0.067359200066, "STDEST(3)": 0.0034465663377, "SOSQ": 8.0565229338}),
    "pinene": ("Box et al. (1973) give 5.93, 2.96, 2.05, 27.5, 4.00 and 19.87; scipy.optimize.least_squares", {
        "K1": 5.92584877e-5, "K2": 2.96340211e-5, "K3": 2.04728397e-5, "K4": 27.44679355e-5, "K5": 3.99795008e-5,
        "STDEST(5)": 0.838395e-5, "SOSQ": 19.8721669}),
    "planck": ("Planck's law for 5772 K at the peak by Wien's law", {"PEAKS(2,2)": 4.418957065}),
    "portrait": ("scipy.integrate.solve_ivp", {"S(181,2)": 2.75995992, "S(181,4)": 1.11684122}),
    "predators": ("scipy.integrate.solve_ivp; the kept quantity", {
        "S(11,2)": 1.02634477, "S(11,4)": 0.90969108, "S(11,6)-S(1,6)": 0}),
    "ryegrass": ("Inderjit et al.'s data in R's drc: 0.481414, 7.792958, 3.057955, 2.982222; scipy.optimize.least_squares", {
        "LOW": 0.48140994, "HIGH": 7.79296233, "ED50": 3.05795517, "SLOPE": 2.98222866, "STDEST(3)": 0.1858289,
        "SOSQ": 5.4002146}),
    "valley": ("scipy.optimize.minimize (the constrained minimum)", {
        "X": 0.61879562, "Y": 0.38120438, "Q": 0.14560701803}),
}


def session(tarn, name, expressions, folder):
    """Report, standard error and exit status of the example with the expressions typed behind it."""
    os.symlink(ROOT / "examples", os.path.join(folder, "examples"))
    typed = [f'DO "examples/{name}"', 'TYPE "-- figures"', *(f"TYPE 1*({text})" for text in expressions)]
    env = {"PATH": os.environ.get("PATH", ""), "LC_ALL": "C", "HOME": folder}
    done = subprocess.run([tarn, "--vanilla", "--batch", "-"], input="\n".join(typed) + "\n", text=True, capture_output=True,
                          cwd=folder, env=env, timeout=SECONDS, errors="replace")
    return done.stdout, done.stderr, done.returncode


def same(got, wanted):
    return abs(got - wanted) <= TOLERANCE * (abs(wanted) or 1)


def faults(tarn, name):
    source, figures = FIGURES[name]
    with tempfile.TemporaryDirectory() as folder:
        try:
            report, errors, status = session(tarn, name, figures, folder)
        except subprocess.TimeoutExpired:
            return [f"{name} does not end within {SECONDS} s"]
        pictures = re.findall(r"PLOT file is (\S+)", report)
        absent = [picture for picture in pictures if not os.path.exists(os.path.join(folder, picture))]
    found = [f"{name}: {picture} is not there" for picture in absent]
    if errors or status:
        found.append(f"{name}: exit status {status}\n{errors}")
    if "\nPLOT " in (ROOT / "examples" / f"{name}.do").read_text() and not pictures:
        found.append(f"{name} plots nothing")
    values = re.findall(rf"= ({NUMBER})\s*$", report.partition("-- figures")[2], re.M)
    if len(values) != len(figures):
        return [*found, f"{name}: {len(values)} figures of {len(figures)}"]
    return found + [f"{name}: {text} is {got}, by {source} {wanted}"
                    for (text, wanted), got in zip(figures.items(), values) if not same(float(got), wanted)]


def main():
    parser = argparse.ArgumentParser(description="the examples, against figures from elsewhere")
    parser.add_argument("--tarn", default=str(ROOT / "build" / "tarn"))
    parser.add_argument("names", nargs="*", help="only examples whose paths hold one of these")
    args = parser.parse_args()
    tarn = os.path.abspath(args.tarn)
    written = {path.stem for path in (ROOT / "examples").glob("*.do")}
    wrong = [f"{name} has no figures" for name in sorted(written - set(FIGURES))]
    names = [n for n in sorted(written & set(FIGURES)) if not args.names or any(word in f"examples/{n}" for word in args.names)]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        wrong += [text for found in pool.map(lambda n: faults(tarn, n), names) for text in found]
    print(*wrong, sep="\n", end="\n" if wrong else "")
    print(f"examples: {len(names)} run, {len(wrong)} faults")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
