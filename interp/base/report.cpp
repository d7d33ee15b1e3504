#include "interp/base/report.h"

#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

reportstate report;

namespace {

std::string formatted(const char* format, va_list args) {
    char small[1024];
    va_list again;
    va_copy(again, args);
    const int length = vsnprintf(small, sizeof small, format, args);
    std::string text;
    if (length >= int(sizeof small)) {
        text.resize(size_t(length) + 1);
        vsnprintf(text.data(), text.size(), format, again);
        text.resize(size_t(length));
    } else if (length > 0) {
        text.assign(small, size_t(length));
    }
    va_end(again);
    return text;
}

// Notes that something was to be printed or counted while a computation is being tried.
bool heldback() { return report.quiet && (report.held = true); }

void consoletext(const char* text, size_t length) {
    if (heldback()) return;
    if (console.breakpending()) throw recoveryjump{6};
    console.write(text, length);
}

void logandconsole(const char* text, size_t length) {
    if (report.log) fwrite(text, 1, length, report.log);
    consoletext(text, length);
}

void show(const std::string& text) { tarnprinttext(text.data(), text.size()); }

bool warns() { return symtabscalar("WARNSW", 1) != 0; }

// An error must reach the user even while output goes to a listing.
void tellerror(const std::string& text) {
    if (report.listing && !report.capture)
        logandconsole(text.data(), text.size());
    else
        show(text);
    if (report.batch) console.errortext(text.c_str());
}

[[noreturn]] void fail(const std::string& text, const furtherline& more = {}) {
    report.lasterror = text;
    report.explained = !more.text.empty();
    if (heldback()) throw recoveryjump{-1};
    if (!report.recoveryset) conout("%%%%error: setjmp not initialized: exiting...\n");
    report.errors++;
    tellerror(text);
    if (!more.text.empty() && warns()) tellerror("Warning: " + more.text + "\n");
    throw recoveryjump{-1};
}

std::string syntaxhead(int n) { return "##Syntax Error[" + std::to_string(n) + "]: "; }

} // namespace

void tarnprinttext(const char* text, size_t length) {
    if (heldback()) return;
    if (report.capture) {
        report.capture->append(text, length);
        return;
    }
    if (report.listing) {
        fwrite(text, 1, length, report.listing);
        return;
    }
    logandconsole(text, length);
}

void tarnprint(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const std::string text = formatted(format, args);
    va_end(args);
    show(text);
}

void conout(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const std::string text = formatted(format, args);
    va_end(args);
    consoletext(text.data(), text.size());
}

void logout(const char* format, ...) {
    if (!report.log) return;
    va_list args;
    va_start(args, format);
    vfprintf(report.log, format, args);
    va_end(args);
}

void conputc(int c) {
    const char text = char(c);
    consoletext(&text, c == 3 ? 0 : 1);
}

int getkey(bool wait) {
    if (console.breakpending()) throw recoveryjump{6};
    const int key = console.getkey(wait);
    if (console.breakpending()) throw recoveryjump{6};
    return key;
}

void keypoll() {
    if (parser.interrupted) return;
    const int key = getkey(false);
    if (key == 'Q' || key == 'q') parser.interrupted = true;
    if (key == 'R' || key == 'r') parser.reporttoggle = !parser.reporttoggle;
}

void tarnerror(const char* format, ...) {
    std::string text;
    if (format) {
        va_list args;
        va_start(args, format);
        text = "##Error: " + formatted(format, args);
        va_end(args);
    }
    fail(text + "\n");
}

void tarnsyntax(int n, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const std::string text = syntaxhead(n) + formatted(format, args);
    va_end(args);
    fail(text + "\n");
}

furtherline further(const char* format, ...) {
    va_list args;
    va_start(args, format);
    furtherline more{formatted(format, args)};
    va_end(args);
    return more;
}

void tarnerror(const furtherline& more, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const std::string text = "##Error: " + formatted(format, args);
    va_end(args);
    fail(text + "\n", more);
}

void tarnsyntax(const furtherline& more, int n, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const std::string text = syntaxhead(n) + formatted(format, args);
    va_end(args);
    fail(text + "\n", more);
}

void tarnwarn(const char* format, ...) {
    if (heldback() || !warns()) return;
    va_list args;
    va_start(args, format);
    const std::string text = "Warning: " + formatted(format, args) + "\n";
    va_end(args);
    report.explained = true;
    show(text);
    if (report.batch) console.errortext(text.c_str());
}

void argwarn(const char* name) { tarnwarn("function: %s. argument out of range", name); }
void argrange(const char* name) { tarnerror("%s: argument out of range", name); }
void argtype(const char* name) { tarnerror("%s: an expression is of the wrong type", name); }
void argshape(const char* name) { tarnerror("Incorrect row/col shape of an argument of %s\n", name); }

std::string bindname(const char* name, const char* dir, const char* ext) {
    std::string path;
    const bool rooted = *name == '\\' || *name == '/' || *name == '.';
    if (dir && *dir && !rooted) {
        path = dir;
        if (path.back() != '\\' && path.back() != '/') path += '/';
    }
    path += name;
    for (char& c : path)
        if (c == '\\') c = '/';
    const size_t last = path.find_last_of('/');
    if (ext && path.find('.', last == std::string::npos ? 0 : last) == std::string::npos)
        path = path + "." + ext;
    return path;
}

std::string lowered(std::string s) {
    for (char& c : s) c = char(tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string findfile(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code failure;
    if (fs::exists(path, failure)) return path;
    const fs::path asked(path);
    const std::string name = lowered(asked.filename().string());
    const fs::path folder = asked.has_parent_path() ? asked.parent_path() : fs::path(".");
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
        const std::string spelt = entry.path().filename().string();
        if (lowered(spelt) == name) found.push_back(spelt);
    }
    if (found.empty()) return path;
    // Of several the lower-case one, then the first in order: the directory's own order must not decide.
    std::sort(found.begin(), found.end());
    const auto plain = std::find(found.begin(), found.end(), name);
    const std::string& taken = plain != found.end() ? *plain : found.front();
    return asked.has_parent_path() ? (asked.parent_path() / taken).string() : taken;
}

furtherline nomemory() { return {"there is no memory left for it: DELETE what is no longer needed"}; }

namespace {

// What stands in the way of any use of the file; empty if nothing is known to.
std::string obstacle(const std::filesystem::path& path) {
    namespace fs = std::filesystem;
    std::error_code failure;
    if (path.empty()) return "the name of the file is empty";
    if (fs::is_directory(path, failure)) return path.string() + " is a directory";
    const fs::path folder = path.parent_path();
    if (!folder.empty() && !fs::is_directory(folder, failure))
        return "there is no directory " + folder.string();
    return {};
}

} // namespace

furtherline notreadable(const std::string& path) {
    std::error_code failure;
    const std::string known = obstacle(path);
    if (!known.empty()) return {known};
    if (std::filesystem::exists(path, failure)) return {"the file is there, but cannot be read"};
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return {"there is no such file in " + (folder.empty() ? "the working directory" : folder)};
}

furtherline notwritable(const std::string& path) {
    const std::string known = obstacle(path);
    return {known.empty() ? "the file or its directory may not be written to" : known};
}
