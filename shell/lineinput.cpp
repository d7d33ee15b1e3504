#include "shell/lineinput.h"

#include "interp/base/report.h"
#include "shell/console.h"
#include "shell/linebuffer.h"
#include "shell/logview.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr size_t RECALLROOM = 1000;
constexpr int CONTROLD = 4, CONTROLL = 12, CONTROLN = 14, CONTROLP = 16;
constexpr int EDITWIDTH = 79; // columns of a row in the line editor

struct inputstate {
    std::vector<std::string> typed; // lines before this one
    bool insert = true;             // the line editor's mode lasts over its uses
    const char *in = "", *out = "";
};
inputstate input;

// Text under edit as it stands on the screen.
struct painter {
    int start = 0; // column of the first character
    int width = 80;
    int row = 0; // of the cursor, below the first row
};

void show(const std::string& text) { conwrite(text.data(), text.size()); }

// Rows are broken by hand: where a terminal wraps by itself is not the same everywhere.
void paint(painter& p, const linebuffer& b) {
    conmove(p.start, -p.row);
    conclearbelow();
    std::string rows;
    int row = 0;
    for (size_t k = 0; k < b.text.size();) {
        const size_t from = k;
        concharacter(b.text.data(), b.text.size(), k);
        const textplace at = placeof(b.text, from, p.start, p.width);
        if (at.row > row) rows += "\r\n";
        row = at.row;
        rows.append(b.text, from, k - from);
    }
    const textplace end = placeof(b.text, b.text.size(), p.start, p.width);
    if (end.row > row) rows += "\r\n";
    show(rows);
    const textplace cursor = placeof(b.text, b.pos, p.start, p.width);
    conmove(cursor.column, cursor.row - end.row);
    p.row = cursor.row;
}

// What a key did, brought to the screen: mostly one character more at the end.
void repaint(painter& p, const linebuffer& b, const std::string& before) {
    if (!wholecharacters(b)) return;
    const textplace at = placeof(b.text, b.pos, p.start, p.width);
    const bool appended = b.pos == b.text.size() && b.text.size() > before.size() &&
                          b.text.compare(0, before.size(), before) == 0;
    if (appended && at.row == p.row && at.column > 0)
        show(b.text.substr(before.size()));
    else
        paint(p, b);
}

// The cursor goes to the line below the text.
void leavetext(painter& p, linebuffer& b) {
    b.pos = b.text.size();
    paint(p, b);
    conattr(input.out);
    show("\n");
}

void resize(painter& p, const linebuffer& b, int width) {
    p.width = width;
    p.row = placeof(b.text, b.pos, p.start, p.width).row; // terminals fold long lines anew
    paint(p, b);
}

std::string logtext() {
    std::string text;
    if (!report.log) return text;
    fflush(report.log);
    const long end = ftell(report.log);
    rewind(report.log);
    text.resize(size_t(std::max(end, 0L)));
    text.resize(fread(text.data(), 1, text.size(), report.log));
    fseek(report.log, 0, SEEK_END);
    return text;
}

void paintview(const logview& v, size_t& top) {
    const size_t height = size_t(std::max(con.rows - 1, 1));
    top = logviewtop(v, top, height);
    conclear();
    for (size_t k = 0; k < height && top + k < v.lines.size(); k++) {
        consetxy(1, int(k) + 1);
        show(v.lines[top + k]);
    }
    consetxy(1, con.rows);
    conattr("7");
    const char* hint = " ARROWS, PGUP, PGDN, HOME:move, INS:take the line, END:back ";
    conwrite(hint, std::min(strlen(hint), size_t(con.columns - 1)));
    conattr("");
    consetxy(std::min(v.column, con.columns), int(v.at - top) + 1);
}

// Scrolls through the log, beginning with `key`. Returns the key that belongs to the input, or KEYNONE; taken
// holds the line that Insert took.
int browse(int key, std::string& taken, bool& took) {
    logview v = logviewmake(logtext());
    const size_t height = size_t(std::max(con.rows - 1, 1));
    size_t top = v.lines.size() > height ? v.lines.size() - height : 0;
    conscreensave();
    viewresult result = viewresult::going;
    while (result == viewresult::going) {
        if (key == KEYBREAK || key == KEYEND) break;
        result = logviewkey(v, key);
        if (result != viewresult::going) break;
        paintview(v, top);
        key = conkey(true);
    }
    conscreenrestore();
    took = result == viewresult::take;
    if (took) taken = logviewline(v);
    return result == viewresult::leavekey || result == viewresult::going ? key : int(KEYNONE);
}

// Lines typed before, by control-P and control-N; place typed.size() is the line being typed.
void recall(linebuffer& b, size_t& place, int step) {
    const size_t count = input.typed.size();
    if ((step < 0 && place == 0) || (step > 0 && place >= count)) return conbell();
    place += size_t(step);
    b.text = place < count ? input.typed[place] : "";
    b.pos = b.text.size();
}

