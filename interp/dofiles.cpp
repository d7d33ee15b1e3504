#include "interp/dofiles.h"

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/mistakes.h"
#include "interp/session.h"
#include "interp/source.h"
#include "values/harray.h"

#include <cstring>
#include <filesystem>

dofilestate dofiles;

namespace {

constexpr int READLIMIT = 200;    // characters that one piece of a do-file's line may hold
constexpr size_t NESTLIMIT = 500; // do-files, texts and loops inside each other

bool isblank(char c) { return c == ' ' || c == '\t'; }
bool innumber(char c) { return (c >= '0' && c <= '9') || (c && strchr("+-eE", c)); }

void dropblanks(std::string& text) {
    size_t first = 0;
    while (first < text.size() && (isblank(text[first]) || text[first] == '\r')) first++;
    size_t end = text.size();
    while (end > first && isblank(text[end - 1])) end--;
    text = text.substr(first, end - first);
}

// One piece of a line as it stands, but for carriage returns and the blanks in front of the line.
int readpiece(std::string& buf, int size, textlines& in) {
    const std::string& from = in.content;
    buf.clear();
    if (!in.midline) {
        while (in.pos < from.size() && (isblank(from[in.pos]) || from[in.pos] == '\r')) in.pos++;
        if (in.pos >= from.size()) return -1;
        in.number++;
    }
    in.midline = false;
    while (in.pos < from.size()) {
        const char c = from[in.pos];
        if (c == '\n') {
            in.pos++;
            break;
        }
        const int length = int(buf.size());
        if (length >= size - 1) {
            tarnwarn("we accepted a long line without an LF");
            in.midline = true;
            break;
        }
        if (length > size - 20 && !innumber(c) && c != '\r') {
            in.midline = true;
            break;
        }
        in.pos++;
        if (c != '\r') buf += c;
    }
    return int(buf.size());
}

inputsource* running() { return dofiles.stack.empty() ? nullptr : &dofiles.stack.back(); }
bool somethingleft() {
    if (scanner.stream) return scanner.stream->next < scanner.stream->tokens.size();
    return line.cursor < line.text.size();
}

inputsource& pushsource(sourcekind kind) {
    if (dofiles.stack.size() >= NESTLIMIT)
        tarnerror(further("does one run itself again?"),
                  "do-files and loops are nested too deeply: %zu is the limit", NESTLIMIT);
    inputsource& s = dofiles.stack.emplace_back();
    s.kind = kind;
    s.savedline = std::move(line.text);
    s.savedcursor = line.cursor;
    s.savedstream = scanner.stream;
    line.text.clear();
    line.cursor = 0;
    line.depth = int(dofiles.stack.size());
    scanner.stream = nullptr;
    return s;
}

} // namespace

forloop* runningloop() {
    inputsource* s = running();
    return s && s->kind == sourcekind::loop ? s->loop.get() : nullptr;
}

int readline(std::string& buf, int size, textlines& in) {
    if (readpiece(buf, size, in) < 0) return -1;
    dropblanks(buf);
    return int(buf.size());
}

bool readwhole(FILE* file, std::string& content) {
    content.clear();
    char block[65536];
    size_t n;
    while ((n = fread(block, 1, sizeof block, file)) > 0) content.append(block, n);
    return !ferror(file);
}

bool readwhole(const char* path, std::string& content) {
    FILE* file = fopen(path, "rb");
    if (!file) return false;
    const bool whole = readwhole(file, content); // a directory opens, but cannot be read
    fclose(file);
    return whole;
}

void dofilesreset() {
    dofiles = dofilestate{};
    line = linestate{};
    scanner.stream = scanner.record = nullptr;
}

void pushfile(const char* name, std::string content) {
    inputsource& s = pushsource(sourcekind::file);
    s.name = name;
    s.in.content = std::move(content);
    if (s.in.content.starts_with("\xEF\xBB\xBF")) s.in.pos = 3; // a byte order mark is no statement
}

