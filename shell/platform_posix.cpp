#include "shell/platform.h"

#include "shell/console.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

std::string folderof(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

bool readable(const std::string& path) { return access(path.c_str(), R_OK) == 0; }

// Runs a program and waits for it. True if it ended well.
bool run(std::vector<std::string> words) {
    std::vector<char*> args;
    for (std::string& word : words) args.push_back(word.data());
    args.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) return false;
    if (child == 0) {
        execvp(args[0], args.data());
        _exit(127);
    }
    int status;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

const char* editorcommand() {
    for (const char* variable : {"VISUAL", "EDITOR"})
        if (const char* command = getenv(variable); command && *command) return command;
    return "vi";
}

} // namespace

std::string programdirectory(const char* word) {
    char path[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    std::string own;
    if (n > 0)
        own.assign(path, size_t(n));
    else if (char* resolved = realpath(word, path))
        own = resolved;
    const std::string beside = folderof(own);
    if (readable(beside + "TOKEN.FIL")) return beside;
    const std::string installed = beside + "../share/tarn/";
    return readable(installed + "TOKEN.FIL") && realpath(installed.c_str(), path) ? std::string(path) + "/"
                                                                                  : beside;
}

size_t stackbytes() {
    constexpr size_t most = size_t(64) << 20, least = size_t(1) << 20;
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0) return least;
    const size_t all = limit.rlim_cur > most ? most : size_t(limit.rlim_cur);
    return all > 2 * least ? all - least : least / 2;
}

unsigned long freememory() {
    const long pages = sysconf(_SC_AVPHYS_PAGES), size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? (unsigned long)pages * (unsigned long)size : 0;
}

void largepages(void* p, size_t bytes) {
#ifdef MADV_HUGEPAGE // a wish that not every system of this kind knows
    const size_t page = size_t(sysconf(_SC_PAGESIZE)), start = (size_t(p) + page - 1) / page * page;
    madvise(reinterpret_cast<void*>(start), size_t(p) + bytes - start, MADV_HUGEPAGE);
#else
    (void)p, (void)bytes;
#endif
}

bool coneditor(const std::string& path) {
    if (!con.screen) return false;
    conreleaseterminal();
    // The command may have words of its own, as in EDITOR="emacs -nw".
    const std::string command = std::string(editorcommand()) + " \"$1\"";
    const bool good = run({"/bin/sh", "-c", command, "sh", path});
    contaketerminal();
    return good;
}

bool conprint(const std::string& path) { return run({"lp", "-s", "--", path}); }
