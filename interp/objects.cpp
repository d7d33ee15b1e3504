// TYPE, PRINT, DELETE and DELETEALL, with their FILE and DIR.
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/listing.h"
#include "interp/mistakes.h"
#include "interp/process.h"
#include "interp/tokenfil.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>

namespace {

// The text of an operand that names a file: a string's value, or the name as typed.
const char* filetext(int idx) { return isstringtype(idx) ? stringval(idx) : sym(idx).name; }

std::string filepath(int idx, const char* ext) {
    return bindname(filetext(idx), report.filedir.c_str(), ext);
}

// Output goes to the listing file as long as this lives.
struct listingfile {
    listingfile(const char* path, bool append) {
        report.listing = std::fopen(path, append ? "a" : "w");
        if (!report.listing) tarnerror(notwritable(path), "couldn't open listing file %s", path);
    }
    ~listingfile() {
        std::fclose(report.listing);
        report.listing = nullptr;
    }
    listingfile(const listingfile&) = delete;
    listingfile& operator=(const listingfile&) = delete;
};

std::string listingpath() {
    const char* name = clause.insym > 0 ? filetext(clause.insym) : "tarn";
    if (!strcmp(name, "PRN") || !strcmp(name, "COM1:") || !strcmp(name, "COM2:")) return name;
    return bindname(name, report.filedir.c_str(), "lst");
}

void typeall() {
    if (parser.poltop < 0) {
        if (clause.fileflag != 2) tarnsyntax(statementform(TOKTYPE), 13, "illegal statement");
        return typeop(0);
    }
    for (int k = 0; k <= parser.poltop; k++) typeop(parser.polstack[k]);
    freeoperands(parser.poltop + 1);
}

void printfile() {
    if (parser.poltop > 0)
        tarnerror(further("%d are named", parser.poltop + 1), "may not PRINT more than one file at a time");
    needoperands(1);
    const std::string path = filepath(parser.polstack[0], nullptr);
    const bool printed = console.printfile(path.c_str());
    std::error_code failure;
    logout(printed ? "file printed: %s\n" : "file not printed: %s\n", path.c_str());
    if (!printed) {
        tarnwarn("file not printed: %s", path.c_str());
        tarnwarn("%s", std::filesystem::exists(path, failure) ? "no printer takes it"
                                                              : notreadable(path).text.c_str());
    }
    freeoperands(1);
}

void print() {
    const listingfile listing(listingpath().c_str(), symtabscalar("APPENDSW", 0) != 0);
    typeall();
}

void type(const processop& op) {
    if (op.token != TOKPRINT)
        typeall();
    else if (clause.fileflag == 1)
        printfile();
    else
        print();
    clause.fileflag = 0;
    parser.argcount[parser.argptr] = 1;
}

void deletefile() {
    if (parser.poltop > 0)
        tarnerror(further("%d are named", parser.poltop + 1), "may not DELETE more one than file at a time");
    needoperands(1);
    const std::string path = filepath(parser.polstack[0], nullptr);
    const bool gone = std::remove(path.c_str()) == 0;
    logout(gone ? "files deleted: %s\n" : "files not deleted: %s\n", path.c_str());
    if (!gone) {
        tarnwarn("files not deleted: %s", path.c_str());
        tarnwarn("%s", notreadable(path).text.c_str());
    }
    freeoperands(1);
}

bool isplotobject(int type) {
    return type == WINDOWTYPE || type == CURVETYPE || type == TITLETYPE || type == CURVE3D ||
           type == WINDOW3D;
}

void deleteobjects() {
    bool redraw = false;
    while (parser.poltop >= 0) {
        const int idx = polpop();
        if (sym(idx).name[0] == '@') continue; // it went with its window, or stands twice in the list
        redraw |= isplotobject(sym(idx).type);
        symtabdelete(idx);
        tempfree(idx);
    }
    if (redraw) upper.redraw();
}

void deletion(const processop&) {
    if (clause.fileflag == 1)
        deletefile();
    else
        deleteobjects();
    clause.fileflag = 0;
}

void deleteall(const processop&) { symtabdeleteall(); }

void filesdir(const processop& op) {
    const int statement = opcommand();
    if (statement != TOKTYPE && statement != TOKPRINT && statement != TOKEDIT && statement != TOKDELETE)
        tarnerror(further("as in TYPE FILE \"NAME\"; %s is a word of the language and cannot be a name",
                          tokenword(op.token)),
                  "FILE or DIR can only occur in TYPE, PRINT or DELETE statement");
    clause.fileflag = op.token == TOKFILE ? 1 : 2;
}

constexpr processrow rows[] = {{6, type}, {7, deletion}, {34, filesdir}, {66, deleteall}};

} // namespace

void objectrows() { processadd(rows, int(std::size(rows))); }
