// DELETE of windows, curves and titles, and the release of their records.
#include "plot/plotobj.h"
#include "plot/plotstate.h"

namespace {

template <class T> void drop(symbol& s) {
    delete static_cast<T*>(s.val.ptr);
    s.val.ptr = nullptr;
}

void dropmember(int idx) {
    symbol& s = sym(idx);
    if (const auto release = symtab.kind[s.type].release) release(s);
    leavering(idx);
}

void removemember(int idx) {
    const int win = windowofmember(idx);
    dropmember(idx);
    if (win) adjustwindow(win);
}

void removewindow(int idx) {
    while (const int member = ringnext(idx)) {
        dropmember(member);
        symtabmarkdeleted(member);
    }
    drop<window>(sym(idx));
}

} // namespace

void plotkinds() {
    symtab.kind[WINDOWTYPE] = {drop<window>, removewindow, nullptr};
    symtab.kind[CURVETYPE] = {drop<curve>, removemember, nullptr};
    symtab.kind[TITLETYPE] = {drop<title>, removemember, nullptr};
}