void pushtext(const std::string& text) {
    pushsource(sourcekind::text);
    for (size_t k = 0; k < text.size(); k++) {
        if (text[k] == '\r' && k + 1 < text.size() && text[k + 1] == '\n') continue;
        line.text += text[k] == '\n' ? '\r' : text[k];
    }
    line.text += '\r';
}

void popsource() {
    inputsource& s = dofiles.stack.back();
    line.text = std::move(s.savedline);
    line.cursor = s.savedcursor;
    scanner.stream = s.savedstream;
    const int values = s.loop ? s.loop->values : 0;
    dofiles.stack.pop_back();
    line.depth = int(dofiles.stack.size());
    if (values) tempfree(values);
}

void popallsources() {
    while (!dofiles.stack.empty()) popsource();
    line.keepline = false;
    scanner.record = nullptr;
}

bool typedbyhand() {
    for (const inputsource& s : dofiles.stack)
        if (s.kind != sourcekind::loop) return false;
    return true;
}

int sourceline() {
    const inputsource* s = running();
    return s && s->kind == sourcekind::file ? s->in.number : 0;
}

std::string sourceplace() {
    constexpr int LONGEST = 4; // places of a chain that are told
    std::string chain;
    int places = 0;
    int looplines = 0; // the line of the innermost loop that stands in the do-file
    for (size_t k = dofiles.stack.size(); k-- > 0;) {
        const inputsource& s = dofiles.stack[k];
        if (s.kind == sourcekind::loop) {
            if (looplines == 0 && s.loop->body.next > 0 && s.loop->body.next <= s.loop->lines.size())
                looplines = s.loop->lines[s.loop->body.next - 1];
            continue;
        }
        const int number = looplines ? looplines : s.in.number;
        looplines = 0;
        if (s.kind == sourcekind::file && number == 0) break; // queued at the start, still to be run
        if (s.name.empty()) continue;
        if (++places > LONGEST) return chain + ", and so on";
        chain += places > 1 ? ", called from " : "";
        chain +=
            s.kind == sourcekind::file ? s.name + ", line " + std::to_string(number) : "the text " + s.name;
    }
    return chain;
}

// ---- refilling ----

namespace {

// What the end of the input leaves open.
furtherline unfinishedpart() {
    if (!line.open) return further("the last statement is not complete");
    if (line.opened == 0) return further("%s is not closed", line.open);
    return further("%s that begins in line %d is not closed", line.open, line.opened);
}

// A statement that is still open must not swallow what its caller has to run next.
void refusehalfstatement(const char* what) {
    if (line.keepline || line.prompt[0] == '>')
        tarnerror(unfinishedpart(), "the %s ended inside a statement", what);
}

void echo(const std::string& text, const char* prompt) {
    if (dofiles.echodo & 1) conout("%s%s\n", prompt, text.c_str());
    if (dofiles.echodo & 2) logout("%s%s\n", prompt, text.c_str());
}

// One whole line of the current do-file; its pieces are put together again. False at the end.
bool filetext(inputsource& s, const char* prompt, std::string& text) {
    if (dofiles.dostep) getkey(true);
    std::string piece;
    if (readpiece(text, READLIMIT, s.in) < 0) return false;
    while (s.in.midline && readpiece(piece, READLIMIT, s.in) >= 0) text += piece;
    dropblanks(text);
    echo(text, prompt);
    return true;
}

bool keyboardtext(const char* prompt, std::string& text) {
    if (dofiles.closed || !console.readline(prompt, text)) return false;
    for (char& c : text)
        if (c == '\t') c = ' ';
    dropblanks(text);
    logout("%s\n", text.c_str());
    return true;
}

void finishline(size_t start) {
    line.text += '\r';
    line.cursor = start;
    line.carry = 0;
    line.prevline = std::move(line.lastline);
    line.lastline = line.text;
}

// Reads a line, with those that continue it, behind what keepline holds. False at the end of the source.
bool readon() {
    inputsource* s = running();
    const char* prompt = line.prompt;
    if (!line.keepline) line.text.clear();
    const size_t start = line.text.size();
    std::string text;
    while (s ? filetext(*s, prompt, text) : keyboardtext(prompt, text)) {
        if (text.empty()) continue;
        const bool goeson = text.back() == '\\';
        if (goeson) text.pop_back();
        line.text += text;
        line.carry = line.text.size();
        if (!goeson) {
            finishline(start);
            return true;
        }
        prompt = ": ";
    }
    if (line.text.size() == start) return false;
    finishline(start); // the last line asked for one more
    return true;
}

[[noreturn]] void badvariable(int idx) {
    tarnerror(furtherline{describe(idx)}, "for-loop variable must be a scalar");
}

double loopvalue(const forloop& f) { return cells(matrixof(f.values))[f.index]; }

void setloopvariable(forloop& f) {
    if (sym(f.var).type != SCALAR || f.name != sym(f.var).name) {
        f.var = symtabenter(f.name.c_str()); // the body deleted it
        if (sym(f.var).type != UNKNOWN && sym(f.var).type != SCALAR) badvariable(f.var);
        sym(f.var).type = SCALAR;
    }
    sym(f.var).val.rval = loopvalue(f);
}

void beginpass(forloop& f) {
    if (f.text.empty()) {
        streamrewind(f.body);
        scanner.stream = &f.body;
    } else {
        line.text = f.text;
        line.cursor = 0;
    }
}

} // namespace

