#include "shell/commandline.h"

const char* const usageline = "usage: tarn [--quiet] [--vanilla] [--batch FILE.do | --batch - | --eval "
                              "\"STATEMENTS\"] [-DISPLAY] [DO-FILE]\n";

const char* const helptext =
    "A system for mathematical models: functions, differential equations, fitting, statistics, drawing.\n"
    "\n"
    "  DO-FILE                runs it, then waits for statements; \".do\" is added to the name\n"
    "  -DISPLAY               gives the variable DISPLAY this value, as in -PSL\n"
    "  --batch FILE.do        runs the file and ends, at the first error with status 1; - is standard input\n"
    "  --eval \"STATEMENTS\"    runs the statements and ends, in the same way\n"
    "  --quiet                no banner\n"
    "  --vanilla              neither startup.do nor tarninit.do is run\n"
    "  --help, --version      show this text or the version, and end\n"
    "\n"
    "Within a session HELP explains every statement and function, and EXIT ends.\n";

namespace {

bool isoption(const std::string& word) { return word.starts_with("--"); }

void setrun(commandline& c, runkind run) {
    if (c.run != runkind::session) {
        c.operand = "only one of --batch, --eval, --help and --version can be given";
        run = runkind::wrong;
    }
    c.run = run;
}

// Takes the option at `at` with its operand; at then stands on its last word.
void readoption(commandline& c, const std::vector<std::string>& words, size_t& at) {
    const std::string& word = words[at];
    if (word == "--quiet") {
        c.session.quiet = true;
    } else if (word == "--vanilla") {
        c.session.vanilla = true;
    } else if (word == "--help") {
        setrun(c, runkind::help);
    } else if (word == "--version") {
        setrun(c, runkind::version);
    } else if (word == "--batch" || word == "--eval") {
        setrun(c, word == "--batch" ? runkind::batch : runkind::eval);
        if (c.run == runkind::wrong) return;
        if (at + 1 < words.size()) {
            c.operand = words[++at];
            return;
        }
        c.run = runkind::wrong;
        c.operand = word + (word == "--batch" ? " needs the name of a do-file, or -" : " needs statements");
    } else {
        c.run = runkind::wrong;
        c.operand = "unknown option " + word + "; --help tells all of them";
    }
}

std::string dofileword(std::string word) {
    const bool named = word.size() >= 3 && (word.ends_with(".do") || word.ends_with(".DO"));
    return named ? word : word + ".do";
}

// What is left when the options are gone: the start word, displays, a do-file.
void readrest(sessionoptions& s, const std::vector<std::string>& rest) {
    if (rest.empty()) return;
    s.startmode = rest[0] == "bwi" ? 1 : rest[0] == "bwii" ? 2 : 3;
    for (const std::string& word : rest)
        if (word.starts_with("-")) s.displays.push_back(word.substr(1));
    if (s.startmode == 3 && !rest.back().starts_with("-")) s.dofile = dofileword(rest.back());
}

} // namespace

commandline readcommandline(const std::vector<std::string>& words) {
    commandline c;
    std::vector<std::string> rest;
    for (size_t at = 0; at < words.size() && c.run != runkind::wrong; at++) {
        if (isoption(words[at]))
            readoption(c, words, at);
        else
            rest.push_back(words[at]);
    }
    readrest(c.session, rest);
    c.session.batch = c.run == runkind::batch || c.run == runkind::eval;
    return c;
}
