/* vellum/vlcache.h - page-cached files: fonts, saved pictures and patches.
 * Owns:    a pool of 2048-byte pages shared by a few open files; the least recently used page leaves first.
 * Callers: the files of vellum/. Never:   gives a short read: bytes past the end are zero. Offsets count
 * from 1. A fault goes to vlerror with the words of this layer. */
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int vlpagesize = 2048;

void cacheinit(int npages, int nfiles); // once; further calls do nothing
// The number of the opened file. mode 1 creates; mode 0 opens an existing file, for writing too if `write`,
// and returns 0 when it cannot; mode -1 is mode 0 with an error when the file is missing.
int cacheopen(const char* name, int write, int mode);
void cacheclose(int file);
void cacheread(int file, uint32_t offset, uint32_t length, void* dest, size_t skip = 0);
void cachewrite(int file, uint32_t offset, uint32_t length, const void* source, size_t skip = 0);
uint8_t cachepeek(int file, uint32_t offset);
void cachepoke(int file, uint32_t offset, uint8_t byte);
// The address of a byte; *page its page and *pos its place in it. It holds until the next call of this layer.
uint8_t* cachepointer(int file, uint32_t offset, int* page, int* pos);
void cachepurge(int file, int page);
uint32_t cachesize(int file);
void cacheinhibit(int file, int n);
void resizebufferpool(int npages);
void cacheshutdown(); // writes and closes everything and frees the pool
void cachediscard();  // closes everything without writing and frees the pool

// Closes a file on the way out, also when an error is thrown.
struct vlcachefile {
    int file = 0;
    explicit vlcachefile(int opened) : file(opened) {}
    vlcachefile(const vlcachefile&) = delete;
    vlcachefile& operator=(const vlcachefile&) = delete;
    ~vlcachefile();
    // Closes now, so that a fault of writing is told.
    void close();
};
