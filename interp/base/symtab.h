/* interp/base/symtab.h - the symbol table, the one namespace of the system.
 * Owns:    every symbol record, temporaries, interned constants, the protected list; an index stays valid for
 * its life. Callers: every room; rooms that own a kind of value tell how it is released by symtabkind. Never:
 * parses, evaluates, or knows what a value holds beyond its type code. */
#pragma once

#include <cstdint>

inline constexpr int SYMTABSIZE = 2693; // prime; the probe sequence h, 2h, 3h... depends on it
inline constexpr int MAXNAME = 27;

// Type codes; a negative type is a builtin and selects its routine.
enum symboltype {
    EMPTY = 0,
    UNKNOWN = 1,
    CONSTANT = 2,
    OPERATOR = 3,
    SCALAR = 4,
    USERFUNCTION = 5,
    MATRIX = 6,
    INITIALVALUE = 7,
    SUBMTX = 8,
    STRINGTYPE = 9,
    TEMPSTRING = 10,
    WINDOWTYPE = 11,
    CURVETYPE = 12,
    TITLETYPE = 13,
    CONSETTYPE = 14,
    CURVE3D = 15,
    STRINGMATRIX = 16,
    WINDOW3D = 20
};

struct symbol {
    char
        name[MAXNAME + 1]; // "" never used, "@" deleted, " " temporary, "#..." constant, "....f.x" derivative
    int16_t type;
    int16_t index; // link or negated tree root, by type
    union {
        double rval;
        void* ptr;
        int16_t token;       // OPERATOR
        signed char argd[8]; // builtin: number of slots, then one type code a slot
    } val;
};

// How values of one type are let go; filled at start by the room that owns the type. Any may be null.
struct symtabkindrow {
    void (*release)(symbol& s); // frees what val owns (a temporary, or before overwriting)
    void (*remove)(int idx);    // the whole of DELETE for a type with links (windows, curves...)
    bool (*uses)(const symbol& s, int target); // does the value refer to symbol target?
};

struct symtabstate {
    symbol at[SYMTABSIZE];
    symtabkindrow kind[21];
    uint64_t freebits[(SYMTABSIZE + 63) / 64]; // slots that a temporary may take, a bit each
    uint64_t freewords;                        // words of freebits that are not zero
    int16_t submtx[51];                        // SUBMTX temporaries of this statement
    int nsubmtx;
    int16_t protectedlist[64]; // [0] is the count
    // shared constants, interned at start
    int16_t zero, one, minusone, two, c101, c1em5, c099, c2em5, c001, c002, degrad, logten, ln2, twosqrtpi,
        rsqrt2pi, eight, c300;
};
extern symtabstate symtab;

inline symbol& sym(int idx) { return symtab.at[idx]; }
inline bool istemporary(int idx) { return symtab.at[idx].name[0] == ' '; }
extern const double UNDEFINEDMARK; // the value of a symbol of type UNKNOWN

void symtabstart();     // empty table; kinds are kept
void symtabconstants(); // the seventeen shared constants
void symtabprotect();   // builds the protected list
bool symtabprotected(int idx);
int symtabprotectedname(const char* name); // index on the protected list of that name, or -1

int symtabhash(const char* name);
int symtabenter(const char* name);  // finds or makes (type UNKNOWN); errors: name too long, table full
int symtablookup(const char* name); // -1 if there is none; makes nothing
// The name in use most like one that is not, as a slip of the finger would write it; 0: none is near. Only
// entries that wanted accepts are looked at.
int symtabnearest(const char* name, bool (*wanted)(const symbol& s));
int symtabslot();             // lowest free slot for an anonymous entry, marked as a temporary
int symtabconst(double rval); // temporary constant; interned when a definition is compiled
// Releases the operands free1 and free2 (0: none), then makes a temporary that holds payload (a double* for
// types 2 and 4, else the object, whose ownership passes to the entry). Returns its index.
int symtabtemp(int free1, int free2, void* payload, int type, int index);
int symtabtempscalar(int free1, int free2, double value); // the same for a SCALAR
void tempfree(int idx);          // lets go of a temporary; named entries and SUBMTX pass through
void symtabmarkdeleted(int idx); // the name becomes "@", the slot may be taken again
void symtabdelete(int idx);      // DELETE of one symbol
void symtabdeleteall();          // DELETEALL
bool symtabused(int idx);        // does any function, initial value or constraint set refer to it?
void symtabsweep();              // after an error: lets go of every temporary
void symtabprint(int idx);       // debugging aid
double symtabscalar(const char* name,
                    double absent); // value of a scalar by name, for switches read at a call
const char* symtabstring(const char* name, const char* absent);
