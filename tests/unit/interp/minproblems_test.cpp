// The published problems of minimisation in tests/data/minproblems.txt, as a user would type them.
#include "support/livesession.h"

#include <cmath>
#include <sstream>

namespace {

struct minimumproblem {
    std::string name, statements, start, call, runs = "near far dnear dfar";
    std::vector<double> least;
    double within = 1e-4;
};

std::vector<double> numbers(const std::string& text) {
    std::istringstream in(text);
    std::vector<double> v;
    for (double x; in >> x;) v.push_back(x);
    return v;
}

std::vector<minimumproblem> problems() {
    std::ifstream file(std::string(TESTDATADIR) + "/minproblems.txt");
    std::vector<minimumproblem> all;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::string word = line.substr(0, line.find(' ')), rest = line.substr(line.find(' ') + 1);
        if (word == "problem")
            all.emplace_back().name = rest;
        else if (word == "start")
            all.back().start = rest;
        else if (word == "call")
            all.back().call = rest;
        else if (word == "runs")
            all.back().runs = rest;
        else if (word == "least")
            all.back().least = numbers(rest);
        else if (word == "within")
            all.back().within = std::stod(rest);
        else
            all.back().statements += line + "\n";
    }
    return all;
}

// Every variable times ten.
std::string farther(const std::string& call) {
    std::istringstream in(call);
    std::string statements;
    for (std::string v; std::getline(in, v, ',');)
        if (v != "QQ" && v != "CM") statements += v + " = 10*" + v + "\n";
    return statements;
}

class MinimumProblems : public LiveSession {
protected:
    void SetUp() override {
        LiveSession::SetUp();
        start();
    }
    // The value that was found; what was said, in `output`.
    double minimum(const minimumproblem& p, bool isfar, bool symbolic) {
        run("DELETEALL\nNAMESW = 1; WARNSW = 0; REPTSW = 512; SYMDSW = " + std::to_string(symbolic) + "\n" +
            p.statements + p.start + "\n" + (isfar ? farther(p.call) : ""));
        output = run("ZQ = MINIMIZE(F," + p.call + ")");
        return scalar("ZQ");
    }
    std::string output;
};

bool among(double value, const minimumproblem& p) {
    for (double least : p.least)
        if (std::fabs(value - least) <= p.within * std::max(std::fabs(least), 1e-3)) return true;
    return false;
}

TEST_F(MinimumProblems, AreSolved) {
    const std::vector<minimumproblem> all = problems();
    ASSERT_GT(all.size(), 60u);
    for (const minimumproblem& p : all)
        for (const char* const name : {"near", "far", "dnear", "dfar"}) {
            if ((" " + p.runs + " ").find(std::string(" ") + name + " ") == std::string::npos) continue;
            const double value = minimum(p, std::string(name).find("far") != std::string::npos, *name != 'd');
            EXPECT_TRUE(among(value, p)) << p.name << ", " << name << ": " << value << output;
            EXPECT_NE(output.find("ecode = "), std::string::npos) << p.name;
            EXPECT_EQ(output.find("running out of iterations"), std::string::npos) << p.name << output;
        }
}

} // namespace
