#include "vellum/vlcache.h"

#include "vellum/vlstate.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct cachedfile {
    FILE* handle = nullptr;
    bool used = false;
    bool writable = false;
    bool nowrite = false; // writes are put off
    int curpage = 0;
    uint32_t logicalsize = 0, physicalsize = 0;
    std::string name;
};

/* Slots and files count from 1. A slot's key is nfiles * page + file - 1, negative while the page is dirty, 0
 * when free. `chain` runs from -npages to npages: a head cell (negative index) and the cells of slots; a link
 * is a slot or 0. The list of use runs through lruprev and lrunext with its head at 0: lruprev[0] is the
 * least recent, lrunext[0] the most. */
struct cachepool {
    int npages = 0, nfiles = 0;
    std::vector<uint8_t> pages;
    std::vector<int64_t> key;
    std::vector<int> chain;
    std::vector<int> lruprev, lrunext;
    std::vector<cachedfile> files; // [0] unused

    int& link(int cell) { return chain[size_t(cell + npages)]; }
    uint8_t* page(int slot) { return pages.data() + size_t(slot - 1) * vlpagesize; }
    int head(int file, int number) const { return -((file + number) % npages + 1); }
    int64_t keyof(int file, int number) const { return int64_t(nfiles) * number + file - 1; }
    int fileof(int slot) const { return int(std::abs(key[size_t(slot)]) % nfiles) + 1; }
    int numberof(int slot) const { return int(std::abs(key[size_t(slot)]) / nfiles); }
};
cachepool cache;

constexpr int firstpages = 10, firstfiles = 5;

enum cachefault { NOTOPEN = 1, READFAULT, WRITEFAULT, OPENFAULT, NOSPACE };

[[noreturn]] void stop(int code, const char* where) {
    switch (code) {
    case NOTOPEN: vlerror("Cached-file not open.\n");
    case READFAULT: vlerror("Cached-file read error: %s \n", where);
    case WRITEFAULT: vlerror("Cached-file write error: %s \n", where);
    default: vlerror("VELLUM cached-file error: %s \n", where);
    }
}

// The same with the file that the system refuses, and its reason.
[[noreturn]] void stopfile(int code, const std::string& where, const std::string& file) {
    switch (code) {
    case READFAULT: vlfilefault("Cached-file read error: " + where + " \n", file);
    case WRITEFAULT: vlfilefault("Cached-file write error: " + where + " \n", file);
    case OPENFAULT: vlfilefault("Cannot open cached-file: " + where + " \n", file);
    default: vlfilefault("Out of Disk space for Cached-file: " + where + " \n", file);
    }
}

cachedfile& openfile(int file) {
    if (file < 1 || file > cache.nfiles || !cache.files[size_t(file)].used) stop(NOTOPEN, "");
    return cache.files[size_t(file)];
}

// ---- The order of use

void unlinkslot(int slot) {
    const int before = cache.lruprev[size_t(slot)], after = cache.lrunext[size_t(slot)];
    cache.lrunext[size_t(before)] = after;
    cache.lruprev[size_t(after)] = before;
}

// Between the head and what was most recent.
void mostrecent(int slot) {
    const int first = cache.lrunext[0];
    cache.lrunext[0] = slot;
    cache.lruprev[size_t(slot)] = 0;
    cache.lrunext[size_t(slot)] = first;
    cache.lruprev[size_t(first)] = slot;
}

void leastrecent(int slot) {
    const int last = cache.lruprev[0];
    cache.lruprev[0] = slot;
    cache.lrunext[size_t(slot)] = 0;
    cache.lruprev[size_t(slot)] = last;
    cache.lrunext[size_t(last)] = slot;
}

void seed(int npages) {
    cache.npages = npages;
    cache.key.assign(size_t(npages) + 1, 0);
    cache.chain.assign(size_t(npages) * 2 + 1, 0);
    cache.lruprev.assign(size_t(npages) + 1, 0);
    cache.lrunext.assign(size_t(npages) + 1, 0);
    for (int slot = 1; slot <= npages; slot++) leastrecent(slot);
}

// ---- Pages and the disk

uint32_t pagestart(int number) { return uint32_t(number - 1) * vlpagesize; }

bool seekto(cachedfile& f, uint32_t place) { return fseek(f.handle, long(place), SEEK_SET) == 0; }

void readpage(cachedfile& f, int number, uint8_t* page) {
    const uint32_t start = pagestart(number);
    const uint32_t there =
        start < f.physicalsize ? std::min<uint32_t>(f.physicalsize - start, vlpagesize) : 0;
    memset(page + there, 0, vlpagesize - there);
    if (there == 0) return;
    errno = 0; // the file may just have become shorter
    if (!seekto(f, start) || fread(page, 1, there, f.handle) != there)
        stopfile(READFAULT, "readpage", f.name);
}

