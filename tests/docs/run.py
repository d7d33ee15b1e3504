#!/usr/bin/env python3
"""Runs what the documents show, and holds the program's answers against them.

A fenced block in README.md or docs/ whose first line begins with "* " is a piece of a session: lines with a prompt ("* ",
": " after a backslash, "> " inside braces) are typed, the others must be the answer. "..." stands for any number of lines;
spacing and empty lines do not count, numbers may differ in their last digits. A heading starts a new session, unless the
document holds the comment <!-- one session -->. In a table whose head ends in "| Here | Answer |" each row is a session: the
codes of its last column but one are typed, and the answer must hold what its last column shows. --update writes the answers into the documents: read the difference.
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
TOLERANCE = 1e-6
NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?")
PROMPTS = ("* ", ": ", "> ")


class Session:
    """Blocks of one document that are typed one after the other."""

    def __init__(self, path):
        self.path = path
        self.lines = []  # (number of the line in the document, its text)
        self.blocks = []  # (first, last) line of each block, last exclusive

    def typed(self):
        return [text[2:] for _, text in self.lines if text.startswith(PROMPTS) or text in ("*", ":", ">")]


def sessions(path):
    lines = path.read_text().splitlines()
    whole = any(line.strip() == "<!-- one session -->" for line in lines)
    found, fence = [Session(path)], None
    for number, line in enumerate(lines):
        if line.startswith("```"):
            if fence is None:
                fence = number + 1
            else:
                if number > fence and lines[fence].startswith("* "):
                    found[-1].lines += [(k, lines[k].rstrip()) for k in range(fence, number) if lines[k].strip()]
                    found[-1].blocks.append((fence, number))
                fence = None
        elif fence is None and line.startswith("#") and not whole:
            found.append(Session(path))
    return [s for s in found if s.lines]


def transcript(tarn, session):
    """What the program says to the lines of a session, without the empty ones and the last prompt."""
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(ROOT / "examples", os.path.join(folder, "examples"))
        env = {"PATH": os.environ.get("PATH", ""), "LC_ALL": "C", "HOME": folder}
        done = subprocess.run([tarn, "--quiet", "--vanilla"], input="\n".join(session.typed()) + "\n", text=True,
                              capture_output=True, cwd=folder, env=env, timeout=SECONDS, errors="replace")
    text = done.stdout.replace(os.path.realpath(folder) + "/", "").replace(folder + "/", "")
    lines = [line.rstrip() for line in text.splitlines() if line.strip() and line.strip() != "*"]
    if done.returncode:
        lines.append(f"[exit status {done.returncode}]")
    return lines


def sameline(got, wanted):
    spaced = [re.sub(r"\s+", " ", NUMBER.sub("0", line)).strip() for line in (got, wanted)]
    if spaced[0] != spaced[1]:
        return False
    pairs = [(float(a), float(b)) for a, b in zip(NUMBER.findall(got), NUMBER.findall(wanted))]
    return all(abs(a - b) <= TOLERANCE * max(abs(a), abs(b)) or max(abs(a), abs(b)) < 1e-12 for a, b in pairs)


def difference(got, session):
    """The first line of the document that the answer does not bear out, or None."""
    at, skipping = 0, False
    for number, wanted in session.lines:
        if wanted.strip() == "...":
            skipping = True
            continue
        while skipping and at < len(got) and not sameline(got[at], wanted):
            at += 1
        if at >= len(got) or not sameline(got[at], wanted):
            answer = got[at] if at < len(got) else "(nothing)"
            return f"{session.path.relative_to(ROOT)}:{number + 1}\n    shown: {wanted}\n    got:   {answer}"
        at, skipping = at + 1, False
    if at < len(got) and not skipping:
        return f"{session.path.relative_to(ROOT)}:{session.lines[-1][0] + 1}\n    got beyond it: {got[at]}"
    return None


def answered(got, session):
    """The blocks of a session with the program's answers in them; an answer shown as "..." is left so."""
    texts, at = [], 0
    for first, last in session.blocks:
        told = [text for number, text in session.lines if first <= number < last]
        block = []
        for k, text in enumerate(told):
            if not text.startswith(PROMPTS):
                continue
            while at < len(got) and got[at].rstrip() != text.rstrip():
                at += 1
            block.append(text)
            at += 1
            if k + 1 < len(told) and told[k + 1].strip() == "...":
                block.append("...")
                continue
            while at < len(got) and not got[at].startswith(PROMPTS):
                block.append(got[at])
                at += 1
        texts.append((first, last, block))
    return texts


