// FIT on data sets with certified answers, from both of their starting points.
#include "support/datarows.h"
#include "support/livesession.h"

#include <cmath>
#include <regex>

namespace {

struct certifiedparameter {
    std::string name, start[2];
    double value, error;
};

struct certifiedset {
    std::string name, file, rows, order, statement;
    std::vector<certifiedparameter> parameters;
    double sum = 0, leastdigits = 0;
};

std::vector<std::string> cellsof(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream in(line);
    for (std::string cell; std::getline(in, cell, '|');) {
        const size_t from = cell.find_first_not_of(' ');
        cells.push_back(cell.substr(from, cell.find_last_not_of(' ') - from + 1));
    }
    return cells;
}

std::vector<certifiedset> certifiedsets() {
    std::vector<certifiedset> sets;
    for (const std::string& line : datarows("nist/index.txt")) {
        const std::vector<std::string> cells = cellsof(line);
        certifiedset set{cells[0], cells[1], cells[2], cells[3], cells[4], {}, 0, 0};
        std::istringstream(cells.back()) >> set.sum >> set.leastdigits;
        for (size_t k = 5; k + 1 < cells.size(); k++) {
            std::istringstream cell(cells[k]);
            certifiedparameter p;
            cell >> p.name >> p.start[0] >> p.start[1] >> p.value >> p.error;
            set.parameters.push_back(p);
        }
        sets.push_back(set);
    }
    return sets;
}

// READ of all columns, then those wanted in their order.
std::string readstatement(const certifiedset& set) {
    std::istringstream order(set.order);
    std::string joined, column;
    int count = 0;
    while (order >> column) { joined += (count++ ? " &' " : "") + ("(RAW COL " + column + ")"); }
    return "RAW = READ(\"" TESTDATADIR "/nist/" + set.file + "\"," + set.rows + "," + std::to_string(count) +
           ")\nM = " + joined + "\n";
}

double digits(double value, double certified) {
    if (certified == 0) return value == 0 ? 16 : -std::log10(std::fabs(value));
    const double off = std::fabs(value - certified) / std::fabs(certified);
    return off == 0 ? 16 : -std::log10(off);
}

class Fit : public StartedSession {
protected:
    void expectdigits(const certifiedset& set, const std::string& how, double least = 16) {
        least = std::min(least, set.leastdigits);
        for (size_t k = 0; k < set.parameters.size(); k++) {
            const certifiedparameter& p = set.parameters[k];
            run("ERROR1 = STDEST(" + std::to_string(k + 1) + ")");
            EXPECT_GE(digits(scalar(p.name.c_str()), p.value), least) << set.name << " " << p.name << how;
            EXPECT_GE(digits(scalar("ERROR1"), p.error), least) << set.name << " error of " << p.name << how;
        }
        EXPECT_GE(digits(scalar("SOSQ"), set.sum), least) << set.name << how;
    }
};

std::string startvalues(const certifiedset& set, int from) {
    std::string text;
    for (const certifiedparameter& p : set.parameters) text += p.name + " = " + p.start[from] + "\n";
    return text;
}

std::string parameterlist(const certifiedset& set) {
    std::string list;
    for (const certifiedparameter& p : set.parameters) list += (list.empty() ? "" : ",") + p.name;
    return list;
}

TEST_F(Fit, CertifiedRegressions) {
    for (const certifiedset& set : certifiedsets())
        for (int from : {0, 1}) {
            run(readstatement(set) + set.statement + "\nLSQRPT = 0\n" + startvalues(set, from) + "FIT (" +
                parameterlist(set) + "), F TO M\n");
            expectdigits(set, " from " + std::to_string(from));
            for (const certifiedparameter& p : set.parameters) run("DELETE " + p.name);
        }
}

// A weight that is the same for all rows, but not for all parameters, changes neither the answers nor their
// errors; tries of the careful search that are given up leave it as it was where the best one ended.
TEST_F(Fit, WeightsFollowTheParametersThroughEveryTry) {
    for (const char* factor : {"(2+SIN(B1))", "(2+COS(B1/100))", "(3+2*SIN(B2))"}) {
        run("LSQRPT = 0; MATHEX = 0; FUNCTION W(D,I) = 1/" + std::string(factor));
        int retried = 0;
        for (const certifiedset& set : certifiedsets()) {
            if (set.name != "MGH10" && set.name != "MGH17" && set.name != "BoxBOD" && set.name != "Eckerle4")
                continue;
            const std::string said = run(readstatement(set) + set.statement + "\n" + startvalues(set, 0) +
                                         "FIT (" + parameterlist(set) + "), F TO M WITH WEIGHT W\n");
            retried += said.find("more careful one") != std::string::npos;
            run("SOSQ = SOSQ*" + std::string(factor));
            expectdigits(set, std::string(" divided by ") + factor, 6);
            for (const certifiedparameter& p : set.parameters) run("DELETE " + p.name);
        }
        EXPECT_GE(retried, 3) << factor;
    }
}

// Numeric derivatives lead the search elsewhere from the first starts of some; where it ends, the digits are
// the same.
TEST_F(Fit, NumericDerivativesEndWithTheDigitsOfSymbolicOnes) {
    run("LSQRPT = 0; SYMDSW = 0");
    for (const certifiedset& set : certifiedsets()) {
        run(readstatement(set) + set.statement + "\n" + startvalues(set, 1) + "FIT (" + parameterlist(set) +
            "), F TO M\n");
        expectdigits(set, " without symbolic derivatives");
        for (const certifiedparameter& p : set.parameters) run("DELETE " + p.name);
    }
}

// The parameters as cells of a column: B2 becomes P(2), or P(3) where they count from 0.
TEST_F(Fit, AMatrixOfParametersEndsWithTheSameDigits) {
    run("LSQRPT = 0");
    for (const certifiedset& set : certifiedsets()) {
        std::string statement = set.statement, text = readstatement(set), list;
        for (size_t k = set.parameters.size(); k-- > 0;) {
            const certifiedparameter& p = set.parameters[k];
            statement =
                std::regex_replace(statement, std::regex(p.name + "\\b"), "P(" + std::to_string(k + 1) + ")");
            list = p.start[1] + (list.empty() ? "" : ",") + list;
        }
        run(text + statement + "\nP = LIST(" + list + ")\nFIT (P), F TO M\n");
        for (size_t k = 0; k < set.parameters.size(); k++)
            run(set.parameters[k].name + " = P(" + std::to_string(k + 1) + ")");
        expectdigits(set, " as a matrix");
        for (const certifiedparameter& p : set.parameters) run("DELETE " + p.name);
    }
}

} // namespace
