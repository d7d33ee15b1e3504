#include "interp/base/symtab.h"

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <tuple>

symtabstate symtab;
const double UNDEFINEDMARK = 1.7976931348623155e308;

namespace {

const char* const protectednames[] = {
    "DISASTERSW", "ECHODO",   "ERRFAC",  "FITNORM",  "DGRADSW",  "JACSW",    "LINEARSW",  "LSQRPT",
    "MANDSW",     "MAXITER",  "METHOD",  "MFORMAT",  "NFORMAT",  "ODERPT",   "PLOTDEV",   "SCREENCOLOR",
    "SYMDSW",     "TOLSOS",   "FILEDIR", "DISPLAY",  "CUTOFF",   "LINELEN",  "VIEWX0",    "VIEWX1",
    "VIEWY0",     "VIEWY1",   "PSLINEW", "OUTCOLOR", "INCOLOR",  "RESIDSW",  "DOFILEDIR", "EGAC",
    "EGAM",       "VGAC",     "VGAM",    "PSL",      "PSCL",     "LJ2L",     "XDEV",      "DPS",
    "RPS",        "NULLM",    "STATPSW", "NAMESW",   "DOSTEP",   "APPENDSW", "WARNSW",    "ODESTR",
    "ROUNDSW",    "FLATNESS", "MATHEX",  "CASESW",   "TARNPATH", "PSP",      "PSCP",      "LJ2P",
    "PSCPX",      "PSCLX"};
static_assert(std::size(protectednames) == 58);

void markfree(int idx) {
    if (idx < 2) return; // slot 1 is never given to a temporary, and 0 ends every probe sequence
    symtab.freebits[idx / 64] |= uint64_t(1) << (idx % 64);
    symtab.freewords |= uint64_t(1) << (idx / 64);
}

void marktaken(int idx) {
    uint64_t& word = symtab.freebits[idx / 64];
    word &= ~(uint64_t(1) << (idx % 64));
    if (word == 0) symtab.freewords &= ~(uint64_t(1) << (idx / 64));
}

void release(symbol& s) {
    if (s.type >= 0 && s.type <= WINDOW3D && symtab.kind[s.type].release) symtab.kind[s.type].release(s);
}

void freestring(symbol& s) {
    std::free(s.val.ptr);
    s.val.ptr = nullptr;
}

void makeunknown(symbol& s) {
    s.type = UNKNOWN;
    s.val.rval = UNDEFINEDMARK;
}

// Derivatives of a deleted function are worth nothing without it: the names in which only dots stand before
// its own. Derivatives with respect to it stay.
void clearderivatives(const char* name) {
    const size_t length = strlen(name);
    for (int i = 1; i < SYMTABSIZE; i++) {
        symbol& s = symtab.at[i];
        if (s.type != USERFUNCTION) continue;
        for (const char* base = s.name; *base == '.'; base++) {
            if (strncmp(base + 1, name, length) != 0 || base[1 + length] != '.') continue;
            s.index = 0;
            makeunknown(s);
            break;
        }
    }
}

void forgettree(symbol& s) {
    s.index = 0;
    makeunknown(s);
    parser.treegarbage = true;
}

// A value goes; the name stays when an expression refers to it.
void dropvalue(int idx) {
    release(symtab.at[idx]);
    makeunknown(symtab.at[idx]);
    if (!symtabused(idx)) symtabmarkdeleted(idx);
}

void removebykind(int idx) {
    const int type = symtab.at[idx].type;
    if (symtab.kind[type].remove) symtab.kind[type].remove(idx);
}

} // namespace

void symtabstart() {
    for (symbol& s : symtab.at) // what an earlier start has left
        if (s.name[0] && s.name[0] != '@') release(s);
    symtabkindrow kinds[std::size(symtab.kind)];
    memcpy(kinds, symtab.kind, sizeof kinds);
    symtab = symtabstate{};
    memcpy(symtab.kind, kinds, sizeof kinds);
    symtab.kind[STRINGTYPE].release = symtab.kind[TEMPSTRING].release = freestring;
    for (int i = 2; i < SYMTABSIZE; i++) markfree(i);
}

