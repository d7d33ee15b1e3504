#!/usr/bin/env python3
"""Runs whole sessions through the real program and compares their transcripts.

NAME.do is fed to the program as standard input, in a directory of its own that holds what lies in NAME.files/, and the
transcript (standard output, then standard error and the exit status where they say something) is compared with NAME.out.
Directions may stand in comments at the top of NAME.do:

    /* tolerance: 1e-9 */   numbers may differ by this, relatively or absolutely; spacing is not compared then
    /* words: --batch - */  words of the command line in place of --quiet --vanilla
    /* log: yes */          the log is compared too

Without a tolerance the transcript must agree to the letter. --update writes the transcripts anew: read the difference.
"""
import argparse
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
SECONDS = 120
NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?")


def directions(text):
    found = {}
    for line in text.splitlines():
        match = re.fullmatch(r"/\*\s*(\w+):\s*(.*?)\s*\*/", line.strip())
        if not match:
            break
        found[match[1]] = match[2]
    return found


def transcript(tarn, dofile, told):
    """What the program says in this session."""
    words = told.get("words", "--quiet --vanilla").split()
    with tempfile.TemporaryDirectory() as folder:
        files = dofile.with_suffix(".files")
        if files.is_dir():
            shutil.copytree(files, folder, dirs_exist_ok=True)
        env = {"PATH": os.environ.get("PATH", ""), "LC_ALL": "C", "HOME": folder}
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                env[name] = os.environ[name]
        with open(dofile, "rb") as source:
            done = subprocess.run([tarn, *words], stdin=source, capture_output=True, cwd=folder, env=env, timeout=SECONDS)
        text = done.stdout.decode("utf-8", "replace")
        if done.stderr:
            text += "[standard error]\n" + done.stderr.decode("utf-8", "replace")
        if done.returncode:
            text += f"[exit status {done.returncode}]\n"
        if told.get("log") == "yes":
            text += "[log]\n" + pathlib.Path(folder, "tarn.log").read_text()
        return text.replace(os.path.realpath(folder), "FOLDER").replace(folder, "FOLDER")


def near(a, b, tolerance):
    return abs(a - b) <= tolerance * max(1.0, abs(a), abs(b))


def sameline(got, wanted, tolerance):
    """The same words in the same order, numbers within the tolerance wherever they stand."""
    if re.sub(r"\s+", " ", NUMBER.sub("0", got)).strip() != re.sub(r"\s+", " ", NUMBER.sub("0", wanted)).strip():
        return False
    pairs = zip(NUMBER.findall(got), NUMBER.findall(wanted))
    return all(near(float(a), float(b), tolerance) for a, b in pairs)


def difference(got, wanted, tolerance):
    """The first line that differs, or None."""
    gotlines, wantedlines = got.splitlines(), wanted.splitlines()
    for number in range(max(len(gotlines), len(wantedlines))):
        a = gotlines[number] if number < len(gotlines) else "(nothing)"
        b = wantedlines[number] if number < len(wantedlines) else "(nothing)"
        same = a == b if tolerance is None else sameline(a, b, tolerance)
        if not same:
            return f"line {number + 1}\n    wanted: {b}\n    got:    {a}"
    return None


def runone(tarn, dofile, update):
    """None if the session goes as it should, else what is wrong."""
    told = directions(dofile.read_text())
    try:
        got = transcript(tarn, dofile, told)
    except subprocess.TimeoutExpired:
        return f"did not end within {SECONDS} s"
    out = dofile.with_suffix(".out")
    if update:
        out.write_text(got)
        return None
    if not out.exists():
        return "has no transcript; --update writes it"
    return difference(got, out.read_text(), float(told["tolerance"]) if "tolerance" in told else None)


def main():
    parser = argparse.ArgumentParser(description="whole sessions against their transcripts")
    parser.add_argument("--tarn", default=str(HERE.parent.parent / "build" / "tarn"))
    parser.add_argument("--update", action="store_true", help="write the transcripts anew")
    parser.add_argument("names", nargs="*", help="only sessions whose names hold one of these")
    args = parser.parse_args()
    tarn = os.path.abspath(args.tarn)
    chosen = [f for f in sorted(HERE.glob("*.do")) if not args.names or any(n in f.stem for n in args.names)]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for dofile, wrong in zip(chosen, pool.map(lambda f: runone(tarn, f, args.update), chosen)):
            if wrong:
                failed += 1
                print(f"{dofile.name}: {wrong}")
    print(f"sessions: {len(chosen) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
