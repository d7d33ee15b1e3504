// SAVE: named objects to a file.
#include "interp/diskuse.h"

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/diskfiles.h"
#include "interp/disknames.h"
#include "values/saveblock.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// What the start-up files have defined: the colours, the machine's constants and the like.
struct predefined {
    int idx, type;
    double number;
    std::string text;
};
struct diskstate {
    std::vector<predefined> own;
};
diskstate disk;

bool isunchanged(int idx) {
    const auto found =
        std::find_if(disk.own.begin(), disk.own.end(), [&](const predefined& p) { return p.idx == idx; });
    if (found == disk.own.end() || sym(idx).type != found->type) return false;
    return found->type == SCALAR ? sym(idx).val.rval == found->number : stringval(idx) == found->text;
}

bool isnamed(const symbol& s) {
    return s.name[0] != 0 && s.name[0] != ' ' && s.name[0] != '@' && s.name[0] != '#';
}

// Kinds that are passed over without a word: constants, words, and what travels inside its window.
bool isquiet(int type) {
    return type == CONSTANT || type == OPERATOR || type == TEMPSTRING || type == CURVETYPE ||
           type == TITLETYPE || type == CURVE3D;
}

void saveobject(savewriter& out, int idx) {
    const symbol& s = sym(idx);
    if (s.type <= UNKNOWN || isquiet(s.type)) return;
    if (!isnamed(s)) return tarnwarn("not saving: an expression");
    const savekind* kind = savekindof(s.type);
    if (!kind) return tarnwarn("not saving: %s", s.name);
    if (!worthsaving(idx)) return;
    putshort(out, s.type);
    puttext(out, s.name);
    kind->write(out, idx);
}

void saveoperands(savewriter& out) {
    while (parser.poltop >= 0) {
        const int idx = polpop();
        saveobject(out, idx);
        tempfree(idx);
    }
}

void saveeverything(savewriter& out, bool system) {
    for (int idx = 1; idx < SYMTABSIZE; idx++)
        if (isnamed(sym(idx)) && (system || !(symtabprotected(idx) || isunchanged(idx))))
            saveobject(out, idx);
}

void checkoperands() {
    for (int k = 0; k <= parser.poltop; k++)
        if (!savekindof(sym(parser.polstack[k]).type))
            tarnerror(furtherline{describe(parser.polstack[k])}, "saving an illegal object, no file created");
}

std::string savepath() {
    int name = clause.insym;
    if (!name && parser.poltop >= 0) name = parser.polstack[0];
    const std::string path = name ? diskpath(name, report.filedir.c_str()) : "";
    if (path.empty()) tarnerror(further("as in SAVE A, B IN \"FILE\""), "SAVE: file name not specified");
    return path;
}

bool keepold(const std::string& path) {
    std::error_code fault;
    if (!std::filesystem::exists(path, fault)) return false;
    static const char* const choices[] = {"keep existing file", "overwrite"};
    const std::string message = "file " + path + " already exists.";
    return console.question("Save", message.c_str(), choices, 2) == 0;
}

void dropoperands() {
    while (parser.poltop >= 0) tempfree(polpop());
}

} // namespace

void diskpredefined() {
    disk.own.clear();
    for (int idx = 1; idx < SYMTABSIZE; idx++) {
        const symbol& s = sym(idx);
        if (!isnamed(s)) continue;
        if (s.type == SCALAR) disk.own.push_back({idx, s.type, s.val.rval, ""});
        if (s.type == STRINGTYPE) disk.own.push_back({idx, s.type, 0, stringval(idx)});
    }
}

void diskforget() { disk.own.clear(); }

void disksave(int op) {
    checkoperands();
    const std::string path = savepath();
    const bool system = op == TOKSAVEALL || op == TOKSAVEALLOVER;
    const bool ask = op == TOKSAVE || op == TOKSAVEALL;
    if (ask && keepold(path)) {
        tarnwarn("save not performed");
        tarnwarn("%s stands as it was; SAVEOVER replaces it without asking", path.c_str());
    } else {
        tarnprint("creating save file: %s\n", path.c_str());
        newfile file;
        if (!newfileopen(file, path))
            tarnerror(notwritable(path), "save file %s cannot be opened", path.c_str());
        savewriter out{file.file};
        if (parser.poltop >= 0)
            saveoperands(out);
        else
            saveeverything(out, system);
        if (out.failed || !newfilekeep(file))
            tarnerror(further("is the disk full? A file of that name stands as it was"),
                      "save file %s cannot be written", path.c_str());
    }
    dropoperands();
    tempfree(clause.insym);
    clause.insym = 0;
}
