/* vellum/vlwriter.h - text output in large blocks, with numbers written by hand and free of the locale.
 * Owns:    the file it opened. Callers: the file devices. Never:   formats with printf, or tells a fault
 * itself. */
#pragma once

#include <cstdio>
#include <memory>
#include <string_view>

class vlwriter {
public:
    // Opens the file for writing; isopen tells whether that went well. A failed write calls `failed`, which
    // does not come back, once: what is written after it is dropped.
    vlwriter(const char* name, void (*failed)());
    vlwriter(const vlwriter&) = delete;
    vlwriter& operator=(const vlwriter&) = delete;
    ~vlwriter();
    bool isopen() const { return file != nullptr; }

    void text(std::string_view s);
    void byte(char c) {
        if (used == room) drain();
        block[used++] = c;
    }
    void integer(long v);             // as %d
    void rounded(double v);           // to the nearest integer, held within 32 bits
    void general(double v);           // as %g
    void fixed(double v, int digits); // as %.*f
    void drain();                     // hands the block to the file
    void close();                     // drains, closes and checks

private:
    static constexpr size_t room = 1 << 16, spare = 64;
    FILE* file;
    void (*failed)();
    std::unique_ptr<char[]> block;
    size_t used = 0;
    bool broken = false; // a write has failed
    void fail();

    // The place of a number: `spare` bytes can be written there.
    char* place() {
        if (used + spare > room) drain();
        return block.get() + used;
    }
};