void symtabconstants() {
    const int mode = parser.funcmode;
    parser.funcmode = 1;
    const struct {
        int16_t symtabstate::*place;
        double value;
    } rows[] = {{&symtabstate::zero, 0},
                {&symtabstate::one, 1},
                {&symtabstate::minusone, -1},
                {&symtabstate::two, 2},
                {&symtabstate::c101, 1.01},
                {&symtabstate::c1em5, 1e-5},
                {&symtabstate::c099, 0.99},
                {&symtabstate::c2em5, 2e-5},
                {&symtabstate::c001, 0.01},
                {&symtabstate::c002, 0.02},
                {&symtabstate::degrad, 0.01745329252},  // with just these digits
                {&symtabstate::logten, 0.434294481903}, // with just these digits
                {&symtabstate::ln2, 0.6931471805599453},
                {&symtabstate::twosqrtpi, 1.1283791670955126},
                {&symtabstate::rsqrt2pi, 0.398942280401432},
                {&symtabstate::eight, 8},
                {&symtabstate::c300, 300}};
    for (const auto& row : rows) symtab.*row.place = int16_t(symtabconst(row.value));
    parser.funcmode = mode;
}

void symtabprotect() {
    int count = 0;
    for (const char* name : protectednames) {
        const int idx = symtablookup(name);
        if (idx > 0) symtab.protectedlist[++count] = int16_t(idx);
    }
    symtab.protectedlist[0] = int16_t(count);
}

bool symtabprotected(int idx) {
    for (int k = 1; k <= symtab.protectedlist[0]; k++)
        if (symtab.protectedlist[k] == idx) return true;
    return false;
}

int symtabprotectedname(const char* name) {
    for (int k = 1; k <= symtab.protectedlist[0]; k++)
        if (strcmp(symtab.at[symtab.protectedlist[k]].name, name) == 0) return symtab.protectedlist[k];
    return -1;
}

int symtabhash(const char* name) {
    uint32_t word = 0;
    for (int k = 0; name[k]; k++) word ^= uint32_t(static_cast<unsigned char>(name[k])) << (8 * (k % 4));
    return int(word % (SYMTABSIZE - 1)) + 1;
}

int symtablookup(const char* name) {
    const int h = symtabhash(name);
    for (int i = h; symtab.at[i].name[0]; i += h, i -= i >= SYMTABSIZE ? SYMTABSIZE : 0)
        if (strcmp(symtab.at[i].name, name) == 0) return i;
    return -1;
}

int symtabenter(const char* name) {
    const size_t length = strlen(name);
    if (length > MAXNAME)
        tarnerror(name[0] == '.' ? further("it is the name of a derivative: shorter names of functions and "
                                           "variables make shorter ones")
                                 : furtherline{},
                  "symtabenter: name %s too long.  %hd is the maximum length for names", name,
                  short(MAXNAME));
    const int h = symtabhash(name);
    int deleted = 0, i = h;
    for (; symtab.at[i].name[0]; i += h, i -= i >= SYMTABSIZE ? SYMTABSIZE : 0) {
        if (symtab.at[i].name[0] == '@') {
            if (!deleted) deleted = i;
        } else if (strcmp(symtab.at[i].name, name) == 0) {
            return i;
        }
    }
    if (deleted) i = deleted;
    if (i == 0)
        tarnerror(further("there is no room for %s", name), "symbol table full. delete unneeded names");
    symbol& s = symtab.at[i];
    memcpy(s.name, name, length + 1);
    makeunknown(s);
    marktaken(i);
    if (parser.debugsw) tarnprint("symtabentry: string arg=%s   symtab index returned=%hd\n", name, short(i));
    return i;
}

namespace {

// Letters changed, left out, added, or exchanged with their neighbour, to get from a to b.
int slips(const char* a, const char* b) {
    const int n = int(strlen(a)), m = int(strlen(b));
    int row[3][MAXNAME + 1]; // of the table of distances: this row and the two before it
    for (int j = 0; j <= m; j++) row[0][j] = j;
    for (int i = 1; i <= n; i++) {
        int* const now = row[i % 3];
        const int *before = row[(i + 2) % 3], *first = row[(i + 1) % 3];
        now[0] = i;
        for (int j = 1; j <= m; j++) {
            const int changed = before[j - 1] + (a[i - 1] != b[j - 1]);
            now[j] = std::min({before[j] + 1, now[j - 1] + 1, changed});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                now[j] = std::min(now[j], first[j - 2] + 1);
        }
    }
    return row[n % 3][m];
}

} // namespace

