#include "interp/matrixtext.h"

#include "interp/base/machine.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

matrixformat mformat;

namespace {

constexpr int MAXBLANKS = 79;     // of any of the widths in MFORMAT
constexpr size_t BLOCK = 1 << 15; // printed text is handed on in pieces of about this size
constexpr int MINLINE = 25;

struct column {
    int width, pointcol;
};

// A printed line holds the columns [from, to).
struct group {
    size_t from, to;
};

// The texts of the first cells as they were measured, each behind its length, to be printed in the same
// order.
struct textstore {
    static constexpr size_t ROOM = size_t(64) << 20; // cells that do not fit are made text once more
    std::string bytes;
    size_t next = 0;
    bool full = false;

    void keep(std::string_view text) {
        const uint16_t length = uint16_t(text.size());
        full = full || bytes.size() > ROOM || text.size() > UINT16_MAX;
        if (full) return;
        bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
        bytes += text;
    }
    bool recall(std::string_view& text) {
        if (next >= bytes.size()) return false;
        uint16_t length;
        memcpy(&length, bytes.data() + next, sizeof length);
        text = {bytes.data() + next + sizeof length, length};
        next += sizeof length + length;
        return true;
    }
};

struct printing {
    const harray* m;
    const matrixlook& look;
    numberformat numbers;   // usable
    std::vector<char> cell; // scratch: the text of one number
    double threshold = 0;
    std::vector<column> columns;
    std::vector<group> groups;
    int rowdigits = 0; // of a row number; 0: rows are not numbered
    textstore kept;
};

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string_view celltext(printing& p, double x) {
    if (std::fabs(x) < p.threshold) x = 0;
    const std::string_view text(p.cell.data(), numwrite(p.cell.data(), x, p.numbers));
    return p.look.layout.colmode == 2 ? trimmed(text) : text;
}

// The marks MAXPOS and MAXNEG are no numbers, and do not count as the largest.
double cutoffthreshold(const harray* m, double cutoff) {
    if (cutoff == 0) return 0;
    double largest = 0;
    for (size_t k = 1; k <= harraycount(m); k++) {
        const double size = std::fabs(cells(m)[k]);
        if (size < MAXPOS) largest = std::max(largest, size);
    }
    return cutoff * largest;
}

std::vector<fieldextent> measurecolumns(printing& p) {
    std::vector<fieldextent> widest(p.m->cols);
    const int justify = p.look.layout.justify;
    const double* x = cells(p.m) + 1;
    for (size_t i = 0; i < p.m->rows; i++)
        for (fieldextent& column : widest) {
            const std::string_view text = celltext(p, *x++);
            p.kept.keep(text);
            const fieldextent e = fieldmeasure(text, justify);
            column.before = std::max(column.before, e.before);
            column.behind = std::max(column.behind, e.behind);
        }
    return widest;
}

void shareextents(std::vector<fieldextent>& extents) {
    fieldextent widest;
    for (const fieldextent& e : extents) {
        widest.before = std::max(widest.before, e.before);
        widest.behind = std::max(widest.behind, e.behind);
    }
    std::fill(extents.begin(), extents.end(), widest);
}

bool linesup(int justify) { return justify >= 2 && justify <= 4; }

void setcolumns(printing& p) {
    const matrixformat& f = p.look.layout;
    const bool fixed = f.colmode == 0;
    std::vector<fieldextent> extents(p.m->cols);
    if (!fixed || linesup(f.justify)) extents = measurecolumns(p);
    if (f.colmode == 3) shareextents(extents);
    for (const fieldextent& e : extents) {
        const int width = fixed ? f.colwidth : std::max(1, e.before + e.behind);
        p.columns.push_back({width, std::clamp(width - e.behind, 0, width)});
    }
}

int numberwidth(const printing& p) { return p.rowdigits ? p.rowdigits + 2 : 0; }

void setgroups(printing& p) {
    const matrixformat& f = p.look.layout;
    size_t from = 0;
    while (from < p.columns.size()) {
        const int room = std::max(p.look.linelen, MINLINE) - numberwidth(p) - f.endcol - (from ? f.wrap : 0);
        int used = p.columns[from].width;
        size_t to = from + 1;
        for (; to < p.columns.size(); to++) {
            used += f.intercol + p.columns[to].width;
            if (used > room || (f.maxcols > 0 && to - from >= size_t(f.maxcols))) break;
        }
        p.groups.push_back({from, to});
        from = to;
    }
}

void setrownumbers(printing& p) {
    if (!p.look.names || !p.look.layout.rownums) return;
    p.rowdigits = 3;
    for (uint32_t n = p.m->rows; n > 999; n /= 10) p.rowdigits++;
}

void appendrow(printing& p, size_t row, std::string& out) {
    const matrixformat& f = p.look.layout;
    const double* x = cells(p.m) + 1 + row * p.m->cols;
    for (const group& g : p.groups) {
        if (g.from > 0) {
            out.append(size_t(f.wrap + numberwidth(p)), ' ');
        } else if (p.rowdigits) {
            char number[24];
            out.append(number, size_t(snprintf(number, sizeof number, "%*zu: ", p.rowdigits, row + 1)));
        }
        for (size_t j = g.from; j < g.to; j++) {
            if (j > g.from) out.append(size_t(f.intercol), ' ');
            std::string_view text;
            if (!p.kept.recall(text)) text = celltext(p, x[j]);
            fieldset(out, text, p.columns[j].width, p.columns[j].pointcol, f);
        }
        out.append(size_t(f.endcol), ' ');
        out += '\n';
    }
}

void stars(std::string& out, int width) {
    const int count = std::min(width, 3), before = (width - count) / 2;
    out.append(size_t(before), ' ');
    out.append(size_t(count), '*');
    out.append(size_t(width - count - before), ' ');
}

size_t alignment(std::string_view text, int justify) {
    size_t at = std::string_view::npos;
    if (justify == 2) at = text.find('.');
    if (justify == 4) {
        at = text.find_first_not_of(' ');
        if (at != std::string_view::npos && (text[at] == '-' || text[at] == '+')) at++;
    } else if (at == std::string_view::npos) {
        at = text.find_first_of("Ee");
    }
    return std::min(at, text.size());
}

} // namespace

