// helpmake TARN.HLP PAGE.md...: makes the help file from the pages of docs/reference/.
// A page is a chapter; its "##" headings are sections, its "###" headings entries, each a topic under every
// name it shows. It reads only what these pages use of Markdown, and refuses a name that stands twice.

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t WIDTH = 78; // columns of a line of help
constexpr std::size_t OFFSETDIGITS = 8;
constexpr const char* EOL = "\r\n";

struct menuline {
    std::string text, target;
};

// A line with # at its head ends the index, and # parts the fields of a menu: the sign goes by its name,
// which the reader knows.
std::string indexname(const std::string& name) { return name == "#" ? "number sign" : name; }

struct topic {
    int level = 1; // 1 chapter, 2 section, 3 entry
    std::vector<std::string> names;
    std::vector<std::string> lines;
    std::vector<menuline> menu;
};

std::string trimmed(const std::string& s) {
    const auto first = s.find_first_not_of(" \t\r");
    return first == std::string::npos ? "" : s.substr(first, s.find_last_not_of(" \t\r") - first + 1);
}

std::string lowered(std::string s) {
    for (char& c : s) { c = static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
    return s;
}

std::string uppered(std::string s) {
    for (char& c : s) { c = static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }
    return s;
}

// Text without the marks of Markdown: code quotes, emphasis, links (of which the words stay).
std::string plain(const std::string& s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); i++) {
        const auto close = s[i] == '[' ? s.find("](", i) : std::string::npos;
        const auto end = close == std::string::npos ? close : s.find(')', close);
        if (end != std::string::npos) {
            out += plain(s.substr(i + 1, close - i - 1));
            i = end;
        } else if (s[i] == '\\' && i + 1 < s.size() && std::ispunct(static_cast<unsigned char>(s[i + 1]))) {
            out += s[++i];
        } else if (s.compare(i, 2, "**") == 0 && s.find('`') == std::string::npos) {
            i++;
        } else if (s[i] != '`') {
            out += s[i];
        }
    }
    return out;
}

// Names of the system are written in capitals; what is not one stands for what the user puts there.
bool isname(const std::string& word) {
    return !word.empty() && word[0] != '.' &&
           std::none_of(word.begin(), word.end(), [](unsigned char c) { return std::islower(c) != 0; });
}

// The names in a heading such as "SIN(X), COS(X)" or "`MAXITER` *": the words before brackets, blanks and
// "=".
std::vector<std::string> headingnames(const std::string& heading) {
    std::vector<std::string> names;
    std::string word;
    int depth = 0;
    bool taken = false;
    for (const char c : plain(heading) + ",") {
        if (depth == 0 && c == ',') {
            if (isname(word)) { names.push_back(lowered(word)); }
            word.clear();
            taken = false;
            continue;
        }
        depth += (c == '(' || c == '[') - (c == ')' || c == ']');
        const bool letters = !word.empty() && std::isalnum(static_cast<unsigned char>(word.back())) != 0;
        taken = taken || (!word.empty() && (c == '(' || c == '[' || c == ' ' || (c == '=' && letters)));
        if (!taken && c != ' ') { word += c; }
    }
    return names;
}

// A paragraph or list item in lines of the help's width; `indent` before every line but the first.
void wrap(const std::string& text, const std::string& indent, std::vector<std::string>& lines) {
    std::string line;
    for (std::size_t at = 0; at < text.size();) {
        const auto blank = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, blank - at);
        if (!line.empty() && line.size() + 1 + word.size() > WIDTH) {
            lines.push_back(line);
            line = indent + word;
        } else {
            line += (line.empty() || line == indent ? "" : " ") + word;
        }
        at = text.find_first_not_of(' ', blank);
    }
    lines.push_back(line);
}

// Collects the lines of a topic: paragraphs are gathered and wrapped, code and tables stay line by line.
struct gatherer {
    topic* out = nullptr;
    std::string paragraph;
    bool code = false;
    int table = 0;                    // 0 outside tables, 1 in one, 2 in one whose first column gives names
    std::vector<std::string> columns; // headings of the table
    std::vector<topic> rows;          // of tables of names in a section: each is an entry

    void flush() {
        if (!paragraph.empty()) {
            const bool item = paragraph.compare(0, 2, "- ") == 0;
            wrap(plain(paragraph), item ? "  " : "", out->lines);
            paragraph.clear();
        }
    }

