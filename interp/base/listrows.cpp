#include "interp/base/listrows.h"

namespace {

listingrow table[WINDOW3D + 2]; // [0] builtins, [1 + type]

listingrow* place(int type) {
    if (type < 0) return &table[0];
    return type <= WINDOW3D ? &table[1 + type] : nullptr;
}

} // namespace

void listingadd(const listingrow* rows, int count) {
    for (int k = 0; k < count; k++)
        if (listingrow* at = place(rows[k].type)) *at = rows[k];
}

const listingrow* listingfind(int type) {
    const listingrow* at = place(type);
    return at && at->show ? at : nullptr;
}