void remember(const std::string& text) {
    if (text.empty() || (!input.typed.empty() && input.typed.back() == text)) return;
    if (input.typed.size() >= RECALLROOM) input.typed.erase(input.typed.begin());
    input.typed.push_back(text);
}

bool startsbrowsing(int key, const linebuffer& b) {
    return key == KEYUP || key == KEYPGUP || (key == KEYHOME && b.pos == 0);
}

bool editwith(linebuffer& b);

enum class linestep { going, done, ended };

linestep linekey(linebuffer& b, painter& p, size_t& place, int key) {
    if (startsbrowsing(key, b)) {
        std::string taken;
        bool took;
        key = browse(key, taken, took);
        if (took) {
            b.text = taken;
            conmove(p.start, -p.row);
            conclearbelow();
            show("\n");
            return editwith(b) ? linestep::done : linestep::ended;
        }
        if (key == KEYNONE) return linestep::going;
    }
    const std::string before = b.text;
    switch (key) {
    case KEYBREAK: leavetext(p, b); throw recoveryjump{5};
    case KEYEND: return linestep::ended;
    case KEYRESIZED: resize(p, b, con.columns); return linestep::going;
    case KEYHOME: b.pos = 0; break;
    case CONTROLP: recall(b, place, -1); break;
    case CONTROLN: recall(b, place, 1); break;
    case CONTROLD:
        if (b.text.empty()) return linestep::ended;
        inputkey(b, KEYDELETE);
        break;
    default:
        switch (inputkey(b, key)) {
        case editresult::done: leavetext(p, b); return linestep::done;
        case editresult::ignored: conbell(); return linestep::going;
        default: break;
        }
    }
    repaint(p, b, before);
    return linestep::going;
}

bool screenline(const char* prompt, std::string& text) {
    linebuffer b;
    painter p;
    p.width = con.columns;
    p.start = con.column % con.columns;
    size_t place = input.typed.size();
    if (report.log) fflush(report.log); // whoever reads it meanwhile sees it whole
    conattr(input.in);
    linestep step = linestep::going;
    while (step == linestep::going) {
        const int key = conkey(true);
        if (key == CONTROLL) {
            conclear();
            show(prompt);
            p.start = con.column;
            p.row = 0;
            paint(p, b);
        } else {
            step = linekey(b, p, place, key);
        }
    }
    conattr(input.out);
    if (step == linestep::ended) show("\n");
    text = b.text;
    remember(text);
    return step == linestep::done;
}

// False: the terminal is gone.
bool editwith(linebuffer& b) {
    conattr("7");
    show(" ESC:abort, ENTER:re-execute, INS:insert/replace toggle, ");
    show("ARROW keys:move cursor");
    conattr("");
    show("\n");
    b.insert = input.insert;
    b.width = std::min(EDITWIDTH, con.columns);
    b.pos = b.text.size();
    painter p;
    p.width = b.width;
    conattr(input.in);
    paint(p, b);
    editresult result = editresult::going;
    while (result == editresult::going || result == editresult::ignored) {
        const int key = conkey(true);
        if (key == KEYEND) return false;
        if (key == KEYRESIZED) {
            b.width = std::min(EDITWIDTH, con.columns);
            resize(p, b, b.width);
            continue;
        }
        const std::string before = b.text;
        result = editorkey(b, key == KEYBREAK ? int(KEYESC) : key);
        if (result == editresult::going) repaint(p, b, before);
        if (result == editresult::ignored) conbell();
    }
    input.insert = b.insert;
    leavetext(p, b);
    return true;
}

bool plainline(std::string& text) {
    const bool there = conplainline(text);
    if (conbreak()) throw recoveryjump{5};
    // What a terminal would have shown stands in the transcript too.
    if (!there)
        show("\n");
    else if (!con.inputtty || !con.outputtty)
        show(text + "\n");
    return there;
}

} // namespace

bool lineinput(const char* prompt, std::string& text) {
    if (report.batch) return !con.inputtty && conplainline(text); // no prompt, and nobody is waited for
    tarnprint("%s", prompt);
    return con.screen ? screenline(prompt, text) : plainline(text);
}

bool lineeditor(std::string& text) {
    if (!con.screen) return false;
    linebuffer b;
    b.text = text;
    for (char& c : b.text)
        if (c == '\r' || c == '\n') c = ' ';
    b.text.erase(b.text.find_last_not_of(' ') + 1);
    if (!editwith(b)) return false;
    text = b.text;
    return true;
}

void inputcolours(const char* in, const char* out) {
    input.in = in;
    input.out = out;
    conattr(out);
}
