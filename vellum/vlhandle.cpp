#include "vellum/vlpicture.h"

namespace {

vlhandles& table() {
    if (!vl.handles) vl.handles = std::make_shared<vlhandles>();
    return *vl.handles;
}

uint32_t addslot(vlhandles::slot slot, const void* address) {
    vlhandles& handles = table();
    if (handles.slots.size() > vloperandmask) vlerror("vlalloc: out of available memory");
    const uint32_t handle = uint32_t(handles.slots.size());
    handles.slots.push_back(std::move(slot));
    handles.of[address] = handle;
    return handle;
}

const vlhandles::slot* slotof(const void* address) {
    if (!vl.handles) return nullptr;
    const auto found = vl.handles->of.find(address);
    return found == vl.handles->of.end() ? nullptr : &vl.handles->slots[found->second];
}

[[noreturn]] void badhandle(const char* call) {
    vlerror("Illegal picture pointer argument provided in %s", call);
}

} // namespace

vlpicture* vladdpicture(std::unique_ptr<vlpicture> picture) {
    vlpicture* address = picture.get();
    address->handle = addslot({std::move(picture), nullptr}, address);
    return address;
}

vlpatch* vladdpatch(std::unique_ptr<vlpatch> patch) {
    vlpatch* address = patch.get();
    address->handle = addslot({nullptr, std::move(patch)}, address);
    return address;
}

void vldrophandle(uint32_t handle) {
    vlhandles::slot& slot = table().slots[handle];
    if (slot.picture) table().of.erase(slot.picture.get());
    if (slot.patch) table().of.erase(slot.patch.get());
    slot = {};
}

void vlcheckpicture(const vlpicture* picture, const char* call) {
    const vlhandles::slot* slot = slotof(picture);
    if (!slot || slot->picture.get() != picture || picture->state == 3) badhandle(call);
}

void vlcheckpatch(const vlpatch* patch, const char* call) {
    const vlhandles::slot* slot = slotof(patch);
    if (!slot || slot->patch.get() != patch) badhandle(call);
}

vlpicture* vlpictureof(uint32_t handle) {
    return vl.handles && handle < vl.handles->slots.size() ? vl.handles->slots[handle].picture.get()
                                                           : nullptr;
}

vlpatch* vlpatchof(uint32_t handle) {
    return vl.handles && handle < vl.handles->slots.size() ? vl.handles->slots[handle].patch.get() : nullptr;
}