// The body may have changed the matrix.
bool nextpass() {
    inputsource& s = dofiles.stack.back();
    forloop& f = *s.loop;
    const bool matrix = sym(f.values).type == MATRIX;
    if (s.ended || (!matrix && f.index >= f.limit)) return false;
    if (!matrix)
        tarnerror(further("a loop over an expression, such as M + 0, has a matrix of its own"),
                  "the matrix of a FOR loop was deleted by its body");
    if (f.index >= harraycount(matrixof(f.values))) return false;
    f.index++;
    setloopvariable(f);
    beginpass(f);
    return true;
}

void getline() {
    for (;;) {
        inputsource* s = running();
        if (!s) {
            if (readon()) return;
            if (line.keepline || line.prompt[0] == '>') {
                line.prompt = "* ";
                tarnerror(unfinishedpart(), "the input ended inside a statement");
            }
            throw sessionend{0};
        }
        if (s->kind == sourcekind::loop) {
            refusehalfstatement("body of a FOR loop");
            if (nextpass()) return;
        } else if (s->kind == sourcekind::file && !s->ended) {
            if (readon()) return;
            refusehalfstatement("do-file");
        } else {
            refusehalfstatement("text");
        }
        popsource();
        if (somethingleft()) return;
    }
}

void sourcereturn() {
    line.cursor = line.text.size();
    if (scanner.stream) scanseek(scanner.stream->tokens.size());
    if (inputsource* s = running()) s->ended = true;
}

// ---- DO ----

std::string dofilepath(const std::string& name) {
    std::error_code failure;
    const std::string path = findfile(name), named = findfile(bindname(name.c_str(), nullptr, "do"));
    const bool extended = !std::filesystem::exists(path, failure) && std::filesystem::exists(named, failure);
    return extended ? named : path;
}

const char* dofiledirectory() {
    const char* own = symtabstring("DOFILEDIR", "");
    return *own ? own : report.filedir.c_str();
}

namespace {

void dokeyboardline() {
    std::string text;
    if (dofiles.closed || !console.readline("  ", text)) return;
    logout("%s\n", text.c_str());
    pushtext(text);
}

std::string dofilename(int symbol) {
    if (sym(symbol).type == TEMPSTRING)
        return dofilepath(bindname(stringval(symbol), dofiledirectory(), nullptr));
    return findfile(bindname(sym(symbol).name, dofiledirectory(), "do"));
}

// A tail call: the caller's source is closed, not returned to.
void tailcall() {
    const int sw = symtablookup("TAILDOSW");
    if (sw < 0 || !isscalar(sw) || sym(sw).val.rval != 1) return;
    if (running()) popsource();
    sym(sw).val.rval = 0;
}

} // namespace

