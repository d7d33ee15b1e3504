/* funcs/pending.h - operators on large matrices that wait until their result is wanted, to run in one pass.
 * Owns:    the expressions that wait; each stands on polstack as a temporary matrix that has no cells yet.
 * Callers: binop makes and joins them; process() finishes them before anything else may look at an operand.
 * Never:   changes a number, a count or a message: where a block faults, the operators run one by one in
 * their order. */
#pragma once

// The result of a op b as a temporary that waits, or 0 if these operands are not for waiting; then nothing is
// changed, and the caller finishes what waits before it goes on. Takes over a and b if they are temporaries.
int pendingoperation(int op, int a, int b);

void pendingcompute();        // see pendingfinish
bool pendingkeeps(int token); // may the reduction of this token leave expressions waiting?
void pendingreset();

struct pendingstate {
    int count = 0; // expressions that wait
};
extern pendingstate pending;

// Gives every waiting temporary its cells.
inline void pendingfinish() {
    if (pending.count != 0) pendingcompute();
}
