// Any bytes as a save file: nothing crashes, and an object that was there stands.
#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/session.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

bool start() {
    char pattern[] = "/tmp/tarnfuzzXXXXXX";
    if (!mkdtemp(pattern)) abort();
    std::filesystem::current_path(pattern);
    sessionoptions options;
    options.startmode = 2;
    options.programpath = TESTDATADIR "/../../data/";
    options.quiet = options.vanilla = true;
    if (sessionstart(options) != 0) abort();
    fclose(report.log);
    report.log = nullptr;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool started = start();
    if (!started) return 0;
    FILE* file = fopen("F.SAV", "wb");
    if (!file || fwrite(data, 1, size, file) != size || fclose(file) != 0) abort();
    sessionexecute("KEPTOBJECT = 5\n");
    sessionexecute("USEOVER F\n");
    const int kept = symtablookup("KEPTOBJECT");
    if (kept <= 0 || sym(kept).type <= UNKNOWN) abort();
    sessionexecute("SAVEOVER IN G\n");
    sessionexecute("DELETEALL\n");
    return 0;
}