    void add(const std::string& line) {
        const std::string s = trimmed(line);
        table = s.empty() || s[0] != '|' ? 0 : table;
        if (s.compare(0, 3, "```") == 0) {
            flush();
            code = !code;
        } else if (code) {
            out->lines.push_back("  " + line);
        } else if (s.empty()) {
            flush();
            if (!out->lines.back().empty()) { out->lines.emplace_back(); }
        } else if (s[0] == '|') {
            flush();
            tablerow(s);
        } else {
            if (s.compare(0, 2, "- ") == 0) { flush(); }
            paragraph += (paragraph.empty() ? "" : " ") + s;
        }
    }

    void tablerow(const std::string& s) {
        if (s.find_first_not_of("|-: ") == std::string::npos) {
            table = table == 0 ? 1 : table; // a header without words
            return;
        }
        std::vector<std::string> cells;
        for (std::size_t at = 1, bar = 1; at < s.size(); at = ++bar) {
            while (bar < s.size() && (s[bar] != '|' || s[bar - 1] == '\\')) { bar++; }
            cells.push_back(trimmed(s.substr(at, bar - at)));
        }
        if (table == 0) {
            table = cells[0] == "Name" ? 2 : 1;
            columns = cells;
            return;
        }
        if (table == 2 && out->level == 2) return rowtopic(cells);
        if (table == 2) {
            const auto names = headingnames(cells[0]);
            out->names.insert(out->names.end(), names.begin(), names.end());
        }
        std::string text;
        for (const std::string& cell : cells) { text += (text.empty() || cell.empty() ? "" : ": ") + cell; }
        wrap(plain(text), "    ", out->lines);
    }

    // An entry of its own: the names, then each cell behind its column's heading.
    void rowtopic(const std::vector<std::string>& cells) {
        topic t;
        t.level = 3;
        t.names = headingnames(cells[0]);
        t.lines = {plain(cells[0]), ""};
        for (std::size_t k = 1; k < cells.size(); k++) {
            if (!cells[k].empty()) { wrap(plain(columns[k] + ": " + cells[k]), "  ", t.lines); }
        }
        t.lines.emplace_back();
        rows.push_back(std::move(t));
    }
};

struct book {
    std::vector<topic> topics;
    std::map<std::string, std::size_t> byname;

    void enter(topic t) {
        for (const std::string& name : t.names) {
            if (byname.emplace(indexname(name), topics.size()).first->second != topics.size()) {
                throw std::runtime_error("two topics are called \"" + name + "\"");
            }
        }
        topics.push_back(std::move(t));
    }
};

// "See: A, B." at the end of an entry becomes its menu.
void seealso(topic& t) {
    while (!t.lines.empty() && t.lines.back().empty()) { t.lines.pop_back(); }
    std::size_t at = t.lines.size();
    while (at > 0 && t.lines[at - 1].compare(0, 5, "See: ") != 0 && !t.lines[at - 1].empty()) { at--; }
    if (at == 0 || t.lines[at - 1].empty()) { return; }
    std::string list;
    for (std::size_t k = at - 1; k < t.lines.size(); k++) { list += t.lines[k] + " "; }
    list = trimmed(list.substr(5));
    if (!list.empty() && list.back() == '.') { list.pop_back(); }
    t.lines.resize(at - 1);
    for (const std::string& name : headingnames(list)) { t.menu.push_back({uppered(name), name}); }
}

void readpage(const std::string& path, book& b) {
    std::ifstream in(path);
    if (!in) { throw std::runtime_error("cannot read " + path); }
    std::vector<topic> found;
    gatherer text;
    const auto endtopic = [&] { // the entries of its tables follow it
        text.flush();
        for (topic& row : text.rows) { found.push_back(std::move(row)); }
        text.rows.clear();
    };
    for (std::string line; std::getline(in, line);) {
        const auto marks = text.code ? 0 : line.find_first_not_of('#');
        if (marks == std::string::npos || marks < 1 || marks > 3 || line[marks] != ' ') {
            if (!found.empty()) { text.add(line); }
            continue;
        }
        if (!found.empty()) { endtopic(); }
        topic t;
        t.level = static_cast<int>(marks);
        const std::string heading = trimmed(line.substr(marks));
        t.names = t.level == 3 ? headingnames(heading) : std::vector<std::string>{lowered(plain(heading))};
        wrap(plain(heading), "", t.lines);
        t.lines.emplace_back();
        found.push_back(std::move(t));
        text.out = &found.back();
    }
    if (found.empty()) { throw std::runtime_error(path + " has no heading"); }
    endtopic();
    std::size_t chapter = 0, section = 0;
    for (std::size_t k = 0; k < found.size(); k++) {
        seealso(found[k]);
        const std::string name = found[k].names.empty() ? "" : found[k].names[0]; // "### =" has none
        const std::string shown = found[k].lines[0];
        if (found[k].level == 2) {
            found[chapter].menu.push_back({shown, name});
            section = k;
        } else if (found[k].level == 3) {
            for (const std::string& each : found[k].names) {
                found[section].menu.push_back({uppered(each), each});
            }
            found[k].menu.push_back({found[section].lines[0], found[section].names[0]});
        }
    }
    for (topic& t : found) {
        if (t.level == 2) { t.menu.push_back({found[chapter].lines[0], found[chapter].names[0]}); }
    }
    for (topic& t : found) { b.enter(std::move(t)); }
}

