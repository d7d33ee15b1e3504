#include "shell/logview.h"

#include "shell/console.h"

#include <algorithm>

namespace {

constexpr size_t LINEROOM = 80, TAKEROOM = 78; // characters
constexpr size_t PAGEUP = 22, PAGEDOWN = 28, NEAREND = 26;

// Bytes of the first n characters.
size_t bytesof(const std::string& text, size_t from, size_t n) {
    size_t pos = from;
    while (n-- > 0 && pos < text.size()) concharacter(text.data(), text.size(), pos);
    return pos - from;
}

} // namespace

logview logviewmake(const std::string& log) {
    logview v;
    size_t from = 0;
    while (from < log.size()) {
        const size_t end = std::min(log.find('\n', from), log.size());
        std::string line = log.substr(from, end - from);
        while (!line.empty() && line.back() == '\r') line.pop_back();
        size_t part = 0;
        do {
            const size_t bytes = bytesof(line, part, LINEROOM);
            v.lines.push_back(line.substr(part, bytes));
            part += bytes;
        } while (part < line.size());
        from = end + 1;
    }
    if (v.lines.empty()) v.lines.emplace_back();
    v.at = v.lines.size() - 1;
    return v;
}

viewresult logviewkey(logview& v, int key) {
    const size_t last = v.lines.size() - 1;
    switch (key) {
    case KEYUP: v.at -= v.at > 0; return viewresult::going;
    case KEYDOWN:
        if (v.at == last) return viewresult::leave;
        v.at++;
        return viewresult::going;
    case KEYPGUP: v.at -= std::min(v.at, PAGEUP); return viewresult::going;
    case KEYPGDN:
        if (last - v.at < NEAREND) return viewresult::leave;
        v.at = std::min(v.at + PAGEDOWN, last);
        return viewresult::going;
    case KEYHOME: v.at = 0; return viewresult::going;
    case KEYLEFT: v.column = std::max(1, v.column - 1); return viewresult::going;
    case KEYRIGHT: v.column = std::min(int(LINEROOM), v.column + 1); return viewresult::going;
    case KEYINSERT: return viewresult::take;
    case KEYENDKEY:
    case KEYENTER:
    case KEYESC: return viewresult::leave;
    default: return key >= ' ' && key < 256 ? viewresult::leavekey : viewresult::going;
    }
}

std::string logviewline(const logview& v) {
    std::string line = v.lines[v.at];
    if (line.size() >= 2 && (line[0] == '*' || line[0] == ':' || line[0] == '>') && line[1] == ' ')
        line.erase(0, 2);
    return line.substr(0, bytesof(line, 0, TAKEROOM));
}

size_t logviewtop(const logview& v, size_t oldtop, size_t height) {
    if (v.at < oldtop) return v.at;
    return v.at >= oldtop + height ? v.at + 1 - height : oldtop;
}
