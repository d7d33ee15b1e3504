/* funcs/trinode.h - the node store: every user function and initial value is a tree in one array of
 * three-word nodes. Owns:    the nodes, their free list, the sweep that gives back the nodes of deleted
 * definitions. Callers: definition, evaluation, differentiation, printing; submatrix references borrow a node
 * each. Never:   simplifies or evaluates; no pointer into the store may be held across trialloc, only
 * references. */
#pragma once

#include "interp/base/symtab.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

// Operations are the parser's token numbers, and three of the tree's own.
enum treeop {
    TREEPOWER = 3,
    TREETIMES = 4,
    TREEDIVIDE = 5,
    TREEPLUS = 6,
    TREEMINUS = 7,
    TREEEQUAL = 8,
    TREELESS = 9,
    TREELESSEQ = 10,
    TREEGREATEREQ = 11,
    TREEGREATER = 12,
    TREEAND = 14,
    TREEOR = 15,
    TREENOT = 16,      // left: operand
    TREEIDENTITY = 17, // left: operand; wraps a body that is a bare symbol
    TREENEGATE = 18,   // left: operand
    TREEIF = 19,       // left: condition, right: the TREETHEN node
    TREETHEN = 20,     // left: value if the condition holds, right: the other
    TREEASSIGN = 23,   // left: target, right: value
    TREECALL = 36,     // left: first TREEARG node or 0, right: callee (symbol or formal)
    TREEHEADER = 101,  // left: first TREEFORMAL node or 0, right: body
    TREEFORMAL = 102,  // left: next TREEFORMAL node or 0, right: the formal's symbol (INITIAL: any reference)
    TREEARG = 103      // left: next TREEARG node or 0, right: the argument
};

struct trinode {
    int16_t op;    // treeop; negated while the sweep marks
    int16_t left;  // reference or chain
    int16_t right; // reference or chain; in a free node the next free one
};

/* A reference is one number: -n is node n, 0 nothing, 1..32000 a symbol, 32000 + k the k-th formal argument.
 */
inline constexpr int FORMALBASE = 32000;
inline bool isnoderef(int ref) { return ref < 0; }
inline bool isformalref(int ref) { return ref > FORMALBASE; }
inline bool issymbolref(int ref) { return ref > 0 && ref <= FORMALBASE; }

inline constexpr int TRINODEFIRST = 16381, TRINODEMOST = 32767; // records, the unused record 0 among them

struct trinodestate {
    std::vector<trinode> at; // [0] is never a node
    int freelist = 0;
    uint32_t sweeps = 0; // a node's number may have another meaning once this has changed
    // Changes with each new definition and each sweep: what was found out about trees holds while it stands,
    // for symbols whose type and index still are what they were.
    uint32_t made = 1;
};
extern trinodestate trinodes;

inline const trinode& tri(int ref) { return trinodes.at[size_t(-ref)]; } // ref is negative
inline trinode& trimutable(int ref) { return trinodes.at[size_t(-ref)]; }

void trinodestart();                       // an empty store; sets the rows of symtab.kind for trees
int trialloc(int op, int left, int right); // reference to a new node; error when the store is full
void trifree(int ref);                     // one node at once: only for submatrix references
void trireclaim();                         // gives back every node that no function or initial value reaches
int trifreecount();                        // nodes on the free list

// A call node with its chain of arguments, in order; nothing is simplified.
int tricall(int callee, std::initializer_list<int> args);
int tricall(int callee, const std::vector<int>& args);

// Of a symbol of type USERFUNCTION or INITIALVALUE.
inline int funcheader(int f) { return sym(f).index; }
inline int funcbody(int f) { return tri(sym(f).index).right; }
inline int funcformals(int f) { return tri(sym(f).index).left; } // first TREEFORMAL node or 0
int formalcount(int f);
int formalref(int f, int k); // the k-th formal from 1, 0 beyond the last

// Visits each node under ref once (results of differentiation share subtrees), without recursion. visit(ref)
// returns false to end the walk.
template <class Visit> void treewalk(int ref, Visit&& visit) {
    if (ref >= 0) return;
    std::vector<bool> seen(trinodes.at.size());
    std::vector<int16_t> waiting{int16_t(ref)};
    while (!waiting.empty()) {
        const int at = waiting.back();
        waiting.pop_back();
        if (seen[size_t(-at)]) continue;
        seen[size_t(-at)] = true;
        if (!visit(at)) return;
        if (tri(at).right < 0) waiting.push_back(tri(at).right);
        if (tri(at).left < 0) waiting.push_back(tri(at).left);
    }
}
bool treeuses(int ref, int target); // does the tree refer to symbol target?
