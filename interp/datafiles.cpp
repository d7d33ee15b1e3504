#include "interp/datafiles.h"

#include "funcs/builtin.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/harray.h"
#include "values/numread.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>

readonstate readon;

namespace {

namespace fs = std::filesystem;

struct fileclose {
    void operator()(FILE* f) const { fclose(f); }
};

// A text of numbers that comes in pieces: from a file, or line by line from the keyboard.
struct numbersource {
    std::unique_ptr<FILE, fileclose> file; // null: the keyboard
    std::string buffer;                    // its bytes [0, held), then a zero byte
    size_t held = 0;
    int64_t offset = 0; // of buffer in the file
    bool ended = false, failed = false;
    bool marks = false; // words for missing numbers were skipped
    numbertext text = numbertextstart("", 0);
};

constexpr size_t PIECE = 256 * 1024;

void addpiece(numbersource& s) {
    if (!s.file) {
        std::string line;
        s.ended = !console.readline("", line);
        s.buffer.replace(s.held, std::string::npos, s.ended ? "" : line + "\n");
        s.held = s.buffer.size();
        return;
    }
    if (s.held + PIECE > s.buffer.size()) s.buffer.resize(std::max(s.held + PIECE, 2 * s.held));
    const size_t n = fread(s.buffer.data() + s.held, 1, s.buffer.size() - s.held, s.file.get());
    s.ended = n == 0;
    s.failed = ferror(s.file.get()) != 0;
    s.held += n;
}

// Drops what has been read up to from, and adds the next piece behind the rest.
void refill(numbersource& s, const char* from) {
    const size_t rest = size_t(s.text.end - from);
    s.offset += int64_t(s.held - rest);
    if (s.held) memmove(s.buffer.data(), from, rest);
    s.held = rest;
    addpiece(s);
    if (s.buffer.size() == s.held) s.buffer.push_back('\0');
    s.buffer[s.held] = '\0';
    s.marks |= s.text.marks;
    s.text = numbertextstart(s.buffer.data(), s.held);
}

numberresult nextnumber(numbersource& s, double& x) {
    for (;;) {
        const numberresult result = readnumber(s.text, x);
        if (s.text.p < s.text.end || s.ended) return s.failed ? NUMBERBAD : result;
        refill(s, s.text.mark);
    }
}

bool isconsole(const std::string& path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    return name == "CON" || name == "con" || name == "CON.dat" || name == "con.dat";
}

bool opensource(numbersource& s, const std::string& path) {
    if (isconsole(path)) return true;
    std::error_code fault;
    if (fs::is_directory(path, fault)) return false;
    s.file.reset(fopen(path.c_str(), "rb"));
    if (s.file) setvbuf(s.file.get(), nullptr, _IONBF, 0); // whole pieces are read
    return s.file != nullptr;
}

// Elements as they come; the matrix is made with the shape that was found.
struct growingmatrix {
    harrayptr m;
    size_t rows = 0, cols, most; // rows held, and asked for
    growingmatrix(size_t most_, size_t cols_) : cols(cols_), most(most_) {}
};

// Room for one row more, and for many of them as the matrix grows.
void addrow(growingmatrix& g) {
    constexpr size_t FIRST = 4096; // elements
    const size_t room = g.m ? g.m->rows : 0;
    if (g.rows == room) {
        const size_t wanted = std::min(g.most, std::max(2 * room, FIRST / g.cols + 1));
        if (wanted > UINT32_MAX || wanted * g.cols >= 0x3FFFFFFF)
            tarnerror("Too many elements requested in 'xalloc()'");
        harrayptr wider(harrayraw(uint32_t(wanted), uint32_t(g.cols)));
        if (g.m) memcpy(cells(wider.get()) + 1, cells(g.m.get()) + 1, room * g.cols * sizeof(double));
        g.m = std::move(wider);
    }
    g.rows++;
}

harrayptr exactly(growingmatrix& g) {
    if (g.m && g.m->rows == g.rows) return std::move(g.m);
    harrayptr m(harrayraw(uint32_t(g.rows), uint32_t(g.cols)));
    if (g.rows) memcpy(cells(m.get()) + 1, cells(g.m.get()) + 1, g.rows * g.cols * sizeof(double));
    return m;
}

/* Fills up to rows by cols, row by row. A row without any number does not count; one that the text ends in is
 * filled up with zeros. */
numberresult readrows(numbersource& s, growingmatrix& g) {
    while (g.rows < g.most) {
        double x;
        numberresult result = nextnumber(s, x);
        if (result != NUMBERREAD) return result;
        addrow(g);
        double* row = &at(g.m.get(), g.rows, 1);
        row[0] = x;
        for (size_t j = 1; j < g.cols; j++) {
            if ((result = nextnumber(s, row[j])) == NUMBERREAD) continue;
            std::fill(row + j, row + g.cols, 0.0);
            return result;
        }
    }
    return NUMBERREAD;
}

// Numbers behind such a word stand in places that were meant for others.
void warnofmarks(const numbersource& s, const char* name) {
    if (s.marks || s.text.marks)
        tarnwarn("%s: NA, NaN or Inf was skipped; READCSV keeps the places of missing numbers", name);
}

// The line of the file that its byte at place stands in.
long lineof(const std::string& path, int64_t place) {
    const std::unique_ptr<FILE, fileclose> file(fopen(path.c_str(), "rb"));
    long lines = 1;
    for (int c; file && place > 0 && (c = getc(file.get())) != EOF; place--) lines += c == '\n';
    return lines;
}

// What stopped the reading, and where.
furtherline unreadable(const numbersource& s, const std::string& path) {
    if (s.failed) return further("%s cannot be read to its end", path.c_str());
    const char* const from = s.text.mark;
    const std::string place =
        s.file ? path + ", line " + std::to_string(lineof(path, s.offset + (from - s.buffer.data()))) + ": "
               : "";
    const auto c = static_cast<unsigned char>(*from);
    if (c < ' ' || c == 127) return further("%sa byte of code %d, which no text holds", place.c_str(), c);
    const char* end = from;
    while (end < s.text.end && end - from < 20 && static_cast<unsigned char>(*end) > ' ') end++;
    return further("%s\"%s\" is no number: the exponent has no digits", place.c_str(),
                   std::string(from, end).c_str());
}

struct readargs {
    std::string path;
    double rows, cols;
};

readargs readarguments(const callargs& a) {
    if (!namesfile(a[1])) argtype(a.name());
    return {datapath(a[1], "dat"), std::trunc(a.scalar(2, 1000)), std::trunc(a.scalar(3, 1))};
}

int read(const callargs& a) {
    const readargs r = readarguments(a);
    numbersource source;
    if (!opensource(source, r.path))
        tarnerror(notreadable(r.path), "READ: couldn't open input file %.199s\n", r.path.c_str());
    if (!source.file) tarnprint("Type <CONTROL>Z after last number\n");
    const furtherline shape = further("%.15g rows and %.15g columns are asked for", r.rows, r.cols);
    if (r.rows < 1) tarnerror(shape, "READ: bad row argument");
    if (r.cols < 1) tarnerror(shape, "READ: bad col argument");
    if (r.rows * r.cols > 2147483647)
        tarnerror(shape, "READ: rows*cols exceeds 2^^31-1 (implementation limit)");
    growingmatrix g(size_t(r.rows), size_t(r.cols));
    if (readrows(source, g) == NUMBERBAD)
        tarnerror(unreadable(source, r.path), "READ: unreadable character in file");
    warnofmarks(source, "READ");
    return symtabmatrix(0, 0, exactly(g));
}

readonslot* slotof(const std::string& path) {
    for (readonslot& slot : readon.slot)
        if (slot.path == path) return &slot;
    return nullptr;
}

void forget(const std::string& path) {
    if (readonslot* slot = slotof(path)) slot->path.clear();
}

void remember(const std::string& path, int64_t offset) {
    readonslot* slot = slotof(path);
    if (!slot) slot = slotof("");
    if (!slot) {
        tarnwarn("TOO MANY OPEN READON FILES");
        return tarnwarn("%s is read from its start again next time; READON(FILE, -1) closes a file",
                        path.c_str());
    }
    slot->path = path;
    slot->offset = offset;
}

// Files of any size can be passed over where the system's own seek takes a long.
bool seek(numbersource& s, int64_t offset) {
    s.offset = offset;
    for (int64_t done = 0; done < offset;) {
        const long step = long(std::min<int64_t>(offset - done, 1L << 30));
        if (fseek(s.file.get(), step, done ? SEEK_CUR : SEEK_SET) != 0) return false;
        done += step;
    }
    return true;
}

int readonward(const callargs& a) {
    const readargs r = readarguments(a);
    if (r.rows < 0) {
        forget(r.path);
        return symtabmatrix(0, 0, harrayptr(harraynew(0, 0)));
    }
    numbersource source;
    if (!opensource(source, r.path))
        tarnerror(notreadable(r.path), "READON: couldn't open input file %.199s\n", r.path.c_str());
    if (r.rows < 1 || r.cols < 1 || r.rows * r.cols > 2147483647)
        tarnerror(further("%.15g rows and %.15g columns are asked for", r.rows, r.cols),
                  "bad row or column argument in READON");
    const readonslot* slot = source.file ? slotof(r.path) : nullptr;
    if (slot && !seek(source, slot->offset))
        tarnerror(further("the file has become shorter; READON(FILE, -1) begins anew"),
                  "READON: couldn't open input file %.199s\n", r.path.c_str());
    growingmatrix g(size_t(r.rows), size_t(r.cols));
    const numberresult result = readrows(source, g);
    if (result != NUMBERREAD)
        forget(r.path);
    else if (source.file)
        remember(r.path, source.offset + (source.text.p - source.buffer.data()));
    if (result == NUMBERBAD) tarnerror(unreadable(source, r.path), "READON: unreadable character in file");
    warnofmarks(source, "READON");
    return symtabmatrix(0, 0, exactly(g));
}

constexpr valuerow rows[] = {{-625, read}, {-758, readonward}};

} // namespace

bool namesfile(int idx) {
    return idx > 0 && (isstringtype(idx) || isalpha(static_cast<unsigned char>(sym(idx).name[0])));
}

std::string datapath(int idx, const char* ext) {
    const char* directory = report.filedir.c_str();
    if (isstringtype(idx)) return bindname(stringval(idx), directory, nullptr);
    std::string path = bindname(sym(idx).name, directory, ext);
    std::error_code fault;
    if (fs::exists(path, fault)) return path;
    const size_t name = path.find_last_of('/') + 1;
    const std::string small = path.substr(0, name) + lowered(path.substr(name));
    return fs::exists(small, fault) ? small : path;
}

void datafilesstart() {
    readon = readonstate{};
    builtinadd(rows, int(std::size(rows)));
    keyreadrows();
    csvrows();
}
