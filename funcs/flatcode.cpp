#include "funcs/flatcode.h"

#include "funcs/flatimpl.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "special/fault.h"
#include "values/harray.h"

#include <algorithm>

struct flatprogram {
    flatrequest request;
    flatunit unit;
    bool fast = false;
    uint32_t refusedmade = 0; // trinodes.made when it could not be compiled
    int waits = 0;            // runs until it is tried again
    flatroutine held;         // the entry as flatheldrun runs it, and its frame
    std::vector<double> heldframe;
    bool heldstale = true;       // the unit was built anew since
    std::vector<flatlane> lanes; // the frame of flatlanesrun
};

namespace {

constexpr size_t STACKDOUBLES = size_t(1) << 15;
constexpr int FIRSTWAIT = 16, LONGESTWAIT = 4096;

// The code of one function, as value() uses it.
struct flatslot {
    std::unique_ptr<flatunit> unit;
    uint32_t matrixargs = 0;
    uint32_t refusedmade = 0;
    int uses = 0;            // of the present definition
    int wait = 0, waits = 0; // evaluations until a refused function is tried again
    int16_t index = 0;       // of the definition that was tried
};
std::unique_ptr<flatslot> slots[SYMTABSIZE];

// What may differ between two runs of one unit. FLATSTALE: compile again; FLATNOTNOW: an operand has no
// value.
enum readiness { FLATREADY, FLATSTALE, FLATNOTNOW };

bool definitionsstand(const flatunit& unit) {
    if (unit.sweeps != trinodes.sweeps) return false; // node numbers may have another meaning
    if (unit.odedependent && unit.odeactive != eval.odeactive) return false;
    for (const flatguard& g : unit.guards)
        if (sym(g.symbol).type != g.type || sym(g.symbol).index != g.index) return false;
    return true;
}

readiness refresh(flatunit& unit) {
    if (!definitionsstand(unit)) return FLATSTALE;
    for (const flatglobal& g : unit.globals) {
        const symbol& s = sym(g.symbol);
        if (!isscalartype(s.type)) return FLATSTALE;
        if (s.val.rval == UNDEFINEDMARK) return FLATNOTNOW;
        unit.routines[g.routine].image[g.slot] = s.val.rval;
    }
    for (flatmatrix& m : unit.matrices) {
        if (m.symbol < 0) continue; // an argument's
        if (sym(m.symbol).type != MATRIX) return FLATSTALE;
        m.m = matrixof(m.symbol);
    }
    return FLATREADY;
}

// A run whose words are held back: any of them gives it up.
template <class Run> flatresult quietly(Run&& run) {
    struct quietscope {
        quietscope() {
            report.quiet = true;
            report.held = false;
        }
        ~quietscope() { report.quiet = false; }
    } scope;
    flatresult result;
    try {
        result = run();
    } catch (const recoveryjump& jump) {
        flat.calls.clear();
        if (jump.value != -1) throw;
        result = FLATGIVENUP;
    }
    if (result == FLATDONE && !report.held && spfaults.count == 0) return FLATDONE;
    spfaultclear();
    report.held = false;
    return FLATGIVENUP;
}

// The same; what the run stored is then taken back.
template <class Run> flatresult quietrun(flatunit& unit, Run&& run) {
    for (size_t k = 0; k < unit.stored.size(); k++) unit.saved[k] = sym(unit.stored[k]).val.rval;
    const flatresult result = quietly(run);
    if (result != FLATDONE)
        for (size_t k = 0; k < unit.stored.size(); k++) sym(unit.stored[k]).val.rval = unit.saved[k];
    return result;
}

bool cellssuffice(const flatroutine& entry) {
    return parser.poltop + entry.polcells < POLSTACKSIZE &&
           parser.scalartop + entry.scalarcells <= SCALARSTACKSIZE + 1;
}

double* entryframe(const flatroutine& entry) {
    if (flat.stack.empty()) flat.stack.resize(STACKDOUBLES);
    if (size_t(entry.nregs) > flat.stack.size()) return nullptr;
    double* frame = flat.stack.data();
    std::copy(entry.image.begin(), entry.image.end(), frame);
    return frame;
}

// The entry on a frame that holds its arguments.
flatresult runentry(flatunit& unit, double* frame) {
    const flatcells cells{parser.poltop, parser.scalartop};
    return quietrun(
        unit, [&] { return flatexecute(unit, unit.routines[0], 0, frame, cells) ? FLATDONE : FLATGIVENUP; });
}

// ---- one function, called by value()

uint32_t matrixarguments(int p, int nargs) {
    uint32_t mask = 0;
    for (int k = 1; k <= nargs; k++)
        if (parser.polstack[p + k] > 0 && sym(parser.polstack[p + k]).type == MATRIX) mask |= 1u << (k - 1);
    return mask;
}

bool loops(int f) {
    bool found = false;
    treewalk(funcbody(f), [&](int at) {
        const int callee = tri(at).op == TREECALL ? tri(at).right : 0;
        found = issymbolref(callee) && sym(callee).type <= -500 && sym(callee).type >= -504;
        return !found;
    });
    return found;
}

/* A function is compiled when it is called a second time, since much is evaluated just once; at once when it
 * sums, integrates or seeks a root. One that was refused is tried again when something has been defined, and
 * now and then, since names may have become what they were not. */
bool worthtrying(flatslot& s, int f, bool atonce) {
    if (s.index != sym(f).index) {
        s = flatslot{};
        s.index = sym(f).index;
    }
    if (s.wait > 0) return trinodes.made != s.refusedmade || --s.waits <= 0;
    return atonce || ++s.uses > 1 || loops(f);
}

flatunit* compiled(int f, int nargs, uint32_t matrixargs, bool atonce) {
    if (!slots[f]) slots[f] = std::make_unique<flatslot>();
    flatslot& s = *slots[f];
    if (s.unit && s.matrixargs == matrixargs && s.index == sym(f).index) return s.unit.get();
    if (!worthtrying(s, f, atonce)) return nullptr;
    auto unit = std::make_unique<flatunit>();
    if (flatbuild({{f}, nargs, matrixargs, {}}, *unit)) {
        s.unit = std::move(unit);
        s.matrixargs = matrixargs;
        return s.unit.get();
    }
    s.unit.reset();
    s.refusedmade = trinodes.made;
    s.wait = s.waits = std::clamp(2 * s.wait, FIRSTWAIT, LONGESTWAIT);
    return nullptr;
}

// Code that is ready to run, compiled anew if need be; null: walk.
flatunit* readyunit(int f, int nargs, uint32_t matrixargs, bool atonce) {
    for (bool again : {false, true}) {
        flatunit* unit = compiled(f, nargs, matrixargs, atonce || again);
        if (!unit) return nullptr;
        const readiness state = refresh(*unit);
        if (state == FLATREADY) return unit;
        if (state == FLATNOTNOW) return nullptr;
        slots[f]->unit.reset();
    }
    return nullptr;
}

// Arguments from polstack. A name that the run itself would set cannot stand for its value.
bool takearguments(flatunit& unit, int p, int nargs, double* frame) {
    double* to = frame + unit.routines[0].image.size();
    for (int k = 1; k <= nargs; k++) {
        const int entry = parser.polstack[p + k];
        if (entry < 0) {
            *to++ = parser.scalar[-entry];
            continue;
        }
        const symbol& s = sym(entry);
        if (s.type == MATRIX) {
            for (flatmatrix& m : unit.matrices)
                if (m.symbol == -k) m.m = static_cast<const harray*>(s.val.ptr);
            continue;
        }
        if (!isscalartype(s.type) || s.val.rval == UNDEFINEDMARK || s.type == USERFUNCTION) return false;
        if (std::find(unit.dummies.begin(), unit.dummies.end(), entry) != unit.dummies.end()) return false;
        *to++ = s.val.rval;
    }
    return true;
}

} // namespace

