#include "vellum/vlstate.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

vlstate vl;

vlerrorhandler DERROR(vlerrorhandler handler) {
    const vlerrorhandler old = vl.handler;
    vl.handler = handler;
    return old;
}

void vlerror(const char* format, ...) {
    char message[1024];
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    if (vl.handler) vl.handler(message);
    fprintf(stderr, "VELLUM ERROR: %s", message);
    exit(1);
}

void vlfilefault(const std::string& message, const std::string& file) {
    const int reason = errno;
    std::string text = message;
    if (text.empty() || text.back() != '\n') text += '\n';
    text += file;
    if (reason != 0) text += std::string(": ") + strerror(reason);
    vlerror("%s", text.c_str());
}

void vlcomplain(const char* format, ...) {
    va_list args;
    va_start(args, format);
    vfprintf(stderr, format, args);
    va_end(args);
}

std::unique_ptr<uint8_t[]> vlbigalloc(size_t bytes) {
    std::unique_ptr<uint8_t[]> block(new (std::nothrow) uint8_t[bytes]());
    if (!block) vlerror("vlbigalloc: out of available memory");
    return block;
}

void vlrealloc(std::vector<double>& buffer, size_t count) {
    try {
        buffer.resize(count);
    } catch (const std::exception&) { vlerror("vlrealloc: out of available memory"); }
}
