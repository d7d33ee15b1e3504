#include "vellum/vlpath.h"

#include "vellum/vlstate.h"

#include <cmath>
#include <cstring>

namespace {

// Reads the commands of a buffer in order and prints them.
struct printer {
    const VLPathBuffer& p;
    vlwriter& out;
    int32_t arg = 0;
    bool drawing = false; // a path is open in the output

    float next() {
        float v;
        memcpy(&v, p.buffer + arg, sizeof v);
        arg += int32_t(sizeof v);
        return v;
    }
    std::string_view bytes(size_t count) {
        const std::string_view s(reinterpret_cast<const char*>(p.buffer) + arg, count);
        arg += int32_t((count + 3) / 4 * 4);
        return s;
    }
    void integers(int count) {
        for (int i = 0; i < count; i++) {
            out.rounded(next());
            out.byte(' ');
        }
    }
    void stroke() {
        if (drawing) out.text("E\n");
        drawing = false;
    }

    void colour();
    void polygon();
    void text();
    void image();
    void command(uint8_t op);
};

void printer::colour() {
    for (int i = 0; i < 3; i++) {
        out.general(next());
        out.byte(' ');
    }
    out.text("RGB\n");
}

void printer::polygon() {
    const size_t n = size_t(next());
    bool first = true;
    out.text("B ");
    for (size_t i = 0; i < n; i++) {
        const float x = next(), y = next();
        if (x == 1e30f) {
            if (!first) out.text("C\n");
            first = true;
            continue;
        }
        out.rounded(x);
        out.byte(' ');
        out.rounded(y);
        out.text(first ? " M " : " L ");
        first = false;
    }
    out.text("C\nF\n");
}

const char* const fontoperators[15] = {"TR", "TR",  "CR", "CB", "CO", "CBO", "TR", "TB",
                                       "TI", "TBI", "HV", "HB", "HO", "HBO", "SY"};

void printer::text() {
    const float x = next(), y = next();
    const int font = int(next());
    const float size = next(), angle = next(), scale = next();
    const std::string_view s = bytes(size_t(next()));
    out.rounded(size);
    out.byte(' ');
    out.text(fontoperators[font >= 1 && font <= 14 ? font : 1]);
    out.text(" \ngsave\n");
    out.rounded(x);
    out.byte(' ');
    out.rounded(y);
    out.text(" translate ");
    out.rounded(angle);
    out.text(" rotate ");
    for (int i = 0; i < 2; i++) {
        out.fixed(scale, 6);
        out.byte(' ');
    }
    out.text("scale 0 0 moveto (");
    for (const char c : s) {
        if (c == '(' || c == ')' || c == '\\') out.byte('\\');
        out.byte(c);
    }
    out.text(") show\ngrestore\n");
}

void printer::image() {
    const float x = next(), y = next(), w = next(), h = next();
    const int columns = int(next()), rows = int(next()), depth = int(next());
    const auto numbers = [this](double a, double b, const char* word) {
        out.general(a);
        out.byte(' ');
        out.general(b);
        out.text(word);
    };
    out.text("gsave\n");
    numbers(x, y, " translate\n");
    numbers(w, h, " scale\n");
    numbers(columns, rows, " ");
    out.general(depth / 3);
    out.text("\n[ ");
    out.general(columns);
    out.text(" 0 0 ");
    out.general(rows);
    out.text(" 0 0 ]\n<");
    const std::string_view data = bytes((size_t(columns) * size_t(depth) + 7) / 8 * size_t(rows));
    constexpr char digits[] = "0123456789abcdef";
    for (size_t i = 0; i < data.size(); i++) {
        if (i % 64 == 0) out.byte('\n');
        const uint8_t byte = uint8_t(data[i]);
        out.byte(digits[byte >> 4]);
        out.byte(digits[byte & 15]);
    }
    out.text(">\nfalse 3\ncolorimage\ngrestore\n");
}

void printer::command(uint8_t op) {
    switch (op) {
    case VLPCOLOUR: stroke(); return colour();
    case VLPBEGIN:
        out.text("B ");
        drawing = true;
        [[fallthrough]];
    case VLPMOVE:
        vlassert(drawing, "pathDrawing", "vlpath");
        integers(2);
        return out.text("M\n");
    case VLPLINE:
        vlassert(drawing, "pathDrawing", "vlpath");
        integers(2);
        return out.text("L\n");
    case VLPDOT: {
        const float x = next(), y = next();
        vlassert(drawing, "pathDrawing", "vlpath");
        vlassert(x == 0. && y == 0., "x==0. && y==0.", "vlpath");
        return out.text("D\n");
    }
    case VLPRECT:
        stroke();
        integers(4);
        return out.text("R\n");
    case VLPPOLYGON: stroke(); return polygon();
    case VLPTEXT: stroke(); return text();
    case VLPRAW: stroke(); return out.text(bytes(size_t(next())));
    case VLPSTART: return vlassert(!drawing, "!pathDrawing", "vlpath");
    case VLPIMAGE: stroke(); return image();
    case VLPCLIPPED:
        stroke();
        out.text("gsave ");
        integers(4);
        out.text("RC ");
        polygon();
        return out.text("grestore\n");
    default: vlcomplain("VLPathDoPrint: Illegal operation %d.\n", op);
    }
}

// Is there nothing but the colour and the point that a flush left?
bool onlyleft(const VLPathBuffer& p) {
    const uint8_t* last = p.buffer + VLPathBuffer::size - 1;
    const int count = VLPathBuffer::size - 1 - p.opIdx;
    const int start = count > 0 && last[0] == VLPSTART ? 1 : 0;
    return count == start + 2 && last[-start] == VLPCOLOUR && last[-start - 1] == VLPBEGIN;
}

} // namespace

void VLPathDoPrint(const VLPathBuffer* p, vlwriter& out) {
    if (onlyleft(*p)) return;
    printer print{*p, out};
    for (int32_t i = VLPathBuffer::size - 1; i > p->opIdx; i--) print.command(p->buffer[i]);
    print.stroke();
}
