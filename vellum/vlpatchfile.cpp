#include "vellum/vlpalette.h"
#include "vellum/vlraster.h"
#include "vellum/vlsave.h"

#include <utility>
#include <vector>

// A saved patch: the format (0 text, 1 binary), device number, depth, width, height, the palette, the pixels
// from the bottom row, then a record of the patch and of each of its children, which point to each other by
// their places.

namespace {

constexpr uint32_t recordsize = 34, childplace = 16, siblingplace = 20; // from the start of a record
constexpr int deepest = 1000;                                           // levels of children

void writerecord(vlsavefile& file, const vlpatch& patch) {
    for (const int v : {patch.w, patch.h, patch.flags, patch.depth}) file.put(uint16_t(v), 2);
    file.put(0, 4); // bits
    file.put(0, 4); // parent
    file.put(0, 4); // child
    file.put(0, 4); // sibling
    for (const int v : {patch.stride, patch.subx, patch.suby, patch.offx, patch.offy})
        file.put(uint16_t(v), 2);
}

// A patch and its descendants in the order of a walk; each place is filled in once it is known.
void writetree(vlsavefile& file, const vlpatch& root) {
    struct pending {
        const vlpatch* patch;
        uint32_t fillin; // where its place is to be told; 0: nowhere
    };
    std::vector<pending> open{{&root, 0}};
    while (!open.empty()) {
        const pending now = open.back();
        open.pop_back();
        const uint32_t place = file.at;
        if (now.fillin) file.putat(now.fillin, place, 4);
        writerecord(file, *now.patch);
        if (now.patch != &root && now.patch->sibling)
            open.push_back({now.patch->sibling, place + siblingplace});
        if (now.patch->child) open.push_back({now.patch->child, place + childplace});
    }
}

struct patchrecord {
    int w, h, subx, suby;
    uint32_t child, sibling;
};

patchrecord readrecord(vlsavefile& file) {
    patchrecord r{};
    r.w = int(file.get(2));
    r.h = int(file.get(2));
    file.get(4); // flags, depth
    file.get(8); // bits, parent
    r.child = uint32_t(file.get(4));
    r.sibling = uint32_t(file.get(4));
    file.get(2); // stride
    r.subx = int(file.get(2));
    r.suby = int(file.get(2));
    file.get(4); // place on the device
    return r;
}

// Children stand behind what points to them, so a walk ends.
void readtree(vlsavefile& file, vlpatch* root) {
    struct pending {
        vlpatch* parent;
        uint32_t place, after;
        int depth;
    };
    const uint32_t start = file.at;
    const patchrecord top = readrecord(file);
    std::vector<pending> open;
    if (top.child) open.push_back({root, top.child, start, 0});
    while (!open.empty()) {
        const pending now = open.back();
        open.pop_back();
        if (now.place <= now.after || now.depth > deepest) file.damaged();
        file.at = now.place;
        const patchrecord r = readrecord(file);
        const vlpatch* p = now.parent;
        if (r.w < 1 || r.h < 1 || r.subx > p->w - r.w || r.suby > p->h - r.h) file.damaged();
        if (r.sibling) open.push_back({now.parent, r.sibling, now.place, now.depth});
        vlpatch* child = DPATCH(now.parent, r.subx, r.suby, r.w, r.h, 0, nullptr);
        if (r.child) open.push_back({child, r.child, now.place, now.depth + 1});
    }
}

// Kills a patch that was not read whole.
struct unlesskept {
    vlpatch* patch;
    ~unlesskept() {
        if (patch) DKILLPATCH(patch);
    }
    vlpatch* keep() { return std::exchange(patch, nullptr); }
};

} // namespace

void DPATCHWRITE(vlpatch* patch, const char* name, int format) {
    vlcheckpatch(patch, "DPATCHWRITE");
    vlflushall();
    if (patch == vl.screen && patch->flags & VLDISABLED)
        vlerror("DPATCHWRITE: cannot save disabled screenpatch");
    const auto bits = vlcopyout(patch, 0, 0, patch->w, patch->h);
    vlsavefile file(vlsavename(name, vl.patnumber, ".pat").c_str(), true);
    file.text = format == 0;
    file.put(format == 0 ? 0 : 1, 1);
    for (const int v : {vl.device, patch->depth, patch->w, patch->h}) file.put(uint16_t(v), 2);
    vlwritepalette(file, false);
    file.putbytes(bits.get(), vlpixelbytes(patch->w, patch->h, patch->depth));
    writetree(file, *patch);
    file.finish();
}

vlpatch* DPATCHREAD(const char* name, int mode, vltables* tables) {
    vlsavefile file(name, false);
    const uint64_t format = file.get(1);
    if (format > 1) file.damaged();
    file.text = format == 0;
    const int device = int(file.get(2)), depth = int(file.get(2)), w = int(file.get(2)), h = int(file.get(2));
    if (!vldepthok(depth) || w < 1 || h < 1 || w > 32767 || h > 32767) file.damaged();
    vlreadpalette(file, false, device, mode, tables);
    file.need(vlpixelbytes(w, h, depth));
    unlesskept made{DPATCH(nullptr, 0, 0, w, h, depth, nullptr)};
    file.getbytes(made.patch->bits.get(), vlpixelbytes(w, h, depth));
    if (mode & VLCHILDREN) readtree(file, made.patch);
    return made.keep();
}