void parsemformat(const char* text) {
    const char* const whole = text;
    int16_t field[8];
    for (int16_t& value : field) {
        char* end;
        const long n = strtol(text, &end, 10);
        if (end == text || n < INT16_MIN || n > INT16_MAX)
            tarnerror(further("\"%s\" is not eight whole numbers, such as \"10 0 3 0 6 1 1 1\"; the format "
                              "before it stays "
                              "in force",
                              whole),
                      "Illegal mformat string");
        value = int16_t(n);
        text = end + strspn(end, " \t,");
    }
    const matrixformat f{field[0], field[1], field[2], field[3], field[4], field[5], field[6], field[7]};
    const auto blanks = [](int n) { return n >= 0 && n <= MAXBLANKS; };
    const auto limits = [](int n, int least) {
        return further("it is %d; %d to %d is possible; the format before it stays in force", n, least,
                       MAXBLANKS);
    };
    if (f.colmode == 0 && (f.colwidth < 1 || !blanks(f.colwidth)))
        tarnerror(limits(f.colwidth, 1), "Unacceptable column width");
    if (!blanks(f.intercol)) tarnerror(limits(f.intercol, 0), "Unacceptable number of inter-column blanks");
    if (!blanks(f.endcol)) tarnerror(limits(f.endcol, 0), "Unacceptable number of end-of-column blanks");
    if (!blanks(f.wrap)) tarnerror(limits(f.wrap, 0), "Unacceptable number of wrap spaces");
    mformat = f;
}

matrixlook matrixlooknow() {
    matrixlook look;
    look.numbers = nformat;
    look.layout = mformat;
    look.linelen = int(std::clamp(symtabscalar("LINELEN", 80), double(MINLINE), 1e9));
    look.cutoff = symtabscalar("CUTOFF", 0);
    look.names = symtabscalar("NAMESW", 1) != 0;
    return look;
}

void matrixprint(const char* name, const harray* m, const matrixlook& look) {
    printing p{m, look, numusable(look.numbers), {}, cutoffthreshold(m, look.cutoff), {}, {}, 0, {}};
    p.cell.resize(numroom(p.numbers));
    setrownumbers(p);
    setcolumns(p);
    setgroups(p);
    if (look.names) tarnprint("\n   %s: a  %ld by %ld matrix\n\n", name, long(m->rows), long(m->cols));
    std::string out;
    for (size_t i = 0; i < m->rows && m->cols > 0; i++) {
        appendrow(p, i, out);
        if (out.size() < BLOCK) continue;
        tarnprinttext(out.data(), out.size());
        out.clear();
    }
    out += '\n';
    tarnprinttext(out.data(), out.size());
}

fieldextent fieldmeasure(std::string_view text, int justify) {
    if (!linesup(justify)) return {int(text.size()), 0};
    const size_t at = alignment(text, justify);
    return {int(at), int(text.size() - at)};
}

void fieldset(std::string& out, std::string_view text, int width, int pointcol, const matrixformat& f) {
    if (f.colmode == 2) text = trimmed(text);
    const int length = int(text.size());
    if (length > width) return stars(out, width);
    int start = 0;
    if (f.justify == 1) start = width - length;
    if (linesup(f.justify)) start = std::clamp(pointcol - int(alignment(text, f.justify)), 0, width - length);
    out.append(size_t(start), ' ');
    out += text;
    out.append(size_t(width - length - start), ' ');
}