// `where` names the routine that a failed write is told by: the call that forces the pages out, else
// writepage.
void put(cachedfile& f, const uint8_t* bytes, uint32_t count, const char* where) {
    if (fwrite(bytes, 1, count, f.handle) != count) stopfile(WRITEFAULT, where, f.name);
    f.physicalsize = std::max(f.physicalsize, uint32_t(ftell(f.handle)));
}

// Zeros from the physical end to the start of a page: the rest of the last page, then whole ones.
void fillgap(cachedfile& f, uint32_t start, const char* where) {
    static constexpr uint8_t zeros[vlpagesize] = {};
    if (f.physicalsize >= start) return;
    if (!seekto(f, f.physicalsize)) stopfile(WRITEFAULT, where, f.name);
    while (f.physicalsize < start) {
        const uint32_t inpage = vlpagesize - f.physicalsize % vlpagesize;
        put(f, zeros, std::min(inpage, start - f.physicalsize), where);
    }
}

void writepage(int slot, const char* where = "writepage") {
    cachedfile& f = cache.files[size_t(cache.fileof(slot))];
    const uint32_t start = pagestart(cache.numberof(slot));
    fillgap(f, start, where);
    if (!seekto(f, start)) stopfile(WRITEFAULT, where, f.name);
    put(f, cache.page(slot), std::min<uint32_t>(f.logicalsize - start, vlpagesize), where);
    cache.key[size_t(slot)] = std::abs(cache.key[size_t(slot)]);
}

void writeifdirty(int slot) {
    if (cache.key[size_t(slot)] < 0) writepage(slot);
}

// ---- Slots

void unhook(int slot) {
    int at = cache.head(cache.fileof(slot), cache.numberof(slot));
    while (cache.link(at) != slot) at = cache.link(at);
    cache.link(at) = cache.link(slot);
    cache.link(slot) = 0;
    cache.key[size_t(slot)] = 0;
}

int find(int file, int number) {
    const int64_t wanted = cache.keyof(file, number);
    int slot = cache.link(cache.head(file, number));
    while (slot && std::abs(cache.key[size_t(slot)]) != wanted) slot = cache.link(slot);
    return slot;
}

// The slot that holds a page; one that is not in the pool is read, or only named when every byte will be
// written.
int fetchbuffer(int file, int number, bool read) {
    int slot = find(file, number);
    if (!slot) {
        slot = cache.lruprev[0];
        writeifdirty(slot);
        if (cache.key[size_t(slot)]) unhook(slot);
        if (read) readpage(cache.files[size_t(file)], number, cache.page(slot));
        cache.key[size_t(slot)] = cache.keyof(file, number);
        int& first = cache.link(cache.head(file, number));
        cache.link(slot) = first;
        first = slot;
    }
    unlinkslot(slot);
    mostrecent(slot);
    cache.files[size_t(file)].curpage = number;
    return slot;
}

void freeslots(int file) {
    for (int slot = 1; slot <= cache.npages; slot++) {
        if (cache.key[size_t(slot)] == 0 || cache.fileof(slot) != file) continue;
        unhook(slot);
        unlinkslot(slot);
        leastrecent(slot);
    }
}

void writeall(int file, const char* where) {
    for (int slot = 1; slot <= cache.npages; slot++) {
        if (cache.key[size_t(slot)] < 0 && (file == 0 || cache.fileof(slot) == file)) writepage(slot, where);
    }
}

// Gives back the slots and the file without writing; true when the file closed well.
bool letgo(int file) {
    cachedfile& f = cache.files[size_t(file)];
    freeslots(file);
    const bool well = fclose(f.handle) == 0;
    f = cachedfile{};
    return well;
}

int numberat(uint32_t offset) { return int((offset - 1) / vlpagesize) + 1; }

// Calls piece(place in page, count, bytes done, page number) for each page that a range of bytes touches.
template <class Piece> void pieces(uint32_t offset, uint32_t length, Piece piece) {
    uint32_t done = 0;
    while (done < length) {
        const int number = numberat(offset + done);
        const uint32_t pos = offset + done - 1 - pagestart(number);
        const uint32_t count = std::min<uint32_t>(vlpagesize - pos, length - done);
        piece(pos, count, done, number);
        done += count;
    }
}

void checkrange(uint32_t offset, uint32_t length, cachefault fault, const char* where) {
    constexpr uint32_t most = 0x7fffffff;
    if (offset < 1 || offset > most || length > most - offset) stop(fault, where);
}

uint32_t sizeoffile(FILE* handle) {
    if (fseek(handle, 0, SEEK_END) != 0) return 0;
    const long size = ftell(handle);
    return size < 0 ? 0 : uint32_t(std::min(size, 0x7fffffffL));
}

} // namespace

void cacheinit(int npages, int nfiles) {
    if (cache.npages) return;
    cache.nfiles = std::max(nfiles, 1);
    cache.files.assign(size_t(cache.nfiles) + 1, {});
    resizebufferpool(npages);
}

