#include "shell/helpfile.h"

#include "interp/base/report.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

constexpr size_t MAXMENU = 97;               // entries of a topic's menu, the three fixed ones apart
constexpr size_t FORWARDS = 32, IN_ALL = 62; // choices shown for a name that is not there
constexpr long MAXTOPICS = 100000;

// The line at pos without its end (carriage return, line feed); pos moves behind it.
std::string lineat(const std::string& bytes, size_t& pos) {
    const size_t end = std::min(bytes.find('\n', pos), bytes.size());
    std::string line = bytes.substr(pos, end - pos);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    pos = std::min(end + 1, bytes.size());
    return line;
}

bool beginsmenu(const std::string& line) {
    return line.size() >= 2 && line[0] == '{' && isdigit(static_cast<unsigned char>(line[1]));
}

void readmenu(const helpbook& book, size_t pos, helptopic& topic) {
    while (pos < book.bytes.size() && topic.menu.size() < MAXMENU) {
        const std::string line = lineat(book.bytes, pos);
        if (!line.empty() && line[0] == '}') return;
        const size_t mark = line.rfind('#');
        if (mark != std::string::npos && mark > 0)
            topic.menu.push_back({line.substr(0, mark), line.substr(mark + 1)});
    }
}

} // namespace

bool helpopen(helpbook& book, const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    book.bytes.assign(std::istreambuf_iterator<char>(in), {});
    book.index.clear();
    size_t pos = 0;
    const long count = std::min(strtol(lineat(book.bytes, pos).c_str(), nullptr, 10), MAXTOPICS);
    for (long k = 0; k < count && pos < book.bytes.size(); k++) {
        const std::string line = lineat(book.bytes, pos);
        if (!line.empty() && line[0] == '#') break;
        const size_t colon = line.rfind(':');
        if (colon == std::string::npos) continue;
        const long offset = strtol(line.c_str() + colon + 1, nullptr, 10);
        if (offset > 0 && size_t(offset) < book.bytes.size())
            book.index.emplace_back(line.substr(0, colon), size_t(offset));
    }
    return true;
}

long helpfind(const helpbook& book, const std::string& name) {
    const auto wanted = name == "#" ? "number sign" : lowered(name); // as the index spells it
    const auto place =
        std::lower_bound(book.index.begin(), book.index.end(), wanted,
                         [](const auto& entry, const std::string& s) { return entry.first < s; });
    if (place != book.index.end() && place->first == wanted) return long(place->second);
    return -long(place - book.index.begin()) - 1;
}

helptopic helpread(const helpbook& book, size_t offset) {
    helptopic topic;
    bool head = true;
    for (size_t pos = offset; pos < book.bytes.size();) {
        std::string line = lineat(book.bytes, pos);
        if (head && !line.empty() && line[0] == '#') continue;
        head = false;
        if (beginsmenu(line)) {
            topic.columns = std::clamp(line[1] - '0', 1, 4);
            readmenu(book, pos, topic);
            break;
        }
        topic.lines.push_back(std::move(line));
    }
    return topic;
}

helptopic helpnear(const helpbook& book, const std::string& name) {
    helptopic topic;
    topic.columns = 3;
    topic.lines = {"Choice <" + name + "> not found in helpfile. "};
    const std::string start = lowered(name).substr(0, 2);
    const auto alike = [&](size_t k) { return book.index[k].first.compare(0, start.size(), start) == 0; };
    const long found = helpfind(book, name);
    const size_t place = found < 0 ? size_t(-found - 1) : 0;
    const auto take = [&](size_t k) { topic.menu.push_back({book.index[k].first, book.index[k].first}); };
    for (size_t k = place; k < book.index.size() && topic.menu.size() <= FORWARDS && alike(k); k++) take(k);
    for (size_t k = place; k-- > 0 && topic.menu.size() <= IN_ALL && alike(k);) take(k);
    return topic;
}