// The topic that shows every name.
topic indextopic(const book& b) {
    constexpr std::size_t COLUMN = 13;
    topic t;
    t.level = 2;
    t.names = {"index"};
    t.lines = {"Index", "", "HELP with one of these names, or the name alone behind the prompt below.", "",
               ""};
    std::vector<std::string> shown;
    for (const auto& [name, which] : b.byname) {
        std::string word = b.topics[which].level == 3 ? uppered(name) : name;
        if (word.size() < 2 * COLUMN) { shown.push_back(word); }
    }
    for (const std::string& word : shown) {
        const std::size_t width = (word.size() / COLUMN + 1) * COLUMN;
        if (t.lines.back().size() + width > WIDTH + 2) { t.lines.emplace_back(); }
        t.lines.back() += word + std::string(width - word.size(), ' ');
    }
    return t;
}

// The topic that lists the chapters.
topic toptopic(const book& b) {
    topic t;
    t.names = {"top"};
    t.lines = {"TARN", "", "Choose a chapter by its number, or type the name of a statement, a switch or a",
               "function.", ""};
    for (const topic& each : b.topics) {
        if (each.level == 1) { t.menu.push_back({each.lines[0], each.names[0]}); }
    }
    t.menu.push_back({"Index of all names", "index"});
    return t;
}

std::string topicbytes(const topic& t) {
    std::string s;
    for (const std::string& line : t.lines) {
        s += (line.empty() || (line[0] != '{' && line[0] != '#') ? "" : " ") + line + EOL;
    }
    s += std::string("{2") + EOL;
    for (const menuline& entry : t.menu) { s += entry.text + "#" + indexname(entry.target) + EOL; }
    return s + "}" + EOL;
}

std::string padded(std::size_t n) {
    std::string s = std::to_string(n);
    return std::string(OFFSETDIGITS - std::min(OFFSETDIGITS, s.size()), '0') + s;
}

std::string helpfile(const book& b) {
    std::vector<std::string> bodies;
    for (const topic& t : b.topics) { bodies.push_back(topicbytes(t)); }
    std::string head = std::to_string(b.byname.size()) + EOL;
    std::size_t at = head.size();
    for (const auto& [name, which] : b.byname) { at += name.size() + 1 + OFFSETDIGITS + 2; }
    std::vector<std::size_t> offsets;
    for (const std::string& body : bodies) {
        offsets.push_back(at);
        at += body.size();
    }
    for (const auto& [name, which] : b.byname) { head += name + ":" + padded(offsets[which]) + EOL; }
    for (const std::string& body : bodies) { head += body; }
    return head;
}

void checkmenus(const book& b) {
    constexpr std::size_t MAXMENU = 97; // the reader's 100 less its three fixed entries
    std::string wrong;
    for (const topic& t : b.topics) {
        if (t.menu.size() > MAXMENU) { wrong += "\n  \"" + t.names[0] + "\" has more than 97 entries"; }
        for (const menuline& entry : t.menu) {
            if (b.byname.count(indexname(entry.target)) == 0) {
                wrong +=
                    "\n  \"" + t.names[0] + "\" points to \"" + entry.target + "\", which no page describes";
            }
        }
    }
    if (!wrong.empty()) { throw std::runtime_error("the pages do not hold together:" + wrong); }
}

} // namespace

int main(int argc, char** argv) {
    try {
        book b;
        for (int k = 2; k < argc; k++) { readpage(argv[k], b); }
        b.enter(indextopic(b));
        b.enter(toptopic(b));
        checkmenus(b);
        std::ofstream out(argc > 1 ? argv[1] : "", std::ios::binary);
        if (!(out << helpfile(b)).flush()) { throw std::runtime_error("cannot write the help file"); }
    } catch (const std::exception& e) {
        std::cerr << "helpmake: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