void dofile(int symbol) {
    const std::string name = sym(symbol).name;
    if (name == "KLINE" || name == "kline") return dokeyboardline();
    if (sym(symbol).type == STRINGTYPE) {
        pushtext(stringval(symbol));
        dofiles.stack.back().name = name;
        return;
    }
    const std::string path = dofilename(symbol);
    std::string content;
    if (name == "CON" || name == "con" || !readwhole(path.c_str(), content))
        tarnerror(name == "CON" || name == "con" ? further("typed lines are run by DO KLINE")
                                                 : notreadable(path),
                  "couldn't open DO file %.199s", path.c_str());
    tempfree(symbol);
    tailcall();
    pushfile(path.c_str(), std::move(content));
}

// ---- FOR ----

namespace {

// Records the tokens up to the closing bracket, with the line of the do-file that each stands in.
void readbody(forloop& f) {
    inputsource* s = running();
    int depth = 1;
    while (depth > 0) {
        int number, index;
        newtoken(number, index);
        if (number == TOKOPEN) depth++;
        if (number == TOKCLOSE) depth--;
        if (number == TOKNUMBER || number == TOKSTRING) tempfree(index);
        int at = 0;
        if (s && s->kind == sourcekind::file) at = s->in.number;
        if (const forloop* outer = runningloop();
            outer && outer->body.next > 0 && outer->body.next <= outer->lines.size())
            at = outer->lines[outer->body.next - 1];
        f.lines.resize(f.body.tokens.size(), at);
    }
    tokenrecord& last = f.body.tokens.back();
    last = {TOKEND, 0, -1, 0};
}

// While the body is being read, the text of the whole statement is kept together.
struct bodyreading {
    const openpart body{"the body of a FOR"};
    bodyreading() { line.keepline = true; }
    ~bodyreading() {
        line.keepline = false;
        scanner.record = nullptr;
    }
};

std::unique_ptr<forloop> forbody() {
    const bodyreading reading;
    int number, index;
    newtoken(number, index);
    if (number != TOKOPEN) tarnerror(statementform(TOKFOR), "FOR-body does not begin with '{'");
    auto loop = std::make_unique<forloop>();
    scanner.record = &loop->body;
    const size_t start = line.cursor;
    readbody(*loop);
    // How a name is read depends on CASESW: where the body names it, each pass reads the text anew.
    const int casesw = symtablookup("CASESW");
    for (const tokenrecord& t : loop->body.tokens)
        if (t.number == TOKNAME && t.index == casesw && !scanner.stream)
            loop->text = line.text.substr(start, scanner.start - start) + '\r';
    return loop;
}

int forvalues() {
    const int operand = polpop();
    int temp = 0;
    matrixval(operand, temp);
    if (!temp) return operand;
    tempfree(operand);
    return temp;
}

} // namespace

void forop() {
    if (parser.poltop != 1) tarnsyntax(statementform(TOKFOR), 22, "incorrect FOR statement");
    std::unique_ptr<forloop> loop = forbody();
    loop->values = forvalues();
    loop->var = polpop();
    const int type = sym(loop->var).type;
    if (type != UNKNOWN && type != SCALAR) badvariable(loop->var);
    loop->limit = harraycount(matrixof(loop->values));
    if (loop->limit == 0) return tempfree(loop->values);
    loop->name = sym(loop->var).name;
    sym(loop->var).type = SCALAR;
    inputsource& s = pushsource(sourcekind::loop);
    s.loop = std::move(loop);
    setloopvariable(*s.loop);
    beginpass(*s.loop);
}
