#include "interp/diskfiles.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// Follows links, so that the file at their end is replaced and not the link.
std::string linkend(const std::string& path) {
    std::error_code fault;
    const fs::path end = fs::canonical(path, fault);
    return fault ? path : end.string();
}

bool mayreplace(const std::string& path) {
    FILE* old = fopen(path.c_str(), "r+b");
    if (old) fclose(old);
    return old != nullptr;
}

void likeold(const newfile& f) {
    std::error_code fault;
    const fs::file_status old = fs::status(f.target, fault);
    if (!fault && fs::is_regular_file(old)) fs::permissions(f.beside, old.permissions(), fault);
}

} // namespace

bool newfileopen(newfile& f, const std::string& path) {
    std::error_code fault;
    f.target = linkend(path);
    const fs::file_status old = fs::status(f.target, fault);
    if (fs::exists(old) && !fs::is_regular_file(old)) {
        if (!fs::is_directory(old)) f.file = fopen(f.target.c_str(), "wb");
        return f.file != nullptr;
    }
    if (fs::exists(old) && !mayreplace(f.target)) return false;
    f.beside = f.target + ".new";
    fs::remove(f.beside, fault); // left by a session that was killed
    f.file = fopen(f.beside.c_str(), "wbx");
    return f.file != nullptr;
}

bool newfilekeep(newfile& f) {
    const bool written = !ferror(f.file);
    const bool closed = fclose(f.file) == 0;
    f.file = nullptr;
    std::error_code fault;
    if (f.beside.empty()) return written && closed;
    if (written && closed) {
        likeold(f);
        fs::rename(f.beside, f.target, fault);
        if (!fault) return true;
    }
    fs::remove(f.beside, fault);
    return false;
}

newfile::~newfile() {
    if (!file) return;
    fclose(file);
    std::error_code fault;
    if (!beside.empty()) fs::remove(beside, fault);
}
