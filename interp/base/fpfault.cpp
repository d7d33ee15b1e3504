#include "interp/base/fpfault.h"

#include "interp/base/report.h"

#include <cfenv>

fpstate fp;

namespace {

void countfault(fpkind kind) {
    if (report.quiet) {
        report.held = true;
        return;
    }
    fp.total++;
    switch (kind) {
    case FPDIVZERO: fp.divzero++; break;
    case FPZERODIV: fp.zerodivzero++; break;
    case FPOVERFLOW: fp.overflow++; break;
    case FPUNKNOWN: fp.unknown++; break;
    }
}

} // namespace

double fpfault(fpkind kind, bool negative) {
    static const char* const words[] = {"Divide by Zero", "Zero Divide by Zero", "Overflow", "Unknown"};
    countfault(kind);
    if (!report.quiet && fp.total <= unsigned(fp.limit > 0 ? fp.limit : 0))
        tarnprint("\nFloating Point Error: %s\n", words[kind]);
    return negative ? MAXNEG : MAXPOS;
}

double fprepair(double result) {
    return fpfault(std::isnan(result) ? FPUNKNOWN : FPOVERFLOW, std::signbit(result) && !std::isnan(result));
}

double fprepairdiv(double x, double y) {
    const bool negative = std::signbit(x) != std::signbit(y);
    if (y != 0) return fpfault(FPOVERFLOW, negative);
    return x == 0 ? fpfault(FPZERODIV, negative) : fpfault(FPDIVZERO, negative);
}

double matherr(matherrkind kind, const char* name, double value) {
    static const char* const words[] = {"domain error ", "singularity error ", "overflow error ",
                                        "underflow error ", "loss of significance "};
    countfault(FPUNKNOWN);
    if (!report.quiet && fp.total <= unsigned(fp.limit > 0 ? fp.limit : 0))
        tarnprint("matherr: %sin %s\n", words[kind], name);
    return value;
}

void fpinit() { std::feclearexcept(FE_ALL_EXCEPT); }

void fpclear() {
    const int limit = fp.limit;
    fp = fpstate{};
    fp.limit = limit;
}

void fpsummary(bool reset) {
    if (fp.total == 0) return;
    const struct {
        const char* name;
        unsigned count;
    } rows[] = {{"Overflow", fp.overflow}, {"ZeroDivZero", fp.zerodivzero}, {"DivZero", fp.divzero}};
    logout("Floating Point Errors: ");
    for (const auto& row : rows) {
        if (row.count == 0) continue;
        conout("Floating Point Errors: %s: %u\r\n", row.name, row.count);
        logout("%s: %u ", row.name, row.count);
    }
    logout("\n");
    if (reset) fpclear();
}
