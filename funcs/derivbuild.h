/* funcs/derivbuild.h - the simplifying constructors of trees.
 * Owns:    the rules by which sums, products, quotients and powers are shortened while they are built.
 * Callers: the differentiator and its table of rules; ROOT's and the solvers' symbolic forms.
 * Never:   differentiates, or changes a node that stands: results may share subtrees with their operands.
 * Constants are interned, so equal constants are equal references; definition mode (parser.funcmode) must be
 * on. */
#pragma once

#include <initializer_list>

int treenumber(double x);   // reference of the interned constant
bool treeconstant(int ref); // a symbol of type CONSTANT
double treeconstantvalue(int ref);
bool treeis(int ref, double x); // the constant x

int treeadd(int a, int b);
int treesub(int a, int b);
int treeneg(int a);
int treemul(int a, int b);
int treediv(int a, int b); // error "divide-by-zero in derivative function" when b is the constant 0
int treepow(int a, int b);
int treesqr(int a);           // a*a when a is small, else a^2
int treeequals(int a, int b); // the comparison node a = b
int treeif(int condition, int yes, int no);
int treecall(int callee, std::initializer_list<int> args);
int treecalllist(int callee, int argcell); // a call with the argument cells as they stand

bool treeequal(int a, int b); // same structure; a symbol equals only itself
int treedepth(int ref);       // height; a leaf is 1
