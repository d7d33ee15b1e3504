#include "shell/helpview.h"

#include "interp/base/report.h"
#include "shell/console.h"
#include "shell/helpfile.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr size_t PAGELINES = 23;
constexpr int MENUWIDTH = 71;
constexpr size_t MAXCHOICE = 27; // characters of an answer

struct helpview {
    helpbook book;
    std::vector<std::string> history; // topics seen, the present one last
    helptopic topic;
    size_t pages = 1;
};

// The first three choices of each menu.
const std::vector<helpchoice> fixed = {{"top level help", "top"}, {"last topic", "last"}, {"quit", "quit"}};

std::vector<helpchoice> choicesof(const helptopic& topic) {
    std::vector<helpchoice> all = fixed;
    all.insert(all.end(), topic.menu.begin(), topic.menu.end());
    return all;
}

// A line with its tabs as blanks.
std::string expanded(const std::string& line) {
    std::string out;
    for (const char c : line) {
        if (c == '\t')
            out.append(8 - out.size() % 8, ' ');
        else
            out += c;
    }
    return out;
}

size_t pagelines() { return std::min(PAGELINES, size_t(std::max(4, con.rows - 2))); }

size_t menulines(const helptopic& topic) {
    const size_t columns = size_t(topic.columns);
    return 2 + (topic.menu.size() + columns - 1) / columns;
}

// The menu stands below the last page, or has a page of its own.
size_t countpages(const helptopic& topic) {
    const size_t height = pagelines(),
                 pages = std::max<size_t>(1, (topic.lines.size() + height - 1) / height);
    const size_t left = pages * height - topic.lines.size();
    return pages + (left < menulines(topic) && !topic.lines.empty());
}

void showlines(const helpview& v, size_t page) {
    conclear();
    const size_t height = pagelines(), from = page * height;
    for (size_t k = from; k < std::min(from + height, v.topic.lines.size()); k++)
        conout("%s\n", expanded(v.topic.lines[k]).c_str());
}

void showentry(size_t number, const std::string& text, int width) {
    const int room = width - (number > 9 ? 1 : 0);
    conout("%zu: %-*.*s", number, std::max(1, room - 3), std::max(1, room - 3), text.c_str());
}

void showmenu(const helptopic& topic) {
    conattr("36");
    for (size_t k = 0; k < fixed.size(); k++) showentry(k + 1, fixed[k].text, MENUWIDTH / 3);
    conout("\n");
    conattr("");
    const int columns = topic.columns;
    for (size_t k = 0; k < topic.menu.size(); k++) {
        showentry(k + 4, topic.menu[k].text, MENUWIDTH / columns);
        if (int(k % size_t(columns)) == columns - 1 || k + 1 == topic.menu.size()) conout("\n");
    }
}

const char* footer(size_t page, size_t pages) {
    const bool lastbutone = page + 2 >= pages;
    if (page == 0)
        return lastbutone ? " Press PGDN for next page: " : " Press PGDN=next page or END=end topic: ";
    if (page == 1)
        return lastbutone ? " END=end topic; HOME=restart topic: "
                          : " PGDN=down 1 page; HOME=restart topic;END=end topic: ";
    return lastbutone ? " END=end topic; HOME=restart topic; PGUP=up 1 page: "
                      : " END=end topic; HOME=restart topic; PGUP=up 1 page; PGDN=down 1 page:";
}

// A key; what ends the reading (control-C, the end of the terminal) becomes KEYESC.
int helpkey() {
    for (;;) {
        const int key = conkey(true);
        if (key == KEYBREAK || key == KEYEND) return KEYESC;
        if (key != KEYRESIZED) return key;
    }
}

// The answer to the prompt, or the key Home or PgUp; ESC and an empty line give "".
std::string readchoice(int& key) {
    std::string text;
    for (;;) {
        key = helpkey();
        if (key == KEYHOME || key == KEYPGUP) return text;
        if (key == KEYESC) return "";
        if (key == KEYENTER) {
            conout("\n");
            return text;
        }
        if ((key == 8 || key == 127) && !text.empty()) {
            text.pop_back();
            conout("\b \b");
        } else if (key >= ' ' && key < 127 && text.size() < MAXCHOICE) {
            text += char(key);
            conout("%c", key);
        }
    }
}

