#!/usr/bin/env python3
"""Holds docs/reference against the vocabulary and the program: every word is described, and truly.

A word is what data/TOKEN.FIL names (but for the builtins that tests/data/builtins_awaited.txt still awaits), and what
data/init.do and data/init0.do define. Each needs
  a topic:   a "###" heading, or the first cell of a table headed Name, that shows it;
  syntax:    for a builtin a heading NAME(arguments) with as many arguments, and as many in square brackets, as its
             signature has;
  shapes:    "Shapes:" in its entry. A function of plain numbers, a statement and a switch may leave that to the lead of
             its section or chapter;
  errors:    "Errors:" in its entry, or in the lead of its section or chapter;
  example:   a typed line of a block in its entry that uses it (in its section, for the words of a table). run.py runs it.
The values in the columns headed Default are compared with those of a fresh session; names in a table headed "Without it" do
not exist then, and MINIMIZE reports the same whether they are left out or set to what the table says.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORD = r"[A-Z][A-Z0-9_]*"
# Tokens that a user does not write as words, and TOP, which is the name of the first page of the help.
INNER = {"unary-minus", "second:", "marker", "derivative'", "call(", "(", ")", "end", "bottom", ",", "TOP"}


class Topic:
    def __init__(self, page, line, level, heading):
        self.where, self.level, self.heading = f"{page.name}:{line}", level, heading
        self.text, self.typed = "", ""  # prose, and the typed lines of examples
        self.above = None  # the section of an entry, the chapter of a section
        self.rows = []  # first cells of tables of names

    def calls(self):
        return re.findall(r"`([^`]*)`", self.heading) or [self.heading]


def pages(folder):
    topics = []
    for page in sorted(folder.glob("*.md")):
        last, fence, column, table = {}, False, None, []
        for number, line in enumerate(page.read_text().splitlines(), 1):
            heading = None if fence else re.match(r"(#{1,3}) (.*)", line)
            if heading:
                topic = Topic(page, number, len(heading[1]), heading[2])
                last[topic.level] = topic
                topic.above = last.get(2 if topic.level == 3 else 1) if topic.level > 1 else None
                topics.append(topic)
                table = []
            elif line.startswith("```"):
                fence = not fence
            elif fence:
                if line.startswith(("* ", ": ", "> ")):
                    topics[-1].typed += line[2:] + "\n"
            elif line.startswith("|"):
                cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
                if not table:
                    table = cells
                elif set(line) - set("|-: ") and table[0] == "Name":
                    topics[-1].rows.append(dict(zip(table, cells)))
                topics[-1].text += line + "\n"
            else:
                table = []
                topics[-1].text += line + "\n"
    return topics


def vocabulary():
    """Builtins with their signatures (None: the routine checks), and all other words."""
    awaited = set((ROOT / "tests/data/builtins_awaited.txt").read_text().split())
    builtins, others = {}, []
    for line in (ROOT / "data/TOKEN.FIL").read_text().splitlines():
        builtin = re.match(r"name:(\S+) type:-\d+ argd:(\S+)", line)
        if builtin:
            slots = [int(x) for x in builtin[2].split(",")]
            if builtin[1] not in awaited:
                builtins[builtin[1]] = None if slots[0] == -100 else slots[1:]
        elif line.startswith("name:"):
            others += {line.split()[0][5:]} - INNER
        elif line.startswith("op:") and line.split()[0][3:] not in INNER:
            others.append(line.split()[0][3:])
    for name in ("init.do", "init0.do"):
        others += re.findall(rf"^({WORD}) =", (ROOT / "data" / name).read_text(), re.M)
    return builtins, list(dict.fromkeys(others))


def split(text):
    """The parts between commas outside brackets."""
    parts, depth = [""], 0
    for c in text:
        depth += (c in "([{") - (c in ")]}")
        if c == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += c
    return [p.strip() for p in parts]


def names(heading):
    plain = re.sub(r"\\(.)", r"\1", heading.replace("`", ""))
    plain = re.sub(r"(?<=\w) \*", "", plain)
    return [re.split(r"[(\[ ]|(?<=\w)=", part)[0] or part for part in split(plain)]


def arguments(call):
    """(mandatory, most) arguments of NAME(A, B[, C]); most is None behind "..."."""
    inside = re.fullmatch(rf"\W*{WORD}\((.*)\)\W*", call, re.S)
    if not inside:
        return None
    needed = most = depth = 0
    for part in re.split(r"([\[\],])", inside[1]):
        depth += (part == "[") - (part == "]")
        if part.strip() and part not in "[],":
            most += 1
            needed += depth == 0 and "..." not in part
    return needed, None if "..." in inside[1] else most


def findtopics(topics):
    found = {}
    for topic in topics:
        if topic.level == 3:
            for name in names(topic.heading):
                found.setdefault(name, (topic, None))
        for row in topic.rows:
            for name in names(row["Name"]):
                found.setdefault(name, (topic, row))
    return found


def lead(topic, mark):
    while topic.above:
        topic = topic.above
        if mark in topic.text:
            return True
    return False


def signaturefault(name, slots, heading):
    call = next((part for part in split(heading.replace("`", "")) if part.startswith(name + "(")), None)
    shown = arguments(call) if call else None
    if shown is None:
        return "has no syntax NAME(arguments)"
    if slots is None:
        return None
    needed, most = sum(s > 0 for s in slots), len(slots)
    if shown[0] != needed or (shown[1] is not None and shown[1] != most):
        return f"is shown with {shown[0]} to {shown[1]} arguments, and takes {needed} to {most}"
    return None


def faults(topics, builtins, others):
    where = findtopics(topics)
    later = {name for t in topics if t.where.startswith("later.md") and t.level == 3 for name in names(t.heading)}
    awaited = set((ROOT / "tests/data/builtins_awaited.txt").read_text().split())
    yield from (f"{name}: docs/reference/later.md and tests/data/builtins_awaited.txt differ" for name in later ^ awaited)
    for name in [*builtins, *others]:
        if name not in where:
            yield f"{name} has no topic in docs/reference"
            continue
        topic, row = where[name]
        at = f"{topic.where}: {name}"
        if name in builtins:
            fault = signaturefault(name, builtins[name], row["Name"] if row else topic.heading)
            if fault:
                yield f"{at} {fault}"
        plain = name not in builtins or all(abs(s) == 4 for s in builtins[name] or [0])
        if "Shapes:" not in topic.text and not (plain and lead(topic, "Shapes:")):
            yield f"{at} tells no shapes"
        if "Errors:" not in topic.text and not lead(topic, "Errors:"):
            yield f"{at} tells no errors"
        # behind a letter or before one a word is another word
        pattern = rf"(?<![A-Za-z0-9_]){re.escape(name)}(?![A-Za-z0-9_])" if name[0].isalpha() else re.escape(name)
        if not re.search(pattern, topic.typed):
            yield f"{at} has no example"


def defaults(tarn, topics):
    """The column Default of the tables against a fresh session."""
    rows = [(t.where, n, r["Default"]) for t in topics for r in t.rows if "Default" in r
            for n in [names(r["Name"])] if r["Default"]]
    told = []  # (place, name, value as the page writes it)
    for where, words, cell in rows:
        values = split(cell)
        told += [(where, w, v.strip("`")) for w, v in zip(words, values if len(values) == len(words) else [cell] * len(words))]
    lines = [f'TYPE "@{k}"\nTYPE {name}\n' for k, (_, name, _) in enumerate(told)]
    lines.sort(key=lambda line: "TYPE NFORMAT" not in line)  # shown before it is changed
    out = session(tarn, "".join(lines[:1]) + 'NFORMAT = "%.17lg"\n' + "".join(lines[1:]))
    for k, (where, name, value) in enumerate(told):
        answer = re.search(rf"^ *@{k}$(.*?)(?=^ *@\d+$|\Z)", out, re.M | re.S)
        lines = [s.strip() for s in answer[1].splitlines() if s.strip() and not s.startswith("* ")]
        got = lines[0] if lines else ""
        if not same(got, value):
            yield f"{where}: the default of {name} is shown as {value}; the program says {got}"


def session(tarn, typed):
    with tempfile.TemporaryDirectory() as folder:
        env = {"PATH": os.environ.get("PATH", ""), "LC_ALL": "C", "HOME": folder}
        return subprocess.run([tarn, "--quiet", "--vanilla"], input=typed, text=True, capture_output=True, cwd=folder,
                              env=env, timeout=60).stdout


def unset(tarn, topics):
    """The column "Without it": the names are free at the start, and MINIMIZE knows the values."""
    rows = [(t.where, n, r["Without it"]) for t in topics for r in t.rows if "Without it" in r for n in [names(r["Name"])]]
    told = [(where, w, v) for where, words, cell in rows for w, v in zip(words, split(cell))]
    shown = session(tarn, "".join(f"TYPE {name}\n" for _, name, _ in told))
    for (where, name, _), answer in zip(told, re.findall(r"^   value = (.*)$", shown, re.M)):
        if answer != "unknown":
            yield f"{where}: {name} has a value at the start"
    if shown.count("value = unknown") != len(told):
        yield "names of the tables headed Without it have values at the start"
    model = "FUNCTION R(X, Y) = 100*(Y-X^2)^2 + (1-X)^2\nX = -1.2; Y = 1\n"
    for report in ("", "REPTSW = 1023\n"):
        run = model + "Z = MINIMIZE(R, X, Y)\nTYPE X, Y\n"
        given = "".join(f"{name} = {value}\n" for _, name, value in told)
        answers = [session(tarn, before + report + run).split("MINIMIZE(R, X, Y)", 1)[1] for before in ("", given)]
        if answers[0] != answers[1]:
            yield "MINIMIZE does not take what the table headed Without it says"


def same(got, told):
    if told.startswith("("):  # in words
        return True
    if told == "none":
        return "unknown" in got
    got = re.split(r" = ?|: ", got, maxsplit=1)[-1].strip()
    if told.startswith('"'):
        return got == told.strip('"').strip()
    try:
        return abs(float(got) - float(told)) <= 1e-15 * abs(float(told))
    except ValueError:
        return got == told


def main():
    parser = argparse.ArgumentParser(description="the reference against the vocabulary and the program")
    parser.add_argument("--tarn", default=str(ROOT / "build" / "tarn"))
    args = parser.parse_args()
    tarn = os.path.abspath(args.tarn)
    topics = pages(ROOT / "docs" / "reference")
    builtins, others = vocabulary()
    wrong = [*faults(topics, builtins, others), *defaults(tarn, topics), *unset(tarn, topics)]
    print(*wrong, sep="\n", end="\n" if wrong else "")
    print(f"reference: {len(builtins)} builtins, {len(others)} other words, {len(wrong)} faults")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