flatoutcome flatvalue(int p, int f, int nargs, double& result) {
    if (nargs > MOSTFLATARGS) return FLATNOCODE;
    const uint32_t matrixargs = matrixarguments(p, nargs);
    flatunit* unit = readyunit(f, nargs, matrixargs, false);
    if (!unit || !cellssuffice(unit->routines[0])) return FLATNOCODE;
    double* frame = entryframe(unit->routines[0]);
    if (!frame || !takearguments(*unit, p, nargs, frame)) return FLATNOCODE;
    if (runentry(*unit, frame) != FLATDONE) return FLATREPEAT;
    result = frame[unit->outputs[0]];
    return FLATVALUE;
}

// ---- rows

namespace {

struct rowset {
    const double* const* in;
    const size_t* instride;
    double* const* out;
    const size_t* outstride;
};

// Room for a block, and which registers depend on the inputs that change from row to row.
void prepareblocks(flatunit& unit, const size_t* instride) {
    const flatroutine& entry = unit.routines[0];
    const size_t size = size_t(entry.nregs) * FLATBLOCK;
    if (flat.block.size() < size) flat.block.resize(size);
    std::vector<uint8_t> args(size_t(entry.nargs));
    for (size_t k = 0; k < args.size(); k++) args[k] = instride[k] != 0;
    if (args == unit.varyargs && !unit.vary.empty()) return;
    unit.varyargs = args;
    unit.vary.assign(size_t(entry.nregs), 0);
    std::copy(args.begin(), args.end(), unit.vary.begin() + long(entry.image.size()));
    flatvarying(entry, 0, int(entry.code.size()), unit.vary);
    unit.varying = int(std::count(unit.vary.begin(), unit.vary.end(), 1));
}

// Rows of a block that keep it in the cache.
int blockrows(const flatunit& unit) {
    constexpr int cachedoubles = 8192;
    return std::clamp(cachedoubles / std::max(unit.varying, 1) / 16 * 16, 32, FLATBLOCK);
}

// Rows first..first+n-1 at once.
flatresult runblock(flatunit& unit, const rowset& rows, size_t first, int n, double* frame) {
    const flatroutine& entry = unit.routines[0];
    const size_t image = entry.image.size();
    for (size_t k = 0; k < size_t(entry.nargs); k++) {
        const double* x = rows.in[k] + first * rows.instride[k];
        if (!unit.vary[image + k]) {
            frame[image + k] = *x;
            continue;
        }
        double* to = flat.block.data() + (image + k) * FLATBLOCK;
        const size_t stride = rows.instride[k];
        if (stride == 1)
            std::copy_n(x, n, to);
        else
            for (int i = 0; i < n; i++) to[i] = x[size_t(i) * stride];
    }
    uint16_t order[FLATBLOCK];
    const flatresult result = quietrun(unit, [&] {
        return flatexecuteblock(unit, entry, 0, int(entry.code.size()) - 1, unit.vary.data(), frame,
                                flat.block.data(), order, n);
    });
    if (result != FLATDONE) return result;
    for (size_t k = 0; k < unit.outputs.size(); k++) {
        const size_t r = size_t(unit.outputs[k]);
        const double* from = flat.block.data() + r * FLATBLOCK;
        double* to = rows.out[k] + first * rows.outstride[k];
        if (unit.vary[r] && unit.straight && rows.outstride[k] == 1)
            std::copy_n(from, n, to);
        else
            for (int i = 0; i < n; i++) to[order[i] * rows.outstride[k]] = unit.vary[r] ? from[i] : frame[r];
    }
    return FLATDONE;
}

// One row by the scalar runner.
flatresult runrow(flatunit& unit, const rowset& rows, size_t row, double* frame) {
    const flatroutine& entry = unit.routines[0];
    double* arg = frame + entry.image.size();
    for (size_t k = 0; k < size_t(entry.nargs); k++) arg[k] = rows.in[k][row * rows.instride[k]];
    const flatresult result = runentry(unit, frame);
    if (result != FLATDONE) return result;
    for (size_t k = 0; k < unit.outputs.size(); k++)
        rows.out[k][row * rows.outstride[k]] = frame[unit.outputs[k]];
    return FLATDONE;
}

/* All rows, in order: by blocks where that goes, else one at a time; walk(row, flatcalls) serves those that
 * must be walked. A walk may change what the code was made from, so the unit is asked for again behind it. */
template <class Ready, class Walk> void runrows(size_t n, const rowset& rows, Ready&& ready, Walk&& walk) {
    flatunit* unit = nullptr;
    double* frame = nullptr;
    for (size_t row = 0, blockend = 0; row < n;) {
        if (!unit) {
            unit = ready();
            frame = unit && cellssuffice(unit->routines[0]) ? entryframe(unit->routines[0]) : nullptr;
            if (frame && unit->blocks) prepareblocks(*unit, rows.instride);
        }
        if (!frame) {
            walk(row++, true);
            unit = nullptr;
            continue;
        }
        if (unit->blocks && row >= blockend) {
            const size_t count = std::min(n - row, size_t(blockrows(*unit)));
            blockend = row + count; // its rows are not tried together again
            if (runblock(*unit, rows, row, int(count), frame) == FLATDONE) {
                row = blockend;
                continue;
            }
        }
        if (runrow(*unit, rows, row, frame) != FLATDONE) {
            walk(row, false);
            unit = nullptr;
        }
        row++;
    }
}

struct walkscope {
    const bool before = eval.flat;
    explicit walkscope(bool flatcalls) { eval.flat = eval.flat && flatcalls; }
    ~walkscope() { eval.flat = before; }
};

} // namespace

