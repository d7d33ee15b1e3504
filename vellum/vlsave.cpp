#include "vellum/vlsave.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace {

constexpr char digits[] = "0123456789abcdef";
constexpr uint32_t piece = 32000; // bytes written at once

int opensaved(const char* name, bool create) {
    const int file = cacheopen(name, create, create ? 1 : 0);
    if (!file) vlerror("VELLUM save file (%s) does not exist\n", name);
    return file;
}

int valueof(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

std::string vlsavename(const char* given, int& number, const char* extension) {
    return given ? given : std::to_string(number++) + extension;
}

vlsavefile::vlsavefile(const char* filename, bool create)
    : cached(opensaved(filename, create)), name(filename) {
    if (create) cacheinhibit(cached.file, 1);
}

void vlsavefile::putat(uint32_t place, uint64_t value, int bytes) {
    uint8_t out[16];
    const bool hex = text && place > 1;
    for (int i = 0; i < bytes; i++) {
        const uint8_t high = uint8_t(value >> (8 * (bytes - 1 - i)));
        if (hex) {
            out[2 * i] = uint8_t(digits[high >> 4]);
            out[2 * i + 1] = uint8_t(digits[high & 15]);
        } else {
            out[bytes - 1 - i] = high;
        }
    }
    cachewrite(cached.file, charat(place), uint32_t(hex ? 2 * bytes : bytes), out);
}

void vlsavefile::put(uint64_t value, int bytes) {
    putat(at, value, bytes);
    at += uint32_t(bytes);
}

void vlsavefile::putbytes(const uint8_t* bytes, size_t count) {
    std::vector<uint8_t> hex;
    while (count > 0) {
        const uint32_t now = uint32_t(std::min<size_t>(count, piece));
        if (text) {
            hex.clear();
            for (uint32_t i = 0; i < now; i++) {
                hex.push_back(uint8_t(digits[bytes[i] >> 4]));
                hex.push_back(uint8_t(digits[bytes[i] & 15]));
            }
        }
        cachewrite(cached.file, charat(at), text ? 2 * now : now, text ? hex.data() : bytes);
        at += now;
        bytes += now;
        count -= now;
    }
}

void vlsavefile::putdouble(double value) { put(std::bit_cast<uint64_t>(value), 8); }

void vlsavefile::finish() { cached.close(); }

void vlsavefile::damaged() const { vlerror("Cached-file read error: %s \n", name.c_str()); }

uint32_t vlsavefile::left() const {
    const uint32_t size = cachesize(cached.file);
    const uint32_t places = text ? (size + 1) / 2 : size;
    return at > places ? 0 : places - at + 1;
}

void vlsavefile::need(uint64_t bytes) const {
    if (bytes > left()) damaged();
}

void vlsavefile::getbytes(uint8_t* bytes, size_t count) {
    need(count);
    if (!text) {
        cacheread(cached.file, at, uint32_t(count), bytes);
    } else {
        std::vector<char> hex(2 * count);
        cacheread(cached.file, charat(at), uint32_t(2 * count), hex.data());
        for (size_t i = 0; i < count; i++) {
            const int high = valueof(hex[2 * i]), low = valueof(hex[2 * i + 1]);
            if (high < 0 || low < 0) damaged();
            bytes[i] = uint8_t(16 * high + low);
        }
    }
    at += uint32_t(count);
}

uint64_t vlsavefile::get(int bytes) {
    uint8_t in[8];
    const bool high = text && at > 1;
    getbytes(in, size_t(bytes));
    uint64_t value = 0;
    for (int i = 0; i < bytes; i++) value = value << 8 | in[high ? i : bytes - 1 - i];
    return value;
}

double vlsavefile::getdouble() { return std::bit_cast<double>(get(8)); }
