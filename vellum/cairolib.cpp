#include "vellum/cairolib.h"

#include <dlfcn.h>
#include <type_traits>

const cairolib* cairoload() {
    static cairolib calls;
    static const bool loaded = [] {
        void* library = dlopen("libcairo.so.2", RTLD_LAZY | RTLD_LOCAL);
        if (!library) return false;
        bool whole = true;
        const auto take = [&](auto& call, const char* name) {
            call = reinterpret_cast<std::decay_t<decltype(call)>>(dlsym(library, name));
            whole = whole && call;
        };
#define VLCAIROTAKE(name) take(calls.name, "cairo_" #name);
        VLCAIROCALLS(VLCAIROTAKE)
#undef VLCAIROTAKE
        return whole;
    }();
    return loaded ? &calls : nullptr;
}