void flatrows(int f, size_t nrows, size_t ncols, const double* x, double* y, size_t ystride) {
    std::vector<const double*> in(ncols);
    const std::vector<size_t> instride(ncols, ncols);
    for (size_t k = 0; k < ncols; k++) in[k] = x + k;
    const auto ready = [&]() -> flatunit* {
        const bool usable = eval.flat && nrows > 1 && sym(f).type == USERFUNCTION;
        return usable ? readyunit(f, int(ncols), 0, true) : nullptr;
    };
    runrows(nrows, {in.data(), instride.data(), &y, &ystride}, ready, [&](size_t row, bool flatcalls) {
        const walkscope scope(flatcalls);
        y[row * ystride] = callvalue(f, x + row * ncols, int(ncols));
    });
}

// ---- programs of several functions

namespace {

flatunit* readyprogram(flatprogram& program) {
    if (!eval.flat) return nullptr;
    for (int tries = 0; tries < 2; tries++) {
        if (program.fast) {
            const readiness state = refresh(program.unit);
            if (state == FLATREADY) return &program.unit;
            if (state == FLATNOTNOW) return nullptr;
        } else if (program.refusedmade == trinodes.made && --program.waits > 0) {
            return nullptr;
        }
        const flatrequest& r = program.request;
        program.heldstale = true;
        program.fast = flatbuild({r.functions, r.nargs, 0, r.symbols}, program.unit);
        if (program.fast) continue;
        program.refusedmade = trinodes.made;
        program.waits = LONGESTWAIT;
        return nullptr;
    }
    return program.fast && refresh(program.unit) == FLATREADY ? &program.unit : nullptr;
}

void walkpoint(const flatrequest& request, const double* in, double* out, bool flatcalls) {
    const walkscope scope(flatcalls);
    for (size_t k = 0; k < request.symbols.size(); k++) {
        symbol& s = sym(request.symbols[k]);
        if (s.type == UNKNOWN) s.type = SCALAR;
        s.val.rval = in[size_t(request.nargs) + k];
    }
    for (size_t k = 0; k < request.functions.size(); k++)
        out[k] = callvalue(request.functions[k], in, request.nargs);
}

} // namespace

