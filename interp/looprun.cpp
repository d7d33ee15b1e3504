// Compiled loop bodies at work.
#include "funcs/operators.h"
#include "funcs/value.h"
#include "interp/base/fpfault.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/tokens.h"
#include "interp/loopimpl.h"
#include "interp/ranges.h"
#include "interp/submatrix.h"

namespace {

constexpr int POLLSTATEMENTS = 256; // between two looks at the keyboard

struct runner {
    forloop& f;
    loopcode& code;
    const loopinstr* pc;
    int untilpoll = POLLSTATEMENTS;
};

[[gnu::cold, gnu::noinline]] void faultsummary() {
    fpsummary(false);
    fpclear();
}

[[gnu::cold, gnu::noinline]] void poll(runner& r) {
    r.untilpoll = POLLSTATEMENTS;
    keypoll();
    if (parser.interrupted) throw recoveryjump{-1};
}

inline void statementend(runner& r) {
    if (fp.total != 0) [[unlikely]]
        faultsummary();
    if (--r.untilpoll == 0) [[unlikely]]
        poll(r);
}

inline bool within(double x, uint32_t limit) { return x >= 1 && x < double(limit) + 1; }

inline double element(const loopinstr& i) {
    const harray* m = static_cast<const harray*>(i.matrix->val.ptr);
    const double row = *i.a, col = *i.b;
    if (!within(row, m->rows)) [[unlikely]]
        badsubscript(int(i.matrix - symtab.at), "row", row);
    if (!within(col, m->cols)) [[unlikely]]
        badsubscript(int(i.matrix - symtab.at), "column", col);
    return at(m, uint32_t(row), uint32_t(col));
}

inline void store(const loopinstr& i) {
    const double row = *i.a, col = *i.b;
    if (i.matrix->type == MATRIX) [[likely]] {
        harray* m = static_cast<harray*>(i.matrix->val.ptr);
        if (within(row, m->rows) && within(col, m->cols)) [[likely]] {
            at(m, uint32_t(row), uint32_t(col)) = *i.d;
            return;
        }
    }
    assignelement(int(i.matrix - symtab.at), row, col, *i.d); // it grows, or it is an error
}

double userfunction(const loopinstr& i) {
    double args[POLSTACKSIZE / 8];
    for (int k = 0; k < i.n; k++) args[k] = *i.args[k];
    return callvalue(i.index, args, i.n);
}

double builtin(const loopinstr& i) {
    double args[8] = {};
    if (size_t(i.n) > std::size(args)) return userfunction(i); // value() takes any callee
    for (int k = 0; k < i.n; k++) args[k] = *i.args[k];
    return scalarbuiltin(i.index, args, i.n);
}

void beginrange(innerloop& l) {
    double x[3];
    for (int k = 0; k < l.operands; k++) x[k] = *l.operand[k];
    if (l.operands == 1) {
        l.range.reset(harrayraw(1, 1));
        cells(l.range.get())[1] = x[0];
    } else if (l.operands == 2) {
        l.range = rangematrix(x[0], x[1]);
    } else {
        l.range = l.counted ? countmatrix(x[0], x[1], x[2]) : stepmatrix(x[0], x[1], x[2]);
    }
}

const harray* valuesof(const innerloop& l) { return l.matrix ? matrixof(l.matrix) : l.range.get(); }

// The next pass of an inner loop; false when there is none.
inline bool turn(innerloop& l) {
    const harray* values = valuesof(l);
    if (++l.index > harraycount(values)) return false;
    sym(l.var).val.rval = cells(values)[l.index];
    return true;
}

bool beginloop(innerloop& l) {
    if (!l.matrix) beginrange(l);
    l.index = 0;
    return turn(l);
}

// The next pass of the loop itself.
inline bool turn(forloop& f) {
    const harray* values = matrixof(f.values);
    if (f.index >= harraycount(values)) return false;
    sym(f.var).val.rval = cells(values)[++f.index];
    return true;
}

// Runs until a statement without code, or the end of the loop; the token to be read next.
size_t run(runner& r) {
    for (;;) {
        const loopinstr& i = *r.pc++;
        switch (i.op) {
        case LOOPMOVE: *i.d = *i.a; break;
        case LOOPADD: *i.d = fpcheck(*i.a + *i.b); break;
        case LOOPSUB: *i.d = fpcheck(*i.a - *i.b); break;
        case LOOPMUL: *i.d = fpcheck(*i.a * *i.b); break;
        case LOOPDIV: *i.d = fpdiv(*i.a, *i.b); break;
        case LOOPPOW: *i.d = fppow(*i.a, *i.b); break;
        case LOOPLESS: *i.d = *i.a < *i.b; break;
        case LOOPLESSEQ: *i.d = *i.a <= *i.b; break;
        case LOOPGREATER: *i.d = *i.a > *i.b; break;
        case LOOPGREATEREQ: *i.d = *i.a >= *i.b; break;
        case LOOPEQUAL: *i.d = *i.a == *i.b; break;
        case LOOPAND: *i.d = *i.a != 0 && *i.b != 0; break;
        case LOOPOR: *i.d = *i.a != 0 || *i.b != 0; break;
        case LOOPELEMENT: *i.d = element(i); break;
        case LOOPSTORE: store(i); break;
        case LOOPDEFINE:
            i.matrix->val.rval = *i.a;
            i.matrix->type = SCALAR;
            break;
        case LOOPCALL1: *i.d = fpcheck(spchecked(i.f1(*i.a), i.n)); break;
        case LOOPCALL: *i.d = builtin(i); break;
        case LOOPUSER: *i.d = userfunction(i); break;
        case LOOPJUMP: r.pc = r.code.code.data() + i.target; break;
        case LOOPJUMPZERO:
            if (*i.a == 0) r.pc = r.code.code.data() + i.target;
            break;
        case LOOPEND: statementend(r); break;
        case LOOPFOR:
            if (!beginloop(r.code.inner[size_t(i.n)])) {
                statementend(r);
                r.pc = r.code.code.data() + i.target;
            }
            break;
        case LOOPNEXT:
            if (turn(r.code.inner[size_t(i.n)])) r.pc = r.code.code.data() + i.target;
            break;
        case LOOPPASS:
            if (!turn(r.f)) return r.f.body.tokens.size();
            r.f.body.cuts.clear();
            r.pc = r.code.code.data();
            break;
        case LOOPLEAVE: sourcereturn(); return r.f.body.tokens.size();
        case LOOPPARSE: return size_t(i.at);
        }
    }
}

// As while the right side of an assignment is parsed.
void aslike() {
    parser.opstack[1] = TOKEQUAL;
    parser.oplevel = 1;
    parser.token = TOKEND;
}

// Names that a pass has just defined may let more statements have code.
bool worthmaking(const forloop& f) {
    if (!f.code) return f.limit >= 3;
    const size_t since = f.index - f.code->madeat;
    return !f.code->complete && (since == 1 || since == 8) && f.code->madeat < 20;
}

void makecode(forloop& f) {
    f.code = loopcompile(f.body);
    f.code->madeat = f.index;
    f.code->guards.push_back({int16_t(f.var), SCALAR, f.name});
    f.code->guards.push_back({int16_t(f.values), MATRIX, sym(f.values).name});
}

// The instruction at which the statement to be read next begins; null when it has none. At the end of a pass
// that is the first statement of the next one.
const loopinstr* entryof(forloop& f) {
    tokenstream& s = f.body;
    while (s.next < s.tokens.size() && s.tokens[s.next].number == TOKEND) s.next++;
    if (s.next >= s.tokens.size()) {
        if (!nextpass()) return nullptr;
        if (worthmaking(f)) makecode(f);
    }
    if (!f.code || !f.code->covers) return nullptr;
    const int32_t entry = f.code->entry[s.next];
    if (entry < 0 || f.code->code[size_t(entry)].op == LOOPPARSE) return nullptr;
    return &f.code->code[size_t(entry)];
}

} // namespace

void loopadvance() {
    forloop* f = scanner.stream ? runningloop() : nullptr;
    if (!f || scanner.stream != &f->body || parser.debugsw) return;
    const loopinstr* pc = entryof(*f);
    if (!pc) return;
    if (!loopholds(*f->code)) {
        makecode(*f);
        if (!(pc = entryof(*f)) || !loopholds(*f->code)) return;
    }
    aslike();
    runner r{*f, *f->code, pc};
    try {
        scanseek(run(r));
    } catch (const recoveryjump&) {
        f->body.next = size_t(r.pc[-1].at) + 1; // where the error is told to be
        throw;
    }
    parserreset();
}
