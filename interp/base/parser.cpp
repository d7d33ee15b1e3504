#include "interp/base/parser.h"

#include "interp/base/machine.h"
#include "interp/base/report.h"

#include <algorithm>
#include <iterator>

parserstate parser;
clausestate clause;
processrow processtable[68];

void parserreset() {
    parser.statement++;
    parser.oplevel = 0;
    parser.opstack[0] = 34;
    parser.poltop = -1;
    parser.argptr = 0;
    parser.argcount[0] = 1;
    parser.closed = 0;
    parser.scalartop = 1;
    parser.matrixiflevel = 0;
    parser.funcmode = 0;
    parser.interrupted = parser.reporttoggle = parser.assigned = false;
}

int polpop() {
    if (parser.poltop < 0)
        tarnerror(further("a value is missing in the statement"), "polstack[] empty, cannot be popped");
    return parser.polstack[parser.poltop--];
}

void polpush(int idx) {
    if (parser.poltop + 1 >= POLSTACKSIZE)
        tarnerror("too many operands in a statement: %d is the limit; part it into several", POLSTACKSIZE);
    parser.polstack[++parser.poltop] = int16_t(idx);
}

void oppush(int token) {
    if (parser.oplevel + 1 >= OPSTACKSIZE)
        tarnerror("too many waiting operators in a statement: %d is the limit; part it into several",
                  OPSTACKSIZE - 1);
    parser.opstack[++parser.oplevel] = int16_t(token);
}

int scalarpush(double x) {
    if (parser.scalartop > SCALARSTACKSIZE)
        tarnerror("too many values in an evaluation: %d is the limit", SCALARSTACKSIZE);
    parser.scalar[parser.scalartop] = x;
    return -parser.scalartop++;
}

void clausereset() {
    clausestate& c = clause;
    c.insym = 0;
    c.placex = c.placey = c.linetype = c.pointtype = c.pointfont = c.font = c.labelfont = c.labelmatrix =
        c.colorn = c.wclip = c.pointcolor = c.linecolor = c.labelcolor = c.pointsizes = -1;
    std::fill(std::begin(c.linedash), std::end(c.linedash), MAXPOS);
    c.linethick = c.linefill = -1;
    c.pointsize = c.textsize = c.textshift = c.textangle = c.labelsize = c.atx = c.aty = c.offsetx =
        c.offsety = c.priority = MAXPOS;
    std::fill(std::begin(c.adjust), std::end(c.adjust), int16_t(-1));
    std::fill(std::begin(c.format), std::end(c.format), int16_t(-1));
    c.unitat = c.unitoffset = c.unitsize = c.unitlabelsize = -1;
    c.conset = -1;
    c.fileflag = c.toclauses = c.fitcount = 0;
}

void processadd(const processrow* rows, int count) {
    for (int k = 0; k < count; k++) processtable[rows[k].pcase] = rows[k];
}