int cacheopen(const char* name, int write, int mode) {
    cacheinit(firstpages, firstfiles);
    int file = cache.nfiles;
    while (file && cache.files[size_t(file)].used) file--;
    if (!file) vlerror("Cannot open cached-file: %s \n%d files are open already", name, cache.nfiles);
    FILE* handle = fopen(name, mode == 1 ? "wb+" : write ? "rb+" : "rb");
    if (!handle) {
        if (mode == 0) return 0;
        stopfile(mode == 1 ? NOSPACE : OPENFAULT, name, name);
    }
    setvbuf(handle, nullptr, _IONBF, 0);
    cachedfile& f = cache.files[size_t(file)];
    f.handle = handle;
    f.used = true;
    f.writable = write || mode == 1;
    f.logicalsize = f.physicalsize = sizeoffile(handle);
    f.name = name;
    return file;
}

void cacheclose(int file) {
    const std::string name = openfile(file).name;
    writeall(file, "closefile");
    if (!letgo(file)) stopfile(WRITEFAULT, "closefile", name);
}

void cacheread(int file, uint32_t offset, uint32_t length, void* dest, size_t skip) {
    openfile(file);
    checkrange(offset, length, READFAULT, "fetchbuffer");
    uint8_t* out = static_cast<uint8_t*>(dest) + skip;
    pieces(offset, length, [&](uint32_t pos, uint32_t count, uint32_t done, int number) {
        memcpy(out + done, cache.page(fetchbuffer(file, number, true)) + pos, count);
    });
}

void cachewrite(int file, uint32_t offset, uint32_t length, const void* source, size_t skip) {
    cachedfile& f = openfile(file);
    if (!f.writable) vlerror("Cached-file write error: %s \nit was opened for reading", f.name.c_str());
    checkrange(offset, length, WRITEFAULT, "fetchbuffer");
    const uint8_t* in = static_cast<const uint8_t*>(source) + skip;
    pieces(offset, length, [&](uint32_t pos, uint32_t count, uint32_t done, int number) {
        const int slot = fetchbuffer(file, number, count < vlpagesize);
        memcpy(cache.page(slot) + pos, in + done, count);
        f.logicalsize = std::max(f.logicalsize, offset + done + count - 1);
        cache.key[size_t(slot)] = -std::abs(cache.key[size_t(slot)]);
        if (!f.nowrite) writepage(slot);
    });
}

uint8_t cachepeek(int file, uint32_t offset) {
    uint8_t byte;
    cacheread(file, offset, 1, &byte);
    return byte;
}

void cachepoke(int file, uint32_t offset, uint8_t byte) { cachewrite(file, offset, 1, &byte); }

uint8_t* cachepointer(int file, uint32_t offset, int* page, int* pos) {
    openfile(file);
    checkrange(offset, 1, READFAULT, "fetchbuffer");
    const int number = numberat(offset);
    const int place = int(offset - 1 - pagestart(number));
    if (page) *page = number;
    if (pos) *pos = place;
    return cache.page(fetchbuffer(file, number, true)) + place;
}

void cachepurge(int file, int page) {
    openfile(file);
    const int slot = page > 0 ? find(file, page) : 0;
    if (!slot) return;
    unlinkslot(slot);
    leastrecent(slot);
}

uint32_t cachesize(int file) { return openfile(file).logicalsize; }

void cacheinhibit(int file, int n) {
    if (file) openfile(file);
    for (int i = 1; i <= cache.nfiles; i++) {
        cachedfile& f = cache.files[size_t(i)];
        if ((file && i != file) || !f.used) continue;
        f.nowrite = n > 0;
        if (n < 0) writeall(i, "inhibitwrite");
    }
}

void resizebufferpool(int npages) {
    writeall(0, "resizebufferpool");
    npages = std::clamp(npages, 1, 1 << 20);
    cache.pages = {};
    for (;; npages /= 2) {
        try {
            cache.pages.assign(size_t(npages) * vlpagesize, 0);
            seed(npages);
            return;
        } catch (const std::exception&) {
            if (npages == 1) stop(0, "resizebufferpool");
        }
    }
}

void cacheshutdown() {
    for (int file = 1; file <= cache.nfiles; file++) {
        if (cache.files[size_t(file)].used) cacheclose(file);
    }
    cache = cachepool{};
}

void cachediscard() {
    for (int file = 1; file <= cache.nfiles; file++) {
        if (cache.files[size_t(file)].used) letgo(file);
    }
    cache = cachepool{};
}

vlcachefile::~vlcachefile() {
    if (file > 0 && file <= cache.nfiles && cache.files[size_t(file)].used) letgo(file);
}

void vlcachefile::close() {
    const int closing = file;
    cacheclose(closing);
    file = 0;
}
