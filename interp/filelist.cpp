#include "interp/filelist.h"

#include "interp/base/report.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr size_t LINEPIECE = 80; // characters of a longer line that are printed together

struct fileclose {
    void operator()(FILE* f) const { fclose(f); }
};
using fileptr = std::unique_ptr<FILE, fileclose>;

// Lines are read from regular files alone: a device need never end.
fileptr opentext(const std::string& path) {
    std::error_code failure;
    if (!fs::is_regular_file(path, failure)) return nullptr;
    return fileptr(fopen(path.c_str(), "rb"));
}

// The log grows by what is typed of it.
bool islog(const std::string& path) {
    std::error_code failure;
    return report.log && fs::equivalent(path, "tarn.log", failure);
}

void typelines(FILE* f) {
    std::string line;
    const auto print = [&] {
        tarnprint("%s\n", line.c_str());
        line.clear();
    };
    for (int c; (c = getc(f)) != EOF;) {
        if (c == '\r' || c == 0) continue;
        if (c == '\n') {
            print();
            continue;
        }
        if (line.size() == LINEPIECE) print();
        line += char(c);
    }
    if (!line.empty()) print();
}

// * any text, ? any one character.
bool matches(std::string_view pattern, std::string_view name) {
    size_t p = 0, n = 0, star = std::string_view::npos, from = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            from = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            p++;
            n++;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++from;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::vector<std::string> filesof(const std::string& path) {
    const size_t cut = path.find_last_of('/');
    const std::string directory = cut == std::string::npos ? "." : path.substr(0, cut + 1);
    const std::string pattern = cut == std::string::npos ? path : path.substr(cut + 1);
    std::vector<std::string> found;
    std::error_code failure;
    for (fs::directory_iterator it(directory, failure), end; !failure && it != end; it.increment(failure)) {
        const std::string name = it->path().filename().string();
        if (name[0] == '.' && pattern[0] != '.') continue; // hidden, as to a shell
        if (matches(pattern, name)) found.push_back(name);
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool listfiles(const std::string& path) {
    tarnprint("     files of the form: %s\n", path.c_str());
    const std::vector<std::string> found = filesof(path);
    for (const std::string& name : found) tarnprint("     %s\n", name.c_str());
    return !found.empty();
}

bool isdirectory(const std::string& path) {
    std::error_code failure;
    return path.empty() || path.back() == '/' || fs::is_directory(path, failure);
}

// The path of a name; what was typed without quotes stands in capitals, and the file may be in lower case.
std::string pathof(const std::string& name, bool asgiven) {
    const std::string first = bindname(name.c_str(), report.filedir.c_str(), nullptr);
    const std::string second = bindname(lowered(name).c_str(), report.filedir.c_str(), nullptr);
    std::error_code failure;
    if (asgiven) return fs::exists(first, failure) || !fs::exists(second, failure) ? first : second;
    return fs::exists(second, failure) || !fs::exists(first, failure) ? second : first;
}

} // namespace

void typefile(const std::string& name, bool asgiven) {
    const std::string path = pathof(name, asgiven);
    if (lowered(name) == "tarn.log" || islog(path)) return tarnprint(" unable to type open file: tarn.log\n");
    const fileptr f = opentext(path);
    if (!f) return tarnprint(" file: %s not found\n", path.c_str());
    tarnprint("     file: %s\n", path.c_str());
    typelines(f.get());
}

void typedirectory(const std::string& name, bool asgiven) {
    const std::string path =
        name.empty() ? bindname("", report.filedir.c_str(), nullptr) : pathof(name, asgiven);
    if (!isdirectory(path) && listfiles(path)) return;
    const bool separated = path.empty() || path.back() == '/';
    if (!listfiles(path + (separated ? "*" : "/*"))) tarnprint("no such files\n");
}
