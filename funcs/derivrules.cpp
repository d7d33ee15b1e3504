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

// The derivative of dn by the parameter.
#define DNBYPARAMETER "(-JACOBISN(u,v)*(JACOBISN(u,v)+2*v*JACOBICN(u,v)*" AMPLITUDE ")/(2*JACOBIDN(u,v)))"

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
    {-41, 0, {"-v*JACOBISN(u,v)*JACOBICN(u,v)", DNBYPARAMETER}},
    {-150,
     0,
     {"-JACOBICN(u,v)*JACOBIDN(u,v)/JACOBISN(u,v)^2", "-JACOBICN(u,v)*" AMPLITUDE "/JACOBISN(u,v)^2"}},
    {-151, 0, {"JACOBISN(u,v)*JACOBIDN(u,v)/JACOBICN(u,v)^2", "JACOBISN(u,v)*" AMPLITUDE "/JACOBICN(u,v)^2"}},
    {-152, 0, {"v*JACOBISN(u,v)*JACOBICN(u,v)/JACOBIDN(u,v)^2", "-" DNBYPARAMETER "/JACOBIDN(u,v)^2"}},
    {-153, 0, {"JACOBIDN(u,v)/JACOBICN(u,v)^2", AMPLITUDE "/JACOBICN(u,v)^2"}},
    {-154,
     0,
     {"JACOBICN(u,v)/JACOBIDN(u,v)^2",
      "(JACOBICN(u,v)*" AMPLITUDE "-JACOBISD(u,v)*" DNBYPARAMETER ")/JACOBIDN(u,v)"}},
    {-155, 0, {"-JACOBIDN(u,v)/JACOBISN(u,v)^2", "-" AMPLITUDE "/JACOBISN(u,v)^2"}},
    {-156,
     0,
     {"(v-1)*JACOBISN(u,v)/JACOBIDN(u,v)^2",
      "-(JACOBISN(u,v)*" AMPLITUDE "+JACOBICD(u,v)*" DNBYPARAMETER ")/JACOBIDN(u,v)"}},
    {-157,
     0,
     {"-JACOBICN(u,v)/JACOBISN(u,v)^2",
      "(" DNBYPARAMETER "-JACOBIDS(u,v)*JACOBICN(u,v)*" AMPLITUDE ")/JACOBISN(u,v)"}},
    {-158,
     0,
     {"(1-v)*JACOBISN(u,v)/JACOBICN(u,v)^2",
      "(" DNBYPARAMETER "+JACOBIDC(u,v)*JACOBISN(u,v)*" AMPLITUDE ")/JACOBICN(u,v)"}},
    {-230, 0, {"JACOBIDN(u,v)^2-ELLIPE(v)/ELLIPK(v)"}},
    {-38,
     2,
     {"(ELLIPE(v)+(v-u)/u*ELLIPK(v)+(u^2-v)/u*ELLIPPI(u,v))/(2*(v-u)*(u-1))",
      "(ELLIPE(v)/(v-1)+ELLIPPI(u,v))/(2*(u-v))"}},
    {-38,
     3,
     {"(ELLIPE(v,w)+(w-u)/u*ELLIPF(v,w)+(u^2-w)/u*ELLIPPI(u,v,w)-u*SQRT(1-w*SIN(v)^2)*SIN(2*v)/"
      "(2*(1-u*SIN(v)^2)))/(2*(w-u)*(u-1))",
      "1/((1-u*SIN(v)^2)*SQRT(1-w*SIN(v)^2))",
      "(ELLIPE(v,w)/(w-1)+ELLIPPI(u,v,w)-w*SIN(2*v)/(2*(w-1)*SQRT(1-w*SIN(v)^2)))/(2*(u-w))"}},
    // Bessel functions of the other names, DLMF 10.6, 10.29, 10.51, 9.2, 11.4, and their integrals
    {-274, 0, {ORDER, "(ABESSJ(u-1,v)-ABESSJ(u+1,v))/2"}},
    {-275, 0, {ORDER, "(ABESSY(u-1,v)-ABESSY(u+1,v))/2"}},
    {-276, 0, {ORDER, "(ABESSI(u-1,v)+ABESSI(u+1,v))/2"}},
    {-277, 0, {ORDER, "-(ABESSK(u-1,v)+ABESSK(u+1,v))/2"}},
    {-278, 0, {ORDER, "BESKES(u,v)-(BESKES(u-1,v)+BESKES(u+1,v))/2"}},
    {-279, 0, {ORDER, "-(BESKS(u-1,v)+BESKS(u+1,v))/2"}},
    {-270, 0, {ORDER, "(u*SPBJ(u-1,v)-(u+1)*SPBJ(u+1,v))/(2*u+1)"}},
    {-271, 0, {ORDER, "(u*SPBY(u-1,v)-(u+1)*SPBY(u+1,v))/(2*u+1)"}},
    {-272, 0, {ORDER, "(u*SPBI(u-1,v)+(u+1)*SPBI(u+1,v))/(2*u+1)"}},
    {-273, 0, {ORDER, "-(u*SPBK(u-1,v)+(u+1)*SPBK(u+1,v))/(2*u+1)"}},
    {-254, 0, {"BESSI(0,u)"}},
    {-280, 0, {"-BESSJ(0,u)/u"}},
    {-229, 1, {"BAIRY(u,1)"}},
    {-229, 2, {"u^MOD(v,2)*BAIRY(u,v+1-2*MOD(v,2))", nullptr}},
    {-241, 0, {ORDER, "(STRUVED(u-1,v)-STRUVED(u+1,v)+(v/2)^u*0.5641895835477563/GAMMA(u+1.5))/2"}},
    {-242, 0, {ORDER, "(STRUVELD(u-1,v)+STRUVELD(u+1,v)+(v/2)^u*0.5641895835477563/GAMMA(u+1.5))/2"}},
    {-240, 2, {ORDER, "KELVIN(u,v,5)"}},
    {-240, 3, {ORDER, "KELVIN(u,v,w+4)", nullptr}},
    // hypergeometric functions by the argument, DLMF 13.3, 15.5
    {-243, 0, {nullptr, nullptr, nullptr, "u*v/w*HGEOF(u+1,v+1,w+1,s)"}},
    {-309, 0, {nullptr, nullptr, "u/v*CHM(u+1,v+1,w)"}},
    {-246, 0, {nullptr, nullptr, "-u*CHU(u+1,v+1,w)"}},
    // orthogonal polynomials by the argument, DLMF 18.9(iii); SIGN and MAX give order 0 its 0
    {-281, 0, {ORDER, ORDER, "PLEMDER(u,v,w)"}},
    {-138, 0, {ORDER, nullptr, nullptr, "SIGN(u)*(u+v+w+1)/2*JACOBI1(MAX(u-1,0),v+1,w+1,s)"}},
    {-139, 0, {ORDER, nullptr, nullptr, "u*JACOBI2(MAX(u-1,0),v+2,w+1,s)"}},
    {-140, 0, {ORDER, nullptr, "SIGN(u)*2*(v+(v=0))*GEGENP(MAX(u-1,0),v+1,w)"}},
    {-141, 0, {ORDER, "u*CHEB2(MAX(u-1,0),v)"}},
    {-142, 0, {ORDER, "2*SIGN(u)*GEGENP(MAX(u-1,0),2,v)"}},
    {-143, 0, {ORDER, "-SIGN(u)*ALAGUERRE(MAX(u-1,0),1,v)"}},
    {-144, 0, {ORDER, nullptr, "-SIGN(u)*ALAGUERRE(MAX(u-1,0),v+1,w)"}},
    {-145, 0, {ORDER, "2*u*HERMITE(MAX(u-1,0),v)"}},
    {-146, 0, {ORDER, "u*HERMITE2(MAX(u-1,0),v)"}},
    {-148, 0, {ORDER, "u*BERNPOL(MAX(u-1,0),v)"}},
    // dilogarithm and other integrals, factorials
    {-235, 0, {"-LOG(1-u)/u"}},
    {-251, 0, {"-LOG(2*ABS(SIN(u/2)))"}},
    {-252, 0, {ORDER, "-IERFC(u-1,v)"}},
    {-253, 0, {nullptr, "EXP(-u*SEC(v))"}},
    {-258, 0, {nullptr, "-ABRAM(u-1,v)"}},
    {-137, 0, {"POCH(u,v)*(DIGAMMA(u+v)-DIGAMMA(u))", "POCH(u,v)*DIGAMMA(u+v)"}},
    {-228, 0, {"RFACT(u,v)*(DIGAMMA(u+v)-DIGAMMA(u))", ORDER}},
    {-122, 0, {"FACT(u)*DIGAMMA(u+1)"}},
    {-63, 0, {"BINCOEF(u,v)*(DIGAMMA(u+1)-DIGAMMA(u-v+1))", "BINCOEF(u,v)*(DIGAMMA(u-v+1)-DIGAMMA(v+1))"}},
    {-124, 0, {"PGAMMA(1,u+1)"}},
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
