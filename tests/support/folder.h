/* tests/support/folder.h - a folder of a test's own, and files in it.
 * Owns:    the folder, which is the current one from open() to close(), and all that is left in it.
 * Callers: fixtures whose tests read or write files. */
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

struct testfolder {
    std::filesystem::path path, before;

    void open() {
        before = std::filesystem::current_path();
        char pattern[] = "/tmp/tarntestXXXXXX";
        path = mkdtemp(pattern);
        std::filesystem::current_path(path);
    }
    void close() {
        std::filesystem::current_path(before);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(path);
    }
    std::string named(const std::string& name) const { return (path / name).string(); }
    void write(const std::string& name, const std::string& text) const {
        std::filesystem::remove(path / name); // quicker than writing over it, on some file systems
        std::ofstream(path / name, std::ios::binary) << text;
    }
};

// All bytes of a file; empty if there is none.
inline std::string wholefile(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