void flatdelete::operator()(flatprogram* program) const { delete program; }

flatptr flatcompile(const flatrequest& request) {
    flatptr program(new flatprogram{request, {}, false, 0, 0, {}, {}, true, {}});
    readyprogram(*program);
    return program;
}

bool flatisfast(const flatprogram& program) { return program.fast; }

void flatrun(flatprogram& program, const double* in, double* out) {
    flatunit* unit = readyprogram(program);
    double* frame = unit && cellssuffice(unit->routines[0]) ? entryframe(unit->routines[0]) : nullptr;
    if (!frame) return walkpoint(program.request, in, out, true);
    std::copy_n(in, unit->routines[0].nargs, frame + unit->routines[0].image.size());
    if (runentry(*unit, frame) != FLATDONE) return walkpoint(program.request, in, out, false);
    for (size_t k = 0; k < unit->outputs.size(); k++) out[k] = frame[unit->outputs[k]];
}

bool flathold(flatprogram& program) {
    flatunit* unit = readyprogram(program);
    if (!unit || !unit->blocks) return false;
    const flatroutine& entry = unit->routines[0];
    if (program.heldstale) {
        program.held = entry;
        if (unit->straight)
            std::erase_if(program.held.code, [](const flatop& o) { return o.op == FLATSTORE; });
        for (flatop& o : program.held.code) // elsewhere the places of jumps must stay
            if (o.op == FLATSTORE) o = {FLATMOVE, o.a, o.a, 0};
        program.heldstale = false;
    }
    program.heldframe.resize(size_t(entry.nregs));
    std::copy(entry.image.begin(), entry.image.end(), program.heldframe.begin());
    return true;
}

