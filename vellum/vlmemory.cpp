#include "vellum/vlraster.h"

// The memory device draws nothing itself: its root patch has pixels, and the library draws into them.

namespace {

int memoryinit(vldevice* record) {
    if (!vldepthok(record->depth)) vlerror("VELLUM: unsupported display mode requested");
    record->ispalette = record->depth < 12;
    record->ncolors = record->depth < 24 ? 1 << record->depth : 1 << 24;
    const bool six = record->depth == 16; // green has the odd bit
    const int bits = record->depth >= 24 ? 8 : record->depth / 3;
    record->rbits = record->bbits = bits;
    record->gbits = six ? bits + 1 : bits;
    vlsetcolors();
    return 1;
}

} // namespace

const vldeviceops* vlmemoryoperations() {
    static constexpr vldeviceops ops = [] {
        vldeviceops table{};
        table.init = memoryinit;
        table.raster = true;
        return table;
    }();
    return &ops;
}