int symtabnearest(const char* name, bool (*wanted)(const symbol& s)) {
    const int length = int(strlen(name));
    if (length < 3 || length > MAXNAME) return 0;
    const int most = length < 6 ? 1 : 2; // more slips make another word
    int nearest = 0;
    std::tuple<int, int, std::string_view> best; // slips; letters in common at the start, negated; name
    for (int i = 1; i < SYMTABSIZE; i++) {
        const symbol& s = symtab.at[i];
        if (!isalpha(static_cast<unsigned char>(s.name[0])) || !wanted(s)) continue;
        if (s.name[1] == 0 || std::abs(int(strlen(s.name)) - length) > most) continue;
        const int common = int(std::mismatch(name, name + length, s.name).first - name);
        const int distance = slips(name, s.name);
        if (distance == 0 || distance > (common ? most : 1)) continue;
        const std::tuple now(distance, -common, std::string_view(s.name));
        if (nearest && best < now) continue;
        best = now;
        nearest = i;
    }
    return nearest;
}

int symtabslot() {
    if (symtab.freewords == 0) tarnerror("symbol table full.  exit TARN and restart");
    const int word = std::countr_zero(symtab.freewords);
    const int idx = word * 64 + std::countr_zero(symtab.freebits[word]);
    marktaken(idx);
    symbol& s = symtab.at[idx];
    s.name[0] = ' ';
    s.name[1] = 0;
    s.type = UNKNOWN;
    s.index = 0;
    return idx;
}

int symtabconst(double rval) {
    if (parser.funcmode == 0) {
        const int idx = symtabslot();
        symtab.at[idx].type = CONSTANT;
        symtab.at[idx].val.rval = rval;
        return idx;
    }
    // The name spells the eight bytes; zero bytes are written A and told by a mask, so that equal numbers
    // share.
    unsigned char bytes[8], mask = 0;
    memcpy(bytes, &rval, 8);
    char name[11] = "#";
    for (int k = 0; k < 8; k++) {
        if (bytes[k] == 0) mask |= static_cast<unsigned char>(1u << k);
        name[1 + k] = char(bytes[k] ? bytes[k] : 'A');
    }
    name[9] = char(mask);
    name[10] = 0;
    const int idx = symtabenter(name);
    if (symtab.at[idx].type == UNKNOWN) {
        symtab.at[idx].type = CONSTANT;
        symtab.at[idx].val.rval = rval;
    }
    return idx;
}

int symtabtemp(int free1, int free2, void* payload, int type, int index) {
    if (type == SUBMTX && symtab.nsubmtx >= 50) tarnerror("too many submatrices. use a simpler expression");
    if (free1) tempfree(free1);
    if (free2) tempfree(free2);
    const int idx = symtabslot();
    symbol& s = symtab.at[idx];
    switch (type) {
    case CONSTANT:
    case SCALAR: s.val.rval = *static_cast<const double*>(payload); break;
    case MATRIX:
    case STRINGMATRIX:
    case TEMPSTRING: s.val.ptr = payload; break;
    case SUBMTX: symtab.submtx[symtab.nsubmtx++] = int16_t(idx); break;
    default: symtabmarkdeleted(idx); tarnerror("only numeric, matrix, or string types permitted here");
    }
    s.type = int16_t(type);
    s.index = int16_t(index);
    return idx;
}

int symtabtempscalar(int free1, int free2, double value) {
    if (free1) tempfree(free1);
    if (free2) tempfree(free2);
    const int idx = symtabslot();
    symtab.at[idx].type = SCALAR;
    symtab.at[idx].val.rval = value;
    return idx;
}

void tempfree(int idx) {
    if (idx <= 0) return;
    symbol& s = symtab.at[idx];
    if (s.name[0] != ' ' || s.type == SUBMTX) return;
    if (s.type >= MATRIX) release(s); // the scalar types own nothing
    s.name[0] = '@';
    s.name[1] = 0;
    s.type = EMPTY;
    markfree(idx);
}

void symtabmarkdeleted(int idx) {
    symbol& s = symtab.at[idx];
    s.type = UNKNOWN;
    s.name[0] = '@';
    markfree(idx);
}