double* flatheldin(flatprogram& program) { return program.heldframe.data() + program.held.image.size(); }

const double* flatheldout(const flatprogram& program, size_t k) {
    return program.heldframe.data() + program.unit.outputs[k];
}

bool flatheldrun(flatprogram& program) {
    return quietly([&] {
               return flatexecute(program.unit, program.held, 0, program.heldframe.data(), {0, 0})
                          ? FLATDONE
                          : FLATGIVENUP;
           }) == FLATDONE;
}

bool flatholdlanes(flatprogram& program) {
    flatunit* unit = readyprogram(program);
    if (!unit || !unit->blocks) return false;
    const flatroutine& entry = unit->routines[0];
    program.lanes.resize(size_t(entry.nregs));
    for (size_t k = 0; k < entry.image.size(); k++)
        std::fill_n(program.lanes[k].x, FLATLANES, entry.image[k]);
    return true;
}

double* flatlanesin(flatprogram& program) { return program.lanes[program.unit.routines[0].image.size()].x; }

const double* flatlanesout(const flatprogram& program, size_t k) {
    return program.lanes[size_t(program.unit.outputs[k])].x;
}

bool flatlanesrun(flatprogram& program, int used) {
    return quietly([&] { return flatexecutelanes(program.unit, program.lanes.data(), used); }) == FLATDONE;
}

void flatrunblock(flatprogram& program, size_t n, const double* const* in, const size_t* instride,
                  double* const* out, const size_t* outstride) {
    const size_t inputs = size_t(program.request.nargs) + program.request.symbols.size();
    std::vector<double> x(inputs), y(program.request.functions.size());
    runrows(
        n, {in, instride, out, outstride}, [&] { return readyprogram(program); },
        [&](size_t row, bool flatcalls) {
            for (size_t k = 0; k < inputs; k++) x[k] = in[k][row * instride[k]];
            walkpoint(program.request, x.data(), y.data(), flatcalls);
            for (size_t k = 0; k < y.size(); k++) out[k][row * outstride[k]] = y[k];
        });
}

bool flattryblock(flatprogram& program, size_t n, const double* const* in, const size_t* instride,
                  double* const* out, const size_t* outstride) {
    flatunit* unit = readyprogram(program);
    if (!unit || !unit->blocks || !cellssuffice(unit->routines[0])) return false;
    double* frame = entryframe(unit->routines[0]);
    if (!frame) return false;
    prepareblocks(*unit, instride);
    const rowset rows{in, instride, out, outstride};
    const size_t block = size_t(blockrows(*unit));
    for (size_t row = 0; row < n; row += block)
        if (runblock(*unit, rows, row, int(std::min(block, n - row)), frame) != FLATDONE) return false;
    return true;
}

void flatstart() {
    for (auto& s : slots) s.reset();
    flat.calls.clear();
    flat.calls.reserve(POLSTACKSIZE);
}
