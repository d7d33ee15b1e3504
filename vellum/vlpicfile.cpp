#include "vellum/vlpalette.h"
#include "vellum/vlpicture.h"
#include "vellum/vlraster.h"
#include "vellum/vlsave.h"

#include <algorithm>
#include <utility>

// Saved pictures: the device number, the number of entries, a handle and a place for each (the place's high
// bit: a picture), the palette, then the bodies. What a picture calls stands behind the client's pictures,
// each once.

namespace {

constexpr uint32_t picturebit = 0x80000000, recordsize = 64;
constexpr int dead = 3;

// ---- Writing

struct entry {
    const vlpicture* picture;
    const vlpatch* patch;
    bool client; // asked for, not only called
    uint32_t handle() const { return picture ? picture->handle : patch->handle; }
};

struct saving {
    std::vector<entry> entries;
    std::unordered_map<uint32_t, size_t> known;

    void add(const entry& e) {
        if (known.emplace(e.handle(), entries.size()).second) entries.push_back(e);
    }
    void addcalls();
};

std::vector<uint32_t> patchcalls(const vlpicture& picture) {
    std::vector<uint32_t> calls;
    for (vlwords walk(picture); walk.more();) {
        const uint32_t word = walk.next();
        if ((word & vlopmask) == VLOPPATCH) calls.push_back(word & vloperandmask);
        walk.skip(walk.datawords(word));
    }
    return calls;
}

// Entries that come in on the way are walked in their turn.
void saving::addcalls() {
    for (size_t i = 0; i < entries.size(); i++) {
        const vlpicture* picture = entries[i].picture;
        if (!picture) continue;
        for (const uint32_t handle : vlcallsof(*picture)) {
            if (const vlpicture* called = vlpictureof(handle)) add({called, nullptr, false});
        }
        for (const uint32_t handle : patchcalls(*picture)) {
            if (const vlpatch* called = vlpatchof(handle)) add({nullptr, called, false});
        }
    }
}

void writepicture(vlsavefile& file, const vlpicture& p, bool client) {
    file.put(0, 4); // next
    file.put(0, 4); // prev
    file.put(uint16_t(client ? p.state : dead), 2);
    file.put(uint16_t(p.refs), 2);
    file.put(0, 4);
    file.putdouble(p.priority);
    file.put(p.list.size(), 4);
    file.put(0, 4);
    file.putdouble(p.offx);
    file.putdouble(p.offy);
    file.put(uint32_t(p.colorindex), 4);
    file.put(uint16_t(p.lastx), 2);
    file.put(uint16_t(p.lasty), 2);
    file.put(0, 8);
    for (const auto& chunk : p.list) {
        file.put(chunk->count, 2);
        for (int i = 0; i < chunk->count; i++) file.put(chunk->words[i], 4);
    }
}

// The number of words, then: width and height, depth, the pixels.
void writepatch(vlsavefile& file, const vlpatch& patch) {
    const bool memory = vlrootof(&patch)->flags & VLMEMORY;
    const size_t bytes = vlbitsize(patch.w, patch.h, patch.depth);
    const auto bits = memory ? vlcopyout(&patch, 0, 0, patch.w, patch.h) : vlbigalloc(bytes + 4);
    const size_t words = (bytes + 3) / 4;
    file.put(words + 2, 4);
    file.put(uint32_t(patch.w) << 16 | uint32_t(patch.h), 4);
    file.put(uint32_t(patch.depth), 4);
    file.putbytes(bits.get(), bytes);
    file.put(0, int(4 * words - bytes));
}

void write(vlsavefile& file, const saving& all) {
    file.put(uint32_t(vl.device), 4);
    file.put(all.entries.size(), 4);
    const uint32_t table = file.at;
    for (const entry& e : all.entries) file.put(e.handle(), 8);
    vlwritepalette(file, true);
    for (size_t i = 0; i < all.entries.size(); i++) {
        const entry& e = all.entries[i];
        file.putat(table + uint32_t(8 * i) + 4, file.at | (e.picture ? picturebit : 0), 4);
        if (e.picture) {
            writepicture(file, *e.picture, e.client);
        } else {
            writepatch(file, *e.patch);
        }
    }
    file.finish();
}

// ---- Reading

struct loaded {
    uint32_t oldhandle;
    std::unique_ptr<vlpicture> picture;
    std::unique_ptr<vlpatch> patch;
};

std::unique_ptr<vlpicture> readpicture(vlsavefile& file) {
    file.need(recordsize);
    auto p = std::make_unique<vlpicture>();
    file.get(8);
    p->state = int16_t(file.get(2)) == dead ? dead : 1;
    file.get(6); // the callers are counted anew
    p->priority = file.getdouble();
    const uint32_t chunks = uint32_t(file.get(4));
    file.get(4);
    p->offx = file.getdouble();
    p->offy = file.getdouble();
    p->colorindex = int32_t(file.get(4));
    p->lastx = int16_t(file.get(2));
    p->lasty = int16_t(file.get(2));
    file.get(8);
    if (p->priority != p->priority) file.damaged();
    for (uint32_t i = 0; i < chunks; i++) {
        const int count = int(file.get(2));
        if (count < 1 || count > vlchunk::room) file.damaged();
        file.need(4 * uint64_t(count));
        p->list.push_back(std::make_unique<vlchunk>());
        vlchunk& chunk = *p->list.back();
        for (; chunk.count < count; chunk.count++) chunk.words[chunk.count] = uint32_t(file.get(4));
    }
    p->refs = p->state == dead ? 0 : 1;
    return p;
}

std::unique_ptr<vlpatch> readpatch(vlsavefile& file) {
    const uint64_t words = file.get(4);
    file.need(4 * words);
    const uint32_t size = uint32_t(file.get(4)), depth = uint32_t(file.get(4));
    const int w = int(size >> 16), h = int(size & 0xffff);
    if (w < 1 || h < 1 || w > 32767 || h > 32767 || !vldepthok(int(std::min(depth, 99u)))) file.damaged();
    const size_t bytes = vlbitsize(w, h, int(depth));
    if (words < 2 || 4 * (words - 2) < bytes) file.damaged();
    auto patch = vlmemorypatch(w, h, int(depth), nullptr);
    file.getbytes(patch->bits.get(), bytes);
    return patch;
}

std::vector<loaded> readall(vlsavefile& file, int mode, vltables* tables) {
    const int device = int(int32_t(file.get(4)));
    const uint64_t count = file.get(4);
    file.need(8 * count);
    std::vector<std::pair<uint32_t, uint32_t>> table; // handle, place
    for (uint64_t i = 0; i < count; i++) {
        const uint32_t handle = uint32_t(file.get(4));
        table.emplace_back(handle, uint32_t(file.get(4)));
    }
    vlreadpalette(file, true, device, mode, tables);
    std::vector<loaded> all;
    for (const auto& [handle, place] : table) {
        // Bodies follow each other, so no place can be told twice to make much of a small file.
        if ((place & ~picturebit) != file.at) file.damaged();
        loaded& now = all.emplace_back();
        now.oldhandle = handle;
        if (place & picturebit) {
            now.picture = readpicture(file);
        } else {
            now.patch = readpatch(file);
        }
    }
    return all;
}

// Calls `change` with each word that holds a handle.
template <class Change> void handlewords(vlpicture& picture, Change change) {
    size_t skip = 0;
    vlwords walk(picture);
    for (auto& chunk : picture.list) {
        for (int i = 0; i < chunk->count; i++) {
            const uint32_t word = walk.next();
            if (skip > 0) {
                skip--;
                continue;
            }
            const uint32_t op = word & vlopmask;
            if (op == VLOPCALL || op == VLOPCALLRESTORE || op == VLOPPATCH) change(chunk->words[i]);
            skip = walk.datawords(word);
        }
    }
}

// Does one of the pictures call itself, through others or not? `number` finds an entry by its handle.
bool circular(std::vector<loaded>& all, const std::unordered_map<uint32_t, size_t>& number) {
    std::vector<std::vector<size_t>> calls(all.size());
    std::vector<size_t> callers(all.size());
    for (size_t i = 0; i < all.size(); i++) {
        if (!all[i].picture) continue;
        for (const uint32_t handle : vlcallsof(*all[i].picture)) {
            const auto found = number.find(handle);
            if (found == number.end() || !all[found->second].picture) continue;
            calls[i].push_back(found->second);
            callers[found->second]++;
        }
    }
    std::vector<size_t> open;
    for (size_t i = 0; i < all.size(); i++) {
        if (callers[i] == 0) open.push_back(i);
    }
    size_t done = 0;
    for (; !open.empty(); done++) {
        const size_t i = open.back();
        open.pop_back();
        for (const size_t called : calls[i]) {
            if (--callers[called] == 0) open.push_back(called);
        }
    }
    return done < all.size();
}

// Puts what was read into the table of handles; the words get the new handles.
std::vector<vlpicture*> enter(std::vector<loaded>& all, const std::unordered_map<uint32_t, size_t>& number) {
    std::vector<vlpicture*> pictures(all.size());
    std::vector<uint32_t> handles(all.size());
    for (size_t i = 0; i < all.size(); i++) {
        if (all[i].picture) {
            pictures[i] = vladdpicture(std::move(all[i].picture));
            handles[i] = pictures[i]->handle;
        } else {
            handles[i] = vladdpatch(std::move(all[i].patch))->handle;
        }
    }
    std::vector<vlpicture*> clients;
    for (vlpicture* p : pictures) {
        if (!p) continue;
        handlewords(*p, [&](uint32_t& word) {
            const auto found = number.find(word & vloperandmask);
            const bool patch = (word & vlopmask) == VLOPPATCH;
            const bool right = found != number.end() && (pictures[found->second] != nullptr) != patch;
            word = (word & vlopmask) | (right ? handles[found->second] : 0);
            if (right && !patch) pictures[found->second]->refs++;
        });
        vljoinlist(p);
        if (p->state != dead) clients.push_back(p);
    }
    // What neither the client nor a picture has asked for goes again.
    std::erase_if(pictures, [](const vlpicture* p) { return !p || p->refs > 0; });
    for (vlpicture* p : pictures) {
        p->refs = 1;
        vlreleasepicture(p);
    }
    return clients;
}

} // namespace

