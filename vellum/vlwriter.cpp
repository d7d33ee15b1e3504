#include "vellum/vlwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

vlwriter::vlwriter(const char* name, void (*onfailure)())
    : file(fopen(name, "wb")), failed(onfailure), block(new char[room]) {}

vlwriter::~vlwriter() {
    if (file) fclose(file);
}

void vlwriter::fail() {
    broken = true;
    failed();
}

void vlwriter::drain() {
    const size_t count = used;
    used = 0;
    if (!broken && fwrite(block.get(), 1, count, file) != count) fail();
}

void vlwriter::close() {
    drain();
    FILE* done = file;
    file = nullptr;
    if (fclose(done) != 0 && !broken) fail();
}

void vlwriter::text(std::string_view s) {
    while (!s.empty()) {
        if (used == room) drain();
        const size_t piece = std::min(room - used, s.size());
        memcpy(block.get() + used, s.data(), piece);
        used += piece;
        s.remove_prefix(piece);
    }
}

void vlwriter::integer(long v) {
    char* at = place();
    used += size_t(std::to_chars(at, at + spare, v).ptr - at);
}

void vlwriter::rounded(double v) {
    constexpr double most = 2147483647;
    integer(v != v ? 0 : std::lrint(std::clamp(v, -most, most)));
}

void vlwriter::general(double v) {
    char* at = place();
    used += size_t(std::to_chars(at, at + spare, v, std::chars_format::general, 6).ptr - at);
}

void vlwriter::fixed(double v, int digits) {
    v = std::clamp(v, -1e30, 1e30);
    char* at = place();
    used += size_t(std::to_chars(at, at + spare, v, std::chars_format::fixed, digits).ptr - at);
}