def update(path, tarn):
    lines = path.read_text().splitlines()
    texts = [block for session in sessions(path) for block in answered(transcript(tarn, session), session)]
    for first, last, block in sorted(texts, reverse=True):
        lines[first:last] = block
    path.write_text("\n".join(lines) + "\n")


def tablerows(path):
    """Rows of the tables that show what is typed and answered, as (line number, lines typed, part of the answer)."""
    intable = False
    for number, line in enumerate(path.read_text().splitlines()):
        intable = line.startswith("|") and (intable or line.endswith("| Here | Answer |"))
        if not intable or line.startswith("|---") or line.endswith("| Here | Answer |"):
            continue
        here, answer = (re.findall(r"`([^`]*)`", cell) for cell in line.split("|")[-3:-1])
        yield number, here, "".join(answer)


def checkrow(tarn, path, number, here, answer):
    row = Session(path)
    row.lines = [(number, "* " + text) for text in here]
    got = [line for line in transcript(tarn, row) if not line.startswith("* ")]
    if any(line.startswith(("##", "Error line")) for line in got) or not any(answer in line for line in got or [""]):
        return f"{path.relative_to(ROOT)}:{number + 1}\n    typed: {here}\n    shown: {answer}\n    got:   {got}"
    return None


def check(tarn, session):
    try:
        return difference(transcript(tarn, session), session)
    except subprocess.TimeoutExpired:
        return f"{session.path.relative_to(ROOT)}:{session.lines[0][0] + 1} does not end within {SECONDS} s"


def undocumented(tarn):
    """Words of the vocabulary without a topic in the help file; those whose routine is still to come need none."""
    vocabulary = re.findall(r"^name:(\S+) type:", (ROOT / "data" / "TOKEN.FIL").read_text(), re.M)
    awaited = set((ROOT / "tests" / "data" / "builtins_awaited.txt").read_text().split())
    lines = pathlib.Path(tarn).with_name("TARN.HLP").read_bytes().decode().split("\r\n")
    topics = {line.rsplit(":", 1)[0] for line in lines[1 : int(lines[0]) + 1]}
    return [word for word in vocabulary if word not in awaited and word.lower() not in topics]


def main():
    parser = argparse.ArgumentParser(description="what the documents show, against the program")
    parser.add_argument("--tarn", default=str(ROOT / "build" / "tarn"))
    parser.add_argument("--update", action="store_true", help="write the answers into the documents")
    parser.add_argument("names", nargs="*", help="only documents whose names hold one of these")
    args = parser.parse_args()
    tarn = os.path.abspath(args.tarn)
    paths = [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]
    paths = [p for p in paths if not args.names or any(n in str(p) for n in args.names)]
    if args.update:
        for path in paths:
            update(path, tarn)
    every = [session for path in paths for session in sessions(path)]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        wrong = [text for text in pool.map(lambda s: check(tarn, s), every) if text]
        rows = [(path, *row) for path in paths for row in tablerows(path)]
        wrong += [text for text in pool.map(lambda row: checkrow(tarn, *row), rows) if text]
    if not args.names:
        wrong += [f"{word} has no topic in docs/reference" for word in undocumented(tarn)]
    print(*wrong, sep="\n", end="\n" if wrong else "")
    print(f"documents: {len(every)} sessions, {len(rows)} rows of tables, {len(wrong)} faults")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
