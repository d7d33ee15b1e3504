"""A screen as a terminal of the VT100 family shows it: just what the console writes, and an error for anything else."""
import codecs
import re
import unicodedata

CSI = re.compile(r"\x1b\[(\?)?([\d;]*)([A-Za-z])")


class Screen:
    def __init__(self, columns=80, rows=25):
        self.columns, self.rows = columns, rows
        self.decoder = codecs.getincrementaldecoder("utf-8")("replace")
        self.pending = ""
        self.clear()
        self.saved = None
        self.attribute = ""
        self.bells = 0
        self.history = []  # rows that have scrolled off the top

    def clear(self):
        self.cells = [[" "] * self.columns for _ in range(self.rows)]
        self.attributes = [[""] * self.columns for _ in range(self.rows)]
        self.row = self.column = 0
        self.wrap = False

    def lines(self):
        return ["".join(row).rstrip() for row in self.cells]

    def text(self):
        return "\n".join(self.lines()).rstrip("\n")

    def everything(self):
        """The screen with what has scrolled off it."""
        return "\n".join(self.history + self.lines()).rstrip("\n")

    def feed(self, data):
        self.pending += self.decoder.decode(data)
        at = 0
        while at < len(self.pending):
            if self.pending[at] == "\x1b":
                match = CSI.match(self.pending, at)
                if not match:
                    if len(self.pending) - at < 16:
                        break
                    raise ValueError("unknown sequence " + repr(self.pending[at : at + 10]))
                self.control(bool(match[1]), match[2], match[3])
                at = match.end()
            else:
                self.put(self.pending[at])
                at += 1
        self.pending = self.pending[at:]

    def newline(self):
        self.wrap = False
        if self.row < self.rows - 1:
            self.row += 1
            return
        self.history.append("".join(self.cells[0]).rstrip())
        self.cells = self.cells[1:] + [[" "] * self.columns]
        self.attributes = self.attributes[1:] + [[""] * self.columns]

    def put(self, c):
        if c == "\r":
            self.column, self.wrap = 0, False
        elif c == "\n":
            self.newline()
        elif c == "\b":
            self.column, self.wrap = max(self.column - 1, 0), False
        elif c == "\a":
            self.bells += 1
        elif c == "\t":
            self.column = min((self.column // 8 + 1) * 8, self.columns - 1)
        elif c >= " ":
            width = 2 if unicodedata.east_asian_width(c) in "WF" else 1
            if self.wrap or self.column + width > self.columns:
                self.column = 0
                self.newline()
            self.cells[self.row][self.column] = c
            self.attributes[self.row][self.column] = self.attribute
            if width == 2:
                self.cells[self.row][self.column + 1] = ""
            self.column += width
            self.wrap = self.column >= self.columns
            if self.wrap:
                self.column = self.columns - 1
        else:
            raise ValueError("unknown control character " + repr(c))

    def control(self, private, parameters, letter):
        numbers = [int(n) if n else 0 for n in parameters.split(";")]
        n = max(numbers[0], 1)
        if private and parameters == "1049":
            self.alternate(letter == "h")
            return
        self.wrap = self.wrap and letter == "m"
        if letter == "A":
            self.row = max(self.row - n, 0)
        elif letter == "B":
            self.row = min(self.row + n, self.rows - 1)
        elif letter == "C":
            self.column = min(self.column + n, self.columns - 1)
        elif letter == "D":
            self.column = max(self.column - n, 0)
        elif letter == "H":
            self.row = min(n, self.rows) - 1
            self.column = min(max(numbers[1] if len(numbers) > 1 else 1, 1), self.columns) - 1
        elif letter == "J" and numbers[0] == 2:
            place = self.row, self.column
            self.clear()
            self.row, self.column = place
        elif letter == "J" and numbers[0] == 0:
            self.cells[self.row][self.column :] = [" "] * (self.columns - self.column)
            for row in range(self.row + 1, self.rows):
                self.cells[row] = [" "] * self.columns
        elif letter == "m":
            self.attribute = parameters if parameters not in ("", "0") else ""
        else:
            raise ValueError(f"unknown sequence ESC [ {parameters} {letter}")

    def alternate(self, on):
        if on and self.saved is None:
            self.saved = self.cells, self.attributes, self.row, self.column, self.wrap
            self.clear()
        elif not on and self.saved is not None:
            self.cells, self.attributes, self.row, self.column, self.wrap = self.saved
            self.saved = None
