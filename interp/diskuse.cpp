// USE: the objects of a save file come back.
#include "interp/diskuse.h"

#include "interp/assign.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/disknames.h"
#include "interp/dofiles.h"
#include "values/saveblock.h"
#include "values/stringarray.h"

#include <cstring>
#include <filesystem>
#include <vector>

namespace {

// One run of USE.
struct usestate {
    savereader in;
    bool over;          // names in use are overwritten
    bool asked = false; // whether to do so
    bool quiet;
    bool plots = false;            // a plot object came or went
    int told = 0;                  // names in the list so far
    size_t column = 7;             // where the list of names stands: behind "Using: "
    std::vector<int> changed = {}; // scalars and strings read
    std::string path = {};         // of the file
    size_t size = 0;               // its bytes
};

// An object read, until an entry has it.
struct heldvalue {
    const savekind* kind;
    void* value;
    ~heldvalue() {
        if (value) kind->discard(value);
    }
};

bool isplottype(int type) { return type >= WINDOWTYPE && type <= TITLETYPE; }

// In a quiet run the log alone tells, and the run ends; otherwise it is an error.
bool damaged(const usestate& u, const char* name, const char* what) {
    logout("USE: %s is damaged: %s\n", name, what);
    if (u.quiet) return false;
    tarnprint("\n");
    const furtherline more = further("in %s, before byte %zu%s", u.path.c_str(), u.size - bytesleft(u.in) + 1,
                                     u.told ? "; the objects named above have been read"
                                     : strcmp(name, "the file") == 0 ? ": is it a save file?"
                                                                     : "");
    if (u.in.verbatim) tarnerror(more, "%s", what);
    tarnerror(more, "USE: %s is damaged: %s", name, what);
}

void tellname(usestate& u, const std::string& name) {
    if (u.quiet) return;
    if (u.told++ > 0) tarnprint(","), u.column++;
    if (u.column + name.size() + 1 > 78) tarnprint("\n"), u.column = 0;
    tarnprint("%s", name.c_str());
    u.column += name.size();
}

bool overwrite(usestate& u) {
    if (u.over || u.asked) return u.over;
    u.asked = true;
    static const char* const choices[] = {"rename", "overwrite"}; // the keeping answer first
    u.over = console.question("diskuse", "an object with an existing name is being used.", choices, 2) == 1;
    return u.over;
}

bool isword(const symbol& s) { return s.type < 0 || s.type == CONSTANT || s.type == OPERATOR; }

bool ownsplainvalue(const symbol& s) {
    return s.type == SCALAR || s.type == STRINGTYPE || s.type == MATRIX || s.type == STRINGMATRIX;
}

// The old object goes; its entry stays where that is possible, since others may hold its index.
int vacate(usestate& u, int idx, const std::string& name) {
    symbol& s = sym(idx);
    u.plots |= isplottype(s.type);
    if (!ownsplainvalue(s)) {
        symtabdelete(idx);
        return symtabenter(name.c_str());
    }
    if (symtab.kind[s.type].release) symtab.kind[s.type].release(s);
    s.type = UNKNOWN;
    s.val.rval = UNDEFINEDMARK;
    return idx;
}

/* The entry for an object called name, of type UNKNOWN; name may get a new end. 0: it must be left out, as
 * the system needs the entry as it is. ready is called before anything is given up for the object, and may
 * refuse by an error. */
template <class Ready> int entryfor(usestate& u, std::string& name, int type, Ready ready) {
    for (;; name = nextname(name)) {
        const int idx = symtabenter(name.c_str());
        const symbol& s = sym(idx);
        if (s.type == UNKNOWN) return idx;
        if (isword(s)) {
            tarnwarn("USE: %s is a word of the language, the object becomes %s", s.name,
                     nextname(name).c_str());
        } else if (overwrite(u)) {
            if (symtabprotected(idx) && s.type != type) {
                tarnwarn("USE: the system's own %s stays as it is", s.name);
                return 0;
            }
            ready();
            return vacate(u, idx, name);
        }
    }
}

void installvalue(usestate& u, heldvalue& held, int idx) {
    u.plots |= isplottype(held.kind->type);
    void* const value = held.value;
    held.value = nullptr;
    held.kind->install(idx, value);
    if (sym(idx).type == SCALAR || sym(idx).type == STRINGTYPE) u.changed.push_back(idx);
}

// ---- definitions: the parser makes them anew from their text ----

void rundefinition(const std::string& text, const std::string& name, int type) {
    try {
        upper.runstatement(text.c_str());
    } catch (const recoveryjump&) {
        tarnwarn("USE: the definition of %s in the save file is damaged", name.c_str());
        throw;
    }
    const int idx = symtablookup(name.c_str());
    if (idx < 0 || sym(idx).type != type)
        tarnerror("USE: %s is damaged: its text defines nothing", name.c_str());
}

// A definition that cannot be read must not cost the object whose name it would have taken.
void trydefinition(const std::string& text, const std::string& name, int type) {
    const std::string trial = trialname(name);
    rundefinition(definitionrenamed(text, name, trial), trial, type);
    const int idx = symtablookup(trial.c_str());
    symtabdelete(idx);
    symtabmarkdeleted(idx);
}

bool usedefinition(usestate& u, int type, const std::string& savedname) {
    std::string text, name = savedname;
    gettext(u.in, text);
    if (u.in.fault) return damaged(u, savedname.c_str(), u.in.fault);
    if (!isdefinition(text, type, savedname))
        return damaged(u, savedname.c_str(), "its definition is not one");
    if (!entryfor(u, name, type, [&] { trydefinition(text, savedname, type); })) return true;
    tellname(u, name);
    rundefinition(name == savedname ? text : definitionrenamed(text, savedname, name), name, type);
    return true;
}

// ---- the loop over a file ----

bool usevalue(usestate& u, const savekind* kind, std::string name) {
    heldvalue held{kind, kind->read(u.in)};
    if (u.in.fault) return damaged(u, name.c_str(), u.in.fault);
    if (!held.value) return true;        // a null matrix: there is nothing to make
    if (name == "TARNPATH") return true; // always the directory of the program that runs
    const int idx = entryfor(u, name, kind->type, [] {});
    if (!idx) return true;
    tellname(u, name);
    installvalue(u, held, idx);
    return true;
}

bool useobject(usestate& u) {
    const int type = getshort(u.in);
    std::string name;
    gettext(u.in, name);
    if (u.in.fault)
        return damaged(u, name.empty() ? "the file" : name.c_str(), "it ends inside the head of an object");
    if (!isobjectname(name, type)) return damaged(u, "the file", "what should be a name is none");
    if (type == USERFUNCTION || type == INITIALVALUE) return usedefinition(u, type, name);
    const savekind* kind = savekindof(type);
    return kind ? usevalue(u, kind, name) : damaged(u, name.c_str(), "its type is unknown");
}

bool readsavefile(const std::string& path, std::string& bytes) {
    std::error_code fault;
    return !std::filesystem::is_character_file(path, fault) && readwhole(path.c_str(), bytes);
}

// Sets what a statement under way must not notice of a USE inside it, and sets it back.
struct quietuse {
    const clausestate clauses = clause;
    const bool quiet = report.quiet;
    void (*const redraw)() = upper.redraw;
    quietuse() {
        report.quiet = true;
        upper.redraw = [] {};
    }
    ~quietuse() {
        clause = clauses;
        report.quiet = quiet;
        upper.redraw = redraw;
    }
    quietuse(const quietuse&) = delete;
    quietuse& operator=(const quietuse&) = delete;
};

} // namespace