void symtabdelete(int idx) {
    symbol& s = symtab.at[idx];
    const std::string name = nametext(idx);
    if (s.type < 0) {
        tarnwarn("DELETE: builtin functions may not be deleted");
        return tarnwarn("%s is one", s.name);
    }
    if (istemporary(idx) && (s.type == SCALAR || s.type == MATRIX)) {
        tarnwarn("DELETE: deletion does not apply to expressions");
        return tarnwarn("names are deleted, and rows and columns of matrices: DELETE M ROW 2");
    }
    if (symtabprotected(idx)) return;
    switch (s.type) {
    case UNKNOWN: return tarnwarn("DELETE: %s does not exist", name.c_str());
    case CONSTANT: tarnerror(further("%s is one", name.c_str()), "constants may not be deleted");
    case SCALAR:
    case MATRIX:
    case STRINGMATRIX: return dropvalue(idx);
    case USERFUNCTION: clearderivatives(s.name); [[fallthrough]];
    case INITIALVALUE: return forgettree(s);
    case STRINGTYPE:
    case TEMPSTRING: release(s); return symtabmarkdeleted(idx);
    case SUBMTX: return removebykind(idx);
    case WINDOWTYPE:
    case CURVETYPE:
    case TITLETYPE:
    case CURVE3D: removebykind(idx); return symtabmarkdeleted(idx);
    case CONSETTYPE: release(s); return symtabmarkdeleted(idx);
    default: tarnerror(furtherline{describe(idx)}, "bad type in symbol table");
    }
}

void symtabdeleteall() {
    for (int i = 1; i < SYMTABSIZE; i++) {
        symbol& s = symtab.at[i];
        if (s.name[0] == 0 || s.name[0] == '@' || s.name[0] == ' ') continue;
        if (s.type > UNKNOWN && s.type != CONSTANT && s.type != OPERATOR) symtabdelete(i);
        if (s.type == UNKNOWN) symtabmarkdeleted(i);
    }
    upper.redraw();
}

bool symtabused(int idx) {
    bool used = false;
    for (int i = 1; i < SYMTABSIZE; i++) {
        const symbol& s = symtab.at[i];
        if (s.type != USERFUNCTION && s.type != INITIALVALUE && s.type != CONSETTYPE) continue;
        const auto uses = symtab.kind[s.type].uses;
        if (uses && uses(s, idx)) used = true;
    }
    return used;
}

void symtabsweep() {
    for (int i = 1; i < SYMTABSIZE; i++) {
        symbol& s = symtab.at[i];
        if (s.name[0] != ' ') continue;
        if (s.type == SUBMTX) parser.treegarbage = true;
        if (s.type >= MATRIX) release(s);
        s.name[0] = '@';
        s.name[1] = 0;
        s.type = EMPTY;
        markfree(i);
    }
    symtab.nsubmtx = 0;
}

void symtabprint(int idx) {
    if (idx < 1 || idx >= SYMTABSIZE) return logout("symtabprint: not a symtab[] idx: %hd\n", short(idx));
    static const char* const labels[] = {
        "EMPTY",  "UNKNOWN",    "CONST",      "OPERATOR", "SCALAR", "USER FUNCTION", "MATRIX", "INITIAL",
        "SUBMTX", "STRINGTYPE", "STRINGTYPE", "WINDOW",   "CURVE",  "TITLE",         "CONSET", "CURVE3D"};
    const symbol& s = symtab.at[idx];
    tarnprint("symtab[%d]: name=%s type=%d", idx, s.name, s.type);
    if (s.type < 0)
        tarnprint(" (BUILTIN FUNCTION)\n");
    else if (s.type == WINDOW3D)
        tarnprint(" (WINDOW3D)\n");
    else if (s.type > CURVE3D)
        tarnprint(" (OTHERTYPE)\n");
    else
        tarnprint(" (%s)\n", labels[s.type]);
    if (s.type >= USERFUNCTION)
        tarnprint("index=%d\n", s.index);
    else if (s.type > 0 && s.type != OPERATOR)
        tarnprint("value=%.17g\n", s.val.rval);
}

double symtabscalar(const char* name, double absent) {
    const int idx = symtablookup(name);
    if (idx < 0 || (sym(idx).type != SCALAR && sym(idx).type != CONSTANT)) return absent;
    return sym(idx).val.rval;
}

const char* symtabstring(const char* name, const char* absent) {
    const int idx = symtablookup(name);
    if (idx < 0 || sym(idx).type != STRINGTYPE || !sym(idx).val.ptr) return absent;
    return static_cast<const char*>(sym(idx).val.ptr);
}