const char* promptof(size_t pages) {
    if (pages < 2) return "Enter choice: ";
    return pages == 2 ? "Enter choice (or HOME=restart topic): "
                      : "Enter choice (or PGUP=up 1 page or HOME=restart topic): ";
}

bool maybetopic(const std::string& text) {
    const auto c = static_cast<unsigned char>(text[0]);
    return isalpha(c) || std::string("+-*/^<>=&'#!:?_").find(char(c)) != std::string::npos;
}

// The topic that an answer stands for; "" if it is none, after saying so.
std::string chosen(const helpview& v, const std::string& answer) {
    const auto all = choicesof(v.topic);
    if (isdigit(static_cast<unsigned char>(answer[0]))) {
        const unsigned long n = strtoul(answer.c_str(), nullptr, 10);
        if (n >= 1 && n <= all.size()) return all[n - 1].target;
        conout(" Present choice not available. Try again.\n");
        return "";
    }
    if (maybetopic(answer)) return answer;
    conout(" Illegal topic name. Try again.\n");
    return "";
}

void loadtopic(helpview& v) {
    const long offset = helpfind(v.book, v.history.back());
    v.topic = offset > 0 ? helpread(v.book, size_t(offset)) : helpnear(v.book, v.history.back());
    v.pages = countpages(v.topic);
}

// Where a choice leads; false when the help is left.
bool follow(helpview& v, const std::string& target) {
    if (target == "quit") return false;
    if (target == "last") {
        v.history.pop_back();
        return !v.history.empty();
    }
    v.history.push_back(target);
    return true;
}

// The prompt below the menu; false when the help is left, else the page or the topic has changed.
bool prompt(helpview& v, size_t& page) {
    for (;;) {
        conout("%s", promptof(v.pages));
        conflush();
        int key = 0;
        const std::string answer = readchoice(key);
        if (key == KEYHOME || key == KEYPGUP) {
            page = key == KEYHOME || page == 0 ? 0 : page - 1;
            return true;
        }
        if (answer.empty()) return false;
        const std::string target = chosen(v, answer);
        if (target.empty()) continue;
        if (!follow(v, target)) return false;
        loadtopic(v);
        page = 0;
        return true;
    }
}

// A page that others follow: the footer, and where its key leads.
size_t turnpage(const helpview& v, size_t page) {
    conattr("36");
    conout("%s", footer(page, v.pages));
    conattr("");
    conflush();
    switch (helpkey()) {
    case KEYHOME: return 0;
    case KEYPGUP: return page > 0 ? page - 1 : 0;
    case KEYENDKEY:
    case KEYESC: return v.pages - 1;
    default: return page + 1;
    }
}

void browse(helpview& v) {
    size_t page = 0;
    for (;;) {
        showlines(v, page);
        if (page + 1 < v.pages) {
            page = turnpage(v, page);
            continue;
        }
        showmenu(v.topic);
        if (!prompt(v, page)) return;
    }
}

void writetopic(const helptopic& topic) {
    for (const std::string& line : topic.lines) conout("%s\n", expanded(line).c_str());
    std::string list;
    for (const helpchoice& c : topic.menu) list += (list.empty() ? "See: " : ", ") + c.text;
    conout("%s\n", list.c_str());
}

struct savedscreen {
    savedscreen() { conscreensave(); }
    ~savedscreen() { conscreenrestore(); }
};

} // namespace

bool helpbrowse(const char* topic) {
    helpview v;
    if (!helpopen(v.book, findfile(bindname("TARN.HLP", report.tarnpath.c_str(), "")))) return false;
    v.history.emplace_back(topic);
    loadtopic(v);
    if (!con.screen) {
        writetopic(v.topic);
        return true;
    }
    const savedscreen saved;
    browse(v);
    return true;
}
