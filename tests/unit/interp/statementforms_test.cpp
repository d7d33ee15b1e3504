// Every form of statement through the real scanner and parser, with a process table that writes down what it
// is asked to do, held against tests/data/statementforms.txt. Definitions go through the real tree builder.
#include "funcs/trinode.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/polish.h"
#include "interp/scanner.h"
#include "interp/session.h"
#include "interp/tokenfil.h"
#include "support/harness.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <vector>

namespace {

struct tracestate {
    std::string texts[SYMTABSIZE];             // of temporaries
    std::vector<std::string> reductions, done; // of the running statement
    std::map<std::string, std::string> clauses;
    std::string pairs; // of TO
    bool file, dir, inpart;
    std::map<int, std::pair<bool, bool>> parts; // of a SUBMTX: rows set, columns set
    processrow iftext, opens;
};
tracestate trace;

std::string spelling(int token) {
    static const std::map<int, const char*> marks = {
        {3, "^"},   {4, "*"},  {5, "/"},   {6, "+"},    {7, "-"},    {8, "="},   {9, "<"},        {10, "<="},
        {11, ">="}, {12, ">"}, {13, ","},  {14, "AND"}, {15, "OR"},  {23, "_"},  {43, "*'"},      {44, "/'"},
        {45, "#"},  {46, "&"}, {47, "&'"}, {50, "^^"},  {51, "^^'"}, {103, "?"}, {54, "LINETYPE"}};
    const auto mark = marks.find(token);
    return mark != marks.end() ? mark->second : tokenword(token);
}

std::string text(int idx) {
    const symbol& s = sym(idx);
    if (!istemporary(idx)) return s.name;
    if (s.type == TEMPSTRING) return '"' + std::string(static_cast<const char*>(s.val.ptr)) + '"';
    if (s.type != CONSTANT) return trace.texts[idx];
    char number[32];
    snprintf(number, sizeof number, "%g", s.val.rval);
    return number;
}

std::string joined(const std::vector<int>& operands, const char* between) {
    std::string list;
    for (const int idx : operands) list += (list.empty() ? "" : between) + text(idx);
    return list;
}

void note(const std::string& what, const std::vector<int>& operands = {}) {
    trace.reductions.push_back(what + (operands.empty() ? "" : "(" + joined(operands, ", ") + ")"));
}

std::vector<int> take(int n) {
    std::vector<int> operands(size_t(n), 0);
    for (int k = n; k > 0; k--) operands[size_t(k - 1)] = polpop();
    return operands;
}

std::vector<int> takeall() { return take(parser.poltop + 1); }

void give(const std::string& what, int type) {
    const int idx = symtabslot();
    sym(idx).type = int16_t(type);
    sym(idx).val.rval = 1;
    if (type == MATRIX) sym(idx).val.ptr = nullptr;
    if (type == TEMPSTRING) sym(idx).type = SCALAR;
    trace.texts[idx] = what;
    polpush(idx);
}

bool anymatrix(const std::vector<int>& operands) {
    for (const int idx : operands)
        if (sym(idx).type == MATRIX) return true;
    return false;
}

bool ownequals() {
    const int c = opcommand();
    return c == TOKDRAW || (c >= TOKTITLE && c <= TOKAXIS) || c == TOKFOR;
}

void assignment(const processop& op) {
    if (ownequals()) return note(spelling(op.token) + "(left to " + spelling(opcommand()) + ")");
    if (parser.poltop < 1) tarnsyntax(27, "missing arg for binary operator");
    const auto v = take(2);
    note("assign", v);
    if (istemporary(v[0]) && sym(v[0]).type != SUBMTX) tarnsyntax(43, "illegal assignment LHS");
    trace.done.push_back(text(v[0]) + " <- " + text(v[1]));
    parser.assigned = true;
}

void binary(const processop& op) {
    if (op.token == TOKEQUAL &&
        (ownequals() || (parser.token == TOKEND && parser.poltop == 1 && parser.oplevel == 0)))
        return assignment(op);
    if (parser.poltop < 1) tarnsyntax(27, "missing arg for binary operator");
    const auto v = take(2);
    note(spelling(op.token), v);
    const bool matrix = anymatrix(v) || op.token == TOKREPEAT || op.token == TOKREPEATBY;
    give("(" + joined(v, (" " + spelling(op.token) + " ").c_str()) + ")", matrix ? MATRIX : SCALAR);
}

void unary(const std::string& name, const std::string& before, const std::string& behind, bool matrix) {
    const auto v = take(1);
    note(name, v);
    give(before + text(v[0]) + behind, matrix || anymatrix(v) ? MATRIX : SCALAR);
}

bool assignmentfollows(int level) {
    int token, index;
    newtoken(token, index);
    pushtoken(token, index);
    return token == TOKUNDERSCORE || (token == TOKEQUAL && !parser.assigned && parser.oplevel == level);
}

int calltype(int callee, const std::vector<int>& arguments) {
    const symbol& s = sym(callee);
    if (s.type == USERFUNCTION || s.type == -5 || (s.type == UNKNOWN && s.name[0] == '.')) return SCALAR;
    if (s.type < -599) return MATRIX;
    if (s.type != MATRIX && s.type != UNKNOWN)
        tarnerror("%s is not a user-defined or builtin function", s.name);
    if (assignmentfollows(1)) return SUBMTX;
    if (s.type == UNKNOWN) tarnerror("%s is undefined, a matrix or function was expected here", s.name);
    if (anymatrix(arguments)) tarnerror("subscripts must be scalars");
    return SCALAR;
}

void call() {
    auto v = take(argnumber() + 1);
    const int callee = v[0];
    const int type = calltype(callee, {v.begin() + 1, v.end()});
    note("call", v);
    const std::string name = text(callee);
    v.erase(v.begin());
    give(name + "(" + joined(v, ", ") + ")", type == SUBMTX ? CONSTANT : type);
    if (type == SUBMTX) sym(parser.polstack[parser.poltop]).type = SUBMTX;
    parser.argcount[parser.argptr] = 1;
}

void selection(const processop& op) {
    const auto v = take(2);
    note(spelling(op.token), v);
    const int cur = parser.token, type = sym(v[0]).type;
    const bool row = op.token == TOKROW;
    const bool target = cur == TOKUNDERSCORE || cur == TOKROW || cur == TOKCOL || opcommand() == TOKDELETE ||
                        (cur == TOKEQUAL && !parser.assigned && parser.oplevel == 0);
    auto set = type == SUBMTX ? trace.parts[v[0]] : std::pair(false, false);
    if (type != UNKNOWN && type != MATRIX && type != SUBMTX)
        tarnerror("can't apply %s to this type", spelling(op.token).c_str());
    if (row ? set.first : set.second) tarnerror("a too complicated ROW/COL expression");
    (row ? set.first : set.second) = true;
    const std::string what = joined(v, (" " + spelling(op.token) + " ").c_str());
    give(target ? what : "(" + what + ")", target ? SCALAR : MATRIX);
    const int result = parser.polstack[parser.poltop];
    if (target) sym(result).type = SUBMTX;
    trace.parts[result] = set;
}

void range(const processop& op) {
    const auto v = take(op.token == TOKCOLON ? 2 : 3);
    note(op.token == TOKCOLON ? ":" : op.token == TOKCOUNT ? ":!" : "::", v);
    std::string what = "(" + text(v[0]) + ":" + text(v[1]);
    if (v.size() == 3) what += (op.token == TOKCOUNT ? "!" : ":") + text(v[2]);
    give(what + ")", MATRIX);
}

void derivative() {
    const auto v = take(2);
    std::string f = text(v[0]);
    const std::string x = text(v[1]);
    trace.reductions.push_back("'(" + f + ", " + x + ")");
    f = "." + f + "." + x;
    for (; parser.opstack[parser.oplevel] == TOKDERIVATIVE; parser.oplevel--) {
        trace.reductions.push_back("'(" + f + ", " + x + ")");
        f = "." + f + "." + x;
    }
    polpush(symtabenter(f.c_str()));
}

// A statement word: what it takes, with the clauses gathered before.
void statement(const processop& op, const std::vector<int>& operands) {
    const int c = op.token;
    if (c == TOKTYPE || c == TOKPRINT) {
        if (operands.empty() && !trace.dir) tarnsyntax(13, "illegal statement");
    } else if (c == TOKDELETE && trace.file && operands.size() > 1) {
        tarnerror("may not DELETE more one than file at a time");
    } else if (c >= TOKWINDOW && c <= TOKIMAGE && !operands.empty()) {
        tarnsyntax(0, "illegal statement");
    } else if (c == 107 && operands.size() != 2) {
        tarnsyntax(25, "Incorrect number of arguments");
    }
    if (c == TOKWINDOW && std::count(trace.pairs.begin(), trace.pairs.end(), '.') == 2)
        tarnerror("not enough TO clauses");
    note(spelling(c), operands);
    std::string what = spelling(c) + (operands.empty() ? "" : " ") + joined(operands, " ") + trace.pairs;
    what += trace.file ? " <FILE>" : trace.dir ? " <DIR>" : "";
    for (const auto& [name, value] : trace.clauses) what += " " + name + "=" + value;
    trace.done.push_back(what);
}

void to() {
    const int c = opcommand();
    if (c != TOKFIT && (c < TOKWINDOW || c > TOKIMAGE)) tarnerror("no TO clause with this operator");
    const auto v = take(2);
    note("TO", v);
    trace.pairs += c == TOKFIT ? " {" + joined(v, "~") + "}" : " " + joined(v, "..");
}

void weight() {
    const auto v = take(1);
    note("WEIGHT", v);
    trace.pairs.insert(trace.pairs.size() - 1, " w " + text(v[0]));
    if (parser.opstack[parser.oplevel] == TOKWITH) parser.oplevel--;
}

void oneclause(const processop& op) {
    const auto v = take(1);
    note(spelling(op.token), v);
    trace.clauses[spelling(op.token)] = text(v[0]);
}

void listclause(const processop& op) {
    const auto v = take(argnumber());
    note(spelling(op.token), v);
    trace.clauses[spelling(op.token)] = joined(v, "/");
}

void pairclause(const processop& op) {
    const auto v = take(2);
    note(spelling(op.token), v);
    trace.clauses[spelling(op.token)] = "(" + joined(v, ",") + ")";
}

void inclause(const processop& op) {
    if (opcommand() == TOKTYPE) tarnerror("the IN clause does not apply to this operator");
    oneclause(op);
}

void unitword(const processop& op) {
    const int top = parser.opstack[parser.oplevel];
    note(spelling(op.token) + ">" + spelling(top));
    trace.clauses[top == TOKSIZE || top == TOKPTSIZE ? "unitsize"
                  : top == TOKOFFSET                 ? "unitoffset"
                  : top == TOKLABELSIZE              ? "unitlabelsize"
                                                     : "unitat"] = spelling(op.token);
}

void constraints(const processop& op) {
    if (parser.oplevel > 0) return oneclause(op);
    const size_t start = line.cursor + 1;
    while (skimtoken() != TOKCLOSE) {}
    const auto v = take(1);
    note("CONSTRAINTS", v);
    std::string body = line.text.substr(start, scanner.start - start);
    body.erase(0, body.find_first_not_of(' '));
    body.erase(body.find_last_not_of(' ') + 1);
    trace.done.push_back(text(v[0]) + " <- conset {" + body + "}");
}

void forloop(const processop&) {
    if (parser.poltop != 1) tarnsyntax(22, "incorrect FOR statement");
    int depth = skimtoken() == TOKOPEN;
    const size_t start = line.cursor;
    while (depth > 0) {
        const int t = skimtoken();
        depth += (t == TOKOPEN) - (t == TOKCLOSE);
    }
    std::string body = line.text.substr(start, scanner.start - start);
    body.erase(body.find_last_not_of(" \r") + 1);
    const auto v = takeall();
    note("FOR", v);
    trace.done.push_back("FOR " + text(v[0]) + " over " + text(v[1]) + " do " + body);
}

void help() {
    int token, index;
    newtoken(token, index);
    note("?");
    trace.done.push_back("HELP " + (token == TOKEND ? std::string("top") : text(index)));
}

void selectionbymatrix() {
    const auto v = take(3);
    note("ELSE", v);
    parser.matrixiflevel--;
    give("(" + text(v[0]) + " ? " + text(v[1]) + " : " + text(v[2]) + ")", MATRIX);
}

void textualif(const processop& op) {
    note("IF", {op.ptop});
    const symbol& s = sym(op.ptop);
    if (s.type != MATRIX) trace.done.push_back(s.val.rval != 0 ? "(then)" : "(else)");
    trace.iftext.handler(op);
}

void perform(const processop& op) {
    switch (tokentables.pcase[op.token]) {
    case 0: tarnerror("unallowed process case");
    case 1: parser.argcount[parser.argptr]++; return note(",");
    case 2: note(spelling(op.token)); return trace.opens.handler(op);
    case 3: return binary(op);
    case 4: return call();
    case 5: return assignment(op);
    case 9: return unary("minus", "(-", ")", false);
    case 10: return unary("NOT", "(NOT ", ")", false);
    case 11:
    case 28:
    case 49: return pairclause(op);
    case 12: return derivative();
    case 13: return textualif(op);
    case 14: return note(op.token == TOKTHEN ? "THEN" : "marker");
    case 15: return selectionbymatrix();
    case 16:
    case 59: return statement(op, take(1));
    case 18: return selection(op);
    case 19: return range(op);
    case 20: {
        const auto v = take(argnumber());
        note("LIST", v);
        return give("LIST(" + joined(v, ", ") + ")", MATRIX);
    }
    case 21: {
        const auto v = take(2);
        note("ON", v);
        return give("(" + joined(v, " ON ") + ")", MATRIX);
    }
    case 22: return inclause(op);
    case 24:
    case 40:
    case 53:
    case 58: return listclause(op);
    case 31: return to();
    case 32: return weight();
    case 33: return constraints(op);
    case 34: (op.token == TOKFILE ? trace.file : trace.dir) = true; return note(spelling(op.token));
    case 36: return unary("transpose", "", "'", true);
    case 37:
    case 38: {
        if (parser.poltop < 1) tarnsyntax(27, "missing arg for binary operator");
        const auto v = take(2);
        note(spelling(op.token), v);
        return give("(" + joined(v, (" " + spelling(op.token) + " ").c_str()) + ")", MATRIX);
    }
    case 51: return unitword(op);
    case 61: return help();
    case 62: return forloop(op);
    case 23:
    case 27:
    case 45:
    case 46:
    case 47:
    case 48:
    case 50:
    case 54:
    case 56:
    case 57:
    case 63: return oneclause(op);
    default: return statement(op, takeall());
    }
}

void tracerows() {
    trace.iftext = processtable[13];
    trace.opens = processtable[2];
    for (int k = 0; k < int(std::size(processtable)); k++) processtable[k] = {k, perform};
}

void entersymbols() {
    const struct {
        int type;
        std::vector<const char*> names;
    } kinds[] = {{MATRIX, {"A", "B", "M", "L"}},
                 {USERFUNCTION, {"F", "G"}},
                 {SCALAR, {"K", "N", "P", "S", "T", "PI", "RED", "ZERO"}},
                 {CONSETTYPE, {"C"}},
                 {WINDOWTYPE, {"W", "W1", "W2"}}};
    for (const auto& kind : kinds)
        for (const char* name : kind.names) {
            symbol& s = sym(symtabenter(name));
            s.type = int16_t(kind.type);
            s.index = 0;
            s.val.ptr = nullptr;
            if (kind.type == SCALAR) s.val.rval = strcmp(name, "ZERO") != 0;
        }
}

// ---- definitions: the tree, every operator in brackets

std::string tree(int ref, int header) {
    if (isformalref(ref)) {
        int cell = tri(header).left;
        for (int k = ref - FORMALBASE; k > 1; k--) cell = tri(cell).left;
        return tree(tri(cell).right, header);
    }
    if (!isnoderef(ref)) {
        char number[32];
        if (sym(ref).type != CONSTANT) return sym(ref).name;
        snprintf(number, sizeof number, "%g", sym(ref).val.rval);
        return number;
    }
    const trinode& n = tri(ref);
    const auto part = [&](int r) { return tree(r, header); };
    switch (n.op) {
    case TREENOT: return "(NOT " + part(n.left) + ")";
    case TREEIDENTITY: return part(n.left);
    case TREENEGATE: return "(-" + part(n.left) + ")";
    case TREEIF:
        return "(" + part(n.left) + " ? " + part(tri(n.right).left) + " : " + part(tri(n.right).right) + ")";
    case TREECALL: {
        std::string list;
        for (int a = n.left; a; a = tri(a).left) list += (list.empty() ? "" : ", ") + part(tri(a).right);
        return part(n.right) + "(" + list + ")";
    }
    default: return "(" + part(n.left) + " " + spelling(n.op) + " " + part(n.right) + ")";
    }
}

std::string definitiontext(int idx) {
    const int header = sym(idx).index;
    std::string formals;
    for (int cell = tri(header).left; cell; cell = tri(cell).left)
        formals += (formals.empty() ? "" : ", ") + tree(tri(cell).right, header);
    return std::string(sym(idx).type == INITIALVALUE ? "INITIAL " : "FUNCTION ") + sym(idx).name + "(" +
           formals + ") = " + tree(tri(header).right, header);
}

// What was defined by the statement that has just run; "" if nothing was.
std::string defined() {
    for (int i = 1; i < SYMTABSIZE; i++)
        if ((sym(i).type == USERFUNCTION || sym(i).type == INITIALVALUE) && sym(i).index < 0)
            return definitiontext(i);
    return "";
}

// ---- the statements

std::string list(const std::vector<std::string>& items, const char* between) {
    std::string all;
    for (const auto& item : items) all += (all.empty() ? "" : between) + item;
    return all;
}

std::string errortext() {
    std::string& o = harness.output;
    const size_t syntax = o.find("##Syntax Error"), plain = o.find("##Error: ");
    std::string message = syntax != o.npos ? o.substr(syntax + 14) : o.substr(plain + 9);
    message.erase(message.find('\n'));
    const size_t colon = message.find("]: ");
    if (syntax != o.npos) message.erase(colon + 1, 1);
    return "error " + message;
}

struct outcome {
    std::string reductions, done;
};

// One statement of the text; false when there is none left.
bool runone(outcome& all) {
    trace.reductions.clear();
    trace.done.clear();
    trace.clauses.clear();
    trace.pairs.clear();
    trace.file = trace.dir = false;
    harness.output.clear();
    statementbegin();
    try {
        polish();
    } catch (const recoveryjump&) {
        trace.done.push_back(errortext());
        harnessrecover();
    } catch (const sessionend&) {
        if (trace.reductions.empty() && trace.done.empty()) return false;
        trace.done.push_back("error end of input inside a statement");
    }
    const std::string definition = defined();
    if (!definition.empty() && trace.done.empty()) trace.done.push_back(definition);
    const char* between = all.done.empty() ? "" : " | ";
    all.reductions += between + list(trace.reductions, " ");
    all.done += between + (trace.done.empty() ? std::string("nothing") : list(trace.done, ", "));
    return true;
}

outcome run(std::string statement) {
    harnessstart();
    entersymbols();
    tracerows();
    for (size_t at; (at = statement.find("\\n")) != statement.npos;) statement.replace(at, 2, "\n");
    harnessfeed(statement);
    outcome all;
    while (runone(all)) {}
    return all;
}

TEST(StatementForms, ReduceAsWritten) {
    std::ifstream forms(TESTDATADIR "/statementforms.txt");
    std::string statement, reductions, done;
    int count = 0;
    while (std::getline(forms, statement)) {
        if (statement.empty() || statement[0] == '#') continue;
        std::getline(forms, reductions);
        std::getline(forms, done);
        ASSERT_TRUE(reductions.starts_with("  R ") && done.starts_with("  D ")) << statement;
        const outcome o = run(statement);
        EXPECT_EQ(o.reductions, reductions.substr(4)) << statement;
        EXPECT_EQ(o.done, done.substr(4)) << statement;
        count++;
    }
    EXPECT_GT(count, 300);
}

} // namespace
