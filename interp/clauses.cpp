// Clauses: each leaves its values in the clause variables and vanishes; the statement word, reduced last,
// reads them.
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/tokens.h"
#include "interp/mistakes.h"
#include "interp/process.h"
#include "interp/tokenfil.h"

#include <algorithm>
#include <iterator>

namespace {

int operand(const processop&) {
    needoperands(1);
    return parser.polstack[parser.poltop];
}

void setshort(const processop& op, int16_t& variable) {
    variable = shortval(operand(op));
    freeoperands(1);
}

void setdouble(const processop& op, double& variable) {
    variable = scalarval(operand(op));
    freeoperands(1);
}

// Two scalars in a bracket; what names the clause in the error.
void needpair(const processop& op, const char* what) {
    if (!op.p2nd || !isscalar(op.p2nd) || !isscalar(op.ptop))
        tarnerror(statementform(op.token), "%s must have two parenthesized arguments", what);
}

void setpair(const processop& op, const char* what, double& x, double& y) {
    needpair(op, what);
    x = scalarval(op.p2nd);
    y = scalarval(op.ptop);
    freeoperands(2);
}

void place(const processop& op) {
    if (argnumber() != 2)
        tarnerror(further("as in PLACE (LEFT, TOP)"), "PLACE must have two parenthesized arguments");
    needpair(op, "PLACE");
    clause.placex = shortval(op.p2nd);
    clause.placey = shortval(op.ptop);
    freeoperands(2);
}

void offset(const processop& op) { setpair(op, "OFFSET", clause.offsetx, clause.offsety); }
void at(const processop& op) { setpair(op, "AT clause", clause.atx, clause.aty); }

void in(const processop& op) {
    static constexpr int statements[] = {TOKDRAW,     TOKSAVE,       TOKVIEW,   TOKTITLE, TOKXAXIS,
                                         TOKYAXIS,    TOKAXIS,       TOKWINDOW, TOKFRAME, TOKIMAGE,
                                         TOKFRAMEBOX, TOKIMAGEBOX,   TOKPLOT,   TOKPRINT, TOKSAVEOVER,
                                         TOKSAVEALL,  TOKSAVEALLOVER};
    if (std::find(std::begin(statements), std::end(statements), opcommand()) == std::end(statements))
        tarnerror(further("%s takes no IN", opcommand() ? tokenword(opcommand()) : "an expression"),
                  "the IN clause does not apply to this operator");
    clause.insym = int16_t(operand(op));
    dropoperands(1);
}

void label(const processop& op) {
    clause.labelmatrix = int16_t(operand(op));
    dropoperands(1);
}

void fonts(const processop& op) {
    setshort(op, op.token == TOKPTFONT ? clause.pointfont
                 : op.token == TOKFONT ? clause.font
                                       : clause.labelfont);
}

void textsize(const processop& op) { setdouble(op, clause.textsize); }
void textshift(const processop& op) { setdouble(op, clause.textshift); }
void textangle(const processop& op) { setdouble(op, clause.textangle); }
void labelsize(const processop& op) { setdouble(op, clause.labelsize); }
void priority(const processop& op) { setdouble(op, clause.priority); }
void colornumber(const processop& op) { setshort(op, clause.colorn); }
void clipping(const processop& op) { setshort(op, clause.wclip); }

// A unit belongs to the clause or statement that waits on top of opstack.
void unit(const processop& op) {
    int16_t* variable = &clause.unitat;
    switch (parser.opstack[parser.oplevel]) {
    case TOKSIZE:
    case TOKPTSIZE: variable = &clause.unitsize; break;
    case TOKOFFSET: variable = &clause.unitoffset; break;
    case TOKLABELSIZE: variable = &clause.unitlabelsize; break;
    }
    *variable = int16_t(op.token);
}

constexpr processrow rows[] = {
    {11, place},    {22, in},        {27, label},     {28, offset},   {45, fonts},
    {46, textsize}, {47, textshift}, {48, textangle}, {49, at},       {50, colornumber},
    {51, unit},     {54, clipping},  {57, labelsize}, {63, priority},
};

} // namespace

void clauserows() { processadd(rows, int(std::size(rows))); }