void usequietly(const char* file) {
    const quietuse quiet;
    const int name = symtabtext(0, 0, file);
    clause.insym = int16_t(name);
    try {
        if (!diskuse(TOKUSEOVER, "", true)) diskuse(TOKUSEOVER, report.tarnpath.c_str(), true);
    } catch (const recoveryjump&) {} // a file that is no good counts as none
    tempfree(name);
}

bool diskuse(int mode, const char* directory, bool quiet) {
    const std::string path = clause.insym ? diskpath(clause.insym, directory) : "";
    if (path.empty()) tarnerror(further("as in USE \"FILE\""), "USE: file name was not specified");
    std::string bytes;
    if (!readsavefile(path, bytes)) {
        if (quiet) return false;
        tarnerror(further("%s: %s", path.c_str(), notreadable(path).text.c_str()),
                  "diskuse: file cannot be opened.\n");
    }
    usestate u{savereaderon(bytes), mode == TOKUSEOVER, false, quiet};
    u.path = path;
    u.size = bytes.size();
    if (!quiet) tarnprint("Using: ");
    while (bytesleft(u.in) > 0)
        if (!useobject(u)) return false;
    if (!quiet) tarnprint("\n");
    for (const int idx : u.changed)
        if (!quiet) variablechanged(idx); // the start sees to it when all is read
    if (u.plots) upper.redraw();
    return true;
}
