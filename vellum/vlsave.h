/* vellum/vlsave.h - numbers in saved files.
 * Owns:    their byte order (little-endian; as text the hex digits of a number from the highest), places from
 * 1, and the fault of a file that ends too soon. Callers: vlpicfile.cpp, vlpatchfile.cpp. Never:   allocates
 * by a number read before it has held it against the bytes that are left. */
#pragma once

#include "vellum/vlcache.h"
#include "vellum/vlstate.h"

#include <string>

/* A place counts the bytes of the binary form: as text every byte but the first takes two characters. */
struct vlsavefile {
    vlcachefile cached;
    std::string name;
    bool text = false;
    uint32_t at = 1;

    vlsavefile(const char* filename, bool create);

    void put(uint64_t value, int bytes);
    void putbytes(const uint8_t* bytes, size_t count);
    void putdouble(double value);
    // Puts a number at an earlier place.
    void putat(uint32_t place, uint64_t value, int bytes);
    void finish();

    uint64_t get(int bytes);
    void getbytes(uint8_t* bytes, size_t count);
    double getdouble();
    uint32_t left() const;           // bytes from here to the end
    void need(uint64_t bytes) const; // a fault when fewer are left
    [[noreturn]] void damaged() const;

private:
    uint32_t charat(uint32_t place) const { return text && place > 1 ? 2 * place - 2 : place; }
};

// The name of a save file: as given, or the next running number and the extension.
std::string vlsavename(const char* given, int& number, const char* extension);
