// FIT on data sets with certified answers, from both of their starting points.
#include "unit/interp/livesession.h"

#include <cmath>
#include <sstream>

namespace {

class Fit : public LiveSession {
protected:
    void SetUp() override {
        LiveSession::SetUp();
        start();
    }
};

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
    std::ifstream in(TESTDATADIR "/nist/index.txt");
    std::vector<certifiedset> sets;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
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

TEST_F(Fit, CertifiedRegressions) {
    for (const certifiedset& set : certifiedsets())
        for (int from : {0, 1}) {
            std::string list, text = readstatement(set) + set.statement + "\nLSQRPT = 0\n";
            for (const certifiedparameter& p : set.parameters) {
                text += p.name + " = " + p.start[from] + "\n";
                list += (list.empty() ? "" : ",") + p.name;
            }
            run(text + "FIT (" + list + "), F TO M\n");
            const double least = set.leastdigits;
            for (size_t k = 0; k < set.parameters.size(); k++) {
                const certifiedparameter& p = set.parameters[k];
                run("ERROR1 = STDEST(" + std::to_string(k + 1) + ")");
                EXPECT_GE(digits(scalar(p.name.c_str()), p.value), least)
                    << set.name << " " << p.name << " from " << from;
                EXPECT_GE(digits(scalar("ERROR1"), p.error), least)
                    << set.name << " error of " << p.name << " from " << from;
                run("DELETE " + p.name);
            }
            EXPECT_GE(digits(scalar("SOSQ"), set.sum), least) << set.name << " from " << from;
        }
}

} // namespace