void DSAVE(const char* name, int mode, std::span<vlpicture* const> pictures) {
    DCLOSEPIC();
    saving all;
    for (const vlpicture* p : pictures) {
        vlcheckpicture(p, "DSAVE");
        all.add({p, nullptr, true});
    }
    if (pictures.empty()) {
        for (const vlpicture* p = vl.posted; p; p = p->next) all.add({p, nullptr, true});
        for (const vlpicture* p = vl.closed; p && mode != 1; p = p->next) all.add({p, nullptr, true});
    }
    all.addcalls();
    vlsavefile file(vlsavename(name, vl.picnumber, ".pic").c_str(), true);
    write(file, all);
}

std::vector<vlpicture*> DUSE(const char* name, int mode, vltables* tables) {
    vlsavefile file(name, false);
    std::vector<loaded> all = readall(file, mode, tables);
    std::unordered_map<uint32_t, size_t> number;
    for (size_t i = 0; i < all.size(); i++) {
        if (!number.emplace(all[i].oldhandle, i).second) file.damaged();
    }
    if (circular(all, number)) file.damaged();
    const std::vector<vlpicture*> pictures = enter(all, number);
    if (mode & VLTABLES && tables) {
        tables->priorities.clear();
        for (const vlpicture* p : pictures) tables->priorities.push_back(p->priority);
    }
    return pictures;
}
