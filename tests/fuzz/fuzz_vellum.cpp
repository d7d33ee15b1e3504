// Any bytes as a saved picture or patch: nothing crashes, and what was read plays into pixels.
#include "vellum/vellum.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

struct fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool start() {
    char pattern[] = "/tmp/vellumfuzzXXXXXX";
    if (!mkdtemp(pattern)) abort();
    std::filesystem::current_path(pattern);
    return true;
}

void playall() {
    for (vlpicture* p : DUSE("F", VLTABLES | VLKEEPPALETTE, nullptr)) DPSHOW(p, nullptr);
    DSAVE("G", 0);
    DUSE("G", 0, nullptr);
}

void rewrite() {
    vlpatch* patch = DPATCHREAD("F", VLCHILDREN | VLTABLES | VLKEEPPALETTE, nullptr);
    DSETPATCH(DSCREENPATCH(), patch, 3, 3, -1);
    DPATCHWRITE(patch, "G", 0);
    DPATCHREAD("G", VLCHILDREN, nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool started = start();
    if (!started || size == 0) return 0;
    FILE* file = fopen("F", "wb");
    if (!file || fwrite(data + 1, 1, size - 1, file) != size - 1 || fclose(file) != 0) abort();
    DERROR([](const char* message) { throw fault(message); });
    DDEVICE("MEM")->depth = 4;
    DINI("MEM", nullptr, nullptr, 1, 1, 64, 64);
    DGET(DSCREENPATCH(), 1);
    try {
        if (data[0] & 1) {
            playall();
        } else {
            rewrite();
        }
    } catch (const fault&) {}
    DQUIT(0);
    return 0;
}
