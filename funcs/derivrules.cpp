// One row a builtin: its partial derivative with respect to each argument. u, v, w, s, t are the arguments in
// order. Sources: NIST Digital Library of Mathematical Functions (dlmf.nist.gov), by chapter: 4 elementary, 5
// gamma, 6 exponential integrals, 7 error functions, 8 incomplete gamma and beta, 10 Bessel, 14 Legendre, 19
// elliptic integrals, 22 Jacobi elliptic functions. Densities are differentiated as they are defined.
#include "funcs/deriv.h"
#include "funcs/derivbuild.h"
#include "funcs/derivimpl.h"
#include "funcs/derivtext.h"
#include "funcs/trinode.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <cstring>
#include <iterator>

namespace {

// In place of a formula: the derivative with respect to that argument is not had, a warning says so, the term
// is 0.
constexpr const char ORDER[] = "order";

// The derivative of the amplitude of u by the parameter v.
#define AMPLITUDE                                                                                            \
    "((JACOBIDN(u,v)*((1-v)*u-ELLIPE(JACOBIAM(u,v),v))+v*JACOBISN(u,v)*JACOBICN(u,v))/(2*v*(1-v)))"

struct derivrule {
    int16_t code;
    int8_t given;           // holds for so many arguments only; 0: any number
    const char* partial[5]; // null: no derivative with respect to that argument
};

constexpr derivrule rules[] = {
    {-1, 0, {"EXP(u)"}},
    {-2, 1, {"1/u"}},
    {-2, 2, {"1/(u*LOG(v))", "-LOG(u)/(v*LOG(v)^2)"}},
    {-3, 0, {"1/(u*2.302585092994046)"}},
    {-67, 0, {"1/(u*0.6931471805599453)"}},
    {-4, 0, {"1/(2*SQRT(u))"}},
    {-5, 0, {"COS(u)"}},
    {-6, 0, {"COSD(u)*0.017453292519943295"}},
    {-7, 0, {"-SIN(u)"}},
    {-8, 0, {"-SIND(u)*0.017453292519943295"}},
    {-9, 0, {"1/COS(u)^2"}},
    {-10, 0, {"0.017453292519943295/COSD(u)^2"}},
    {-64, 0, {"-COSEC(u)^2"}},
    {-74, 0, {"SEC(u)*TAN(u)"}},
    {-75, 0, {"-COSEC(u)*COTAN(u)"}},
    {-11, 0, {"COSH(u)"}},
    {-12, 0, {"SINH(u)"}},
    {-13, 0, {"1/COSH(u)^2"}},
    {-111, 0, {"-COSECH(u)*COTANH(u)"}},
    {-112, 0, {"-SECH(u)*TANH(u)"}},
    {-113, 0, {"-COSECH(u)^2"}},
    {-14, 0, {"1/SQRT(1-u^2)"}},
    {-15, 0, {"-1/SQRT(1-u^2)"}},
    {-16, 0, {"1/(1+u^2)"}},
    {-116, 0, {"57.29577951308232/SQRT(1-u^2)"}},
    {-117, 0, {"-57.29577951308232/SQRT(1-u^2)"}},
    {-118, 0, {"57.29577951308232/(1+u^2)"}},
    {-19, 0, {"v/(u^2+v^2)", "-u/(u^2+v^2)"}},
    {-79, 0, {"-1/(1+u^2)"}},
    {-80, 0, {"1/(ABS(u)*SQRT(u^2-1))"}},
    {-81, 0, {"-1/(ABS(u)*SQRT(u^2-1))"}},
    {-46, 0, {"1/SQRT(u^2+1)"}},
    {-47, 0, {"1/SQRT(u^2-1)"}},
    {-48, 0, {"1/(1-u^2)"}},
    {-49, 0, {"1/(1-u^2)"}},
    {-50, 0, {"-SIGN(u)/(u*SQRT(1-u^2))"}},
    {-51, 0, {"-SIGN(u)/(u*SQRT(1+u^2))"}},
    // a step has slope 0 but at its jumps, which a comparison marks
    {-18, 0, {"(u=FLOOR(u))"}},
    {-45, 0, {"(u=CEILING(u))"}},
    {-57, 0, {"(u=ROUND(u))"}},
    {-20, 0, {"1-(u/v=FLOOR(u/v))", "(u/v=FLOOR(u/v))*u/v-FLOOR(u/v)"}},
    {-23, 0, {"SIGN(u)"}},
    {-17, 0, {"DIGAMMA(u)"}},
    {-70, 0, {"GAMMA(u)*DIGAMMA(u)"}},
    {-69, 0, {"PGAMMA(1,u)"}},
    {-21, 0, {"1.1283791670955126*EXP(-u^2)"}},
    {-24, 0, {"-1.1283791670955126*EXP(-u^2)"}},
    {-61, 0, {"SIN(u)/u"}},
    {-62, 0, {"COS(u)/u"}},
    {-71, 0, {"EXP(u)/u"}},
    {-72, 0, {"1/LOG(u)"}},
    {-60, 0, {ORDER, "-EXPINTN(u-1,v)"}},
    {-26, 0, {ORDER, "(BESSJ(u-1,v)-BESSJ(u+1,v))/2"}},
    {-27, 0, {ORDER, "(BESSY(u-1,v)-BESSY(u+1,v))/2"}},
    {-28, 0, {ORDER, "(BESSI(u-1,v)+BESSI(u+1,v))/2"}},
    {-29, 0, {ORDER, "-(BESSK(u-1,v)+BESSK(u+1,v))/2"}},
    {-65, 0, {"0"}},
    {-82, 0, {"(u=TRUNC(u))"}},
    {-269, 0, {"1/(1+u)"}},
    {-264, 0, {"DIGAMMA(u)-DIGAMMA(u+v)", "DIGAMMA(v)-DIGAMMA(u+v)"}},
    {-202, 0, {ORDER, "PGAMMA(u+1,v)"}},
    {-268, 0, {"SINH(u)/u"}},
    {-267, 0, {"COSH(u)/u"}},
    {-239, 0, {"0.8862269254527580*EXP(ERFI(u)^2)"}},
    {-266, 0, {"-0.8862269254527580*EXP(ERFCI(u)^2)"}},
    // DLMF 14.10.5, with the degree above, so that degree 0 needs no degree below
    {-31, 0, {ORDER, "(u+1)*(LEG(u+1,v)-v*LEG(u,v))/(v^2-1)"}},
    {-30, 0, {ORDER, ORDER, "((u-v+1)*ALEG(u+1,v,w)-(u+1)*w*ALEG(u,v,w))/(w^2-1)"}},
    // DLMF 19.4: incomplete integrals of amplitude u and parameter v, complete ones of parameter u
    {-32,
     0,
     {"1/SQRT(1-v*SIN(u)^2)",
      "ELLIPE(u,v)/(2*v*(1-v))-ELLIPF(u,v)/(2*v)-SIN(2*u)/(4*(1-v)*SQRT(1-v*SIN(u)^2))"}},
    {-33, 0, {"(ELLIPE(u)-(1-u)*ELLIPK(u))/(2*u*(1-u))"}},
    {-35, 1, {"(ELLIPE(u)-ELLIPK(u))/(2*u)"}},
    {-35, 2, {"SQRT(1-v*SIN(u)^2)", "(ELLIPE(u,v)-ELLIPF(u,v))/(2*v)"}},
    // DLMF 22.13; by the parameter through that of the amplitude
    {-55, 0, {"JACOBIDN(u,v)", AMPLITUDE}},
    {-39, 0, {"JACOBICN(u,v)*JACOBIDN(u,v)", "JACOBICN(u,v)*" AMPLITUDE}},
    {-40, 0, {"-JACOBISN(u,v)*JACOBIDN(u,v)", "-JACOBISN(u,v)*" AMPLITUDE}},
    {-41,
     0,
     {"-v*JACOBISN(u,v)*JACOBICN(u,v)",
      "-JACOBISN(u,v)*(JACOBISN(u,v)+2*v*JACOBICN(u,v)*" AMPLITUDE ")/(2*JACOBIDN(u,v))"}},
    {-150, 0, {"-JACOBICN(u,v)*JACOBIDN(u,v)/JACOBISN(u,v)^2"}},
    {-151, 0, {"JACOBISN(u,v)*JACOBIDN(u,v)/JACOBICN(u,v)^2"}},
    {-152, 0, {"v*JACOBISN(u,v)*JACOBICN(u,v)/JACOBIDN(u,v)^2"}},
    {-153, 0, {"JACOBIDN(u,v)/JACOBICN(u,v)^2"}},
    {-154, 0, {"JACOBICN(u,v)/JACOBIDN(u,v)^2"}},
    {-155, 0, {"-JACOBIDN(u,v)/JACOBISN(u,v)^2"}},
    {-156, 0, {"(v-1)*JACOBISN(u,v)/JACOBIDN(u,v)^2"}},
    {-157, 0, {"-JACOBICN(u,v)/JACOBISN(u,v)^2"}},
    {-158, 0, {"(1-v)*JACOBISN(u,v)/JACOBICN(u,v)^2"}},
    // beta and gamma: the derivative of an incomplete integral is its integrand; by the parameters JBETA and
    // JGAMMA
    {-52, 0, {"BETA(u,v)*(DIGAMMA(u)-DIGAMMA(u+v))", "BETA(u,v)*(DIGAMMA(v)-DIGAMMA(u+v))"}},
    {-42, 0, {"JBETA(u,v,w,1)", "JBETA(u,v,w,2)", "w^(u-1)*(1-w)^(v-1)/BETA(u,v)"}},
    {-53, 0, {"JGAMMA(u,v)", "EXP((u-1)*LOG(v)-v-LOGGAMMA(u))"}},
    {-136, 3, {"BETAD(u,v,w)", "JBETA(v,w,u,1)", "JBETA(v,w,u,2)"}},
    {-135,
     3,
     {"BETAD(u,v,w)*((v-1)/u-(w-1)/(1-u))", "BETAD(u,v,w)*(LOG(u)-DIGAMMA(v)+DIGAMMA(v+w))",
      "BETAD(u,v,w)*(LOG(1-u)-DIGAMMA(w)+DIGAMMA(v+w))"}},
    {-54, 2, {"GAMMAD(u,v)*((v-1)/u-1)", "GAMMAD(u,v)*(LOG(u)-DIGAMMA(v))"}},
    {-54,
     3,
     {"GAMMAD(u,v,w)*((v-1)/u-1/w)", "GAMMAD(u,v,w)*(LOG(u/w)-DIGAMMA(v))", "GAMMAD(u,v,w)*(u/w-v)/w"}},
    {-134, 2, {"GAMMAD(u,v)", "JGAMMA(v,u)"}},
    {-134, 3, {"GAMMAD(u,v,w)", "JGAMMA(v,u/w)", "-u*GAMMAD(u,v,w)/w"}},
    // normal distribution of mean v and variance w
    {-104, 0, {"-(u-v)/w*GAUSSD(u,v,w)", "(u-v)/w*GAUSSD(u,v,w)", "GAUSSD(u,v,w)*((u-v)^2/w-1)/(2*w)"}},
    {-22, 0, {"GAUSSD(u,v,w)", "-GAUSSD(u,v,w)", "-(u-v)/(2*w)*GAUSSD(u,v,w)"}},
    {-66, 0, {"1/GAUSSD(GAUSSI(u,v,w),v,w)", "1", "(GAUSSI(u,v,w)-v)/(2*w)"}},
    // chi-square with v degrees: a non-centrality w shifts the degrees by two
    {-56, 2, {"CHISQD(u,v)", "JGAMMA(v/2,u/2)/2"}},
    {-56, 3, {"CHISQD(u,v,w)", nullptr, "(CHISQF(u,v+2,w)-CHISQF(u,v,w))/2"}},
    {-88, 2, {"CHISQD(u,v)*((v/2-1)/u-0.5)", "CHISQD(u,v)*(LOG(u/2)-DIGAMMA(v/2))/2"}},
    {-88, 3, {"(CHISQD(u,v-2,w)-CHISQD(u,v,w))/2", nullptr, "(CHISQD(u,v+2,w)-CHISQD(u,v,w))/2"}},
    // F with v and w degrees
    {-91,
     3,
     {"QFD(u,v,w)*((v/2-1)/u-(v+w)*v/(2*(w+v*u)))",
      "QFD(u,v,w)*(LOG(v*u/w)+1-LOG(1+v*u/w)-(v+w)*u/(w+v*u)-DIGAMMA(v/2)+DIGAMMA((v+w)/2))/2",
      "QFD(u,v,w)*((v+w)*v*u/(w*(w+v*u))-v/w-LOG(1+v*u/w)-DIGAMMA(w/2)+DIGAMMA((v+w)/2))/2"}},
    {-44,
     3,
     {"QFD(u,v,w)", "JBETA(v/2,w/2,v*u/(w+v*u),1)/2+QFD(u,v,w)*u/v",
      "JBETA(v/2,w/2,v*u/(w+v*u),2)/2-QFD(u,v,w)*u/w"}},
    {-400, 0, {nullptr, "LOOKUPD(u,v)"}},
};

const derivrule* rulefor(int code, int given) {
    for (const derivrule& rule : rules)
        if (rule.code == code && (rule.given == 0 || rule.given == given)) return &rule;
    return nullptr;
}

[[noreturn]] void nothad(const derivcall& call) {
    tarnerror("DIFF: %s is not a differentiable builtin function", sym(call.callee).name);
}

// The arguments given, and the defaults of those that are not (as the dispatch of scalar functions has them).
void fillarguments(const derivcall& call, int* args) {
    constexpr double defaults[5] = {0, 0, 1, 0, 0};
    for (int k = 0; k < 5; k++) args[k] = k < call.n ? call.arg[k] : treenumber(defaults[k]);
}

int partialterm(const derivcall& call, const derivrule& rule, int k, int inner) {
    const char* formula = rule.partial[k];
    if (!formula) nothad(call);
    if (formula == ORDER) {
        tarnwarn("Can not differentiate %s with respect to second arg.", sym(call.callee).name);
        return treenumber(0);
    }
    int args[5];
    fillarguments(call, args);
    return treemul(derivformula(formula, args, 5), inner);
}

int diffbyrule(const derivcall& call, const derivrule& rule, int x) {
    int result = treenumber(0);
    for (int k = 0; k < call.n; k++) {
        const int inner = diff(call.arg[k], x);
        if (treeis(inner, 0)) continue;
        if (k >= 5) nothad(call);
        result = treeadd(result, partialterm(call, rule, k, inner));
    }
    return result;
}

// The derivative of the argument that MAX or MIN takes: each is compared with the best of those behind it.
int diffextreme(const derivcall& call, int x) {
    const int op = call.code == -205 ? TREEGREATER : TREELESS;
    int best = call.arg[call.n - 1], slope = diff(best, x);
    for (int k = call.n - 1; k-- > 0;) {
        const int a = call.arg[k], da = diff(a, x);
        slope = treeif(trialloc(op, a, best), da, slope);
        best = tricall(call.callee, {a, best});
    }
    return slope;
}

void checkcount(const derivcall& call) {
    const signed char* argd = sym(call.callee).val.argd;
    if (argd[0] == -100) return;
    int mandatory = 0;
    for (int k = 1; k <= argd[0] && k < 8; k++) mandatory += argd[k] > 0;
    if (call.n < mandatory || call.n > argd[0])
        tarnerror("function %s takes %hd arguments; %hd are mandatory", sym(call.callee).name, short(argd[0]),
                  short(mandatory));
}

} // namespace

int diffbuiltin(const derivcall& call, int x) {
    checkcount(call);
    if (call.code == -205 || call.code == -206) return diffextreme(call, x);
    if (call.code == -100) {
        const int inner = diff(call.arg[0], x);
        return treeis(inner, 0) ? inner : tricall(call.callee, {inner});
    }
    const derivrule* rule = rulefor(call.code, call.n);
    if (!rule) nothad(call);
    return diffbyrule(call, *rule, x);
}

const char* derivrulescheck() {
    const int mode = parser.funcmode;
    parser.funcmode = 1;
    const char* bad = nullptr;
    for (const derivrule& rule : rules)
        for (const char* formula : rule.partial)
            if (!bad && formula && formula != ORDER) bad = derivformulacheck(formula);
    parser.funcmode = mode;
    return bad;
}
