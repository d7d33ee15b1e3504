#include "vellum/vlpicture.h"

#include "vellum/vldraw.h"

#include <algorithm>

namespace {

// ---- The three lists

vlpicture*& headof(const vlpicture* p) {
    if (p->state == 3) return vl.dead;
    return p->state == 0 || p->state == 2 ? vl.posted : vl.closed;
}

void leavelist(vlpicture* p) {
    (p->prev ? p->prev->next : headof(p)) = p->next;
    if (p->next) p->next->prev = p->prev;
    p->next = p->prev = nullptr;
}

void setstate(vlpicture* p, int state) {
    leavelist(p);
    p->state = int16_t(state);
    vljoinlist(p);
}

bool isposted(const vlpicture* p) { return p->state == 0 || p->state == 2; }

// ---- References

// Gives back a reference of each picture called. What nobody holds any more goes too, without recursion.
void destroy(vlpicture* picture) {
    std::vector<vlpicture*> going{picture};
    while (!going.empty()) {
        vlpicture* p = going.back();
        going.pop_back();
        for (const uint32_t handle : vlcallsof(*p)) {
            vlpicture* called = vlpictureof(handle);
            if (called && --called->refs == 0) going.push_back(called);
        }
        leavelist(p);
        vldrophandle(p->handle);
    }
}

bool reaches(const vlpicture* from, const vlpicture* wanted) {
    std::vector<const vlpicture*> open{from};
    std::vector<const vlpicture*> seen;
    while (!open.empty()) {
        const vlpicture* p = open.back();
        open.pop_back();
        if (p == wanted) return true;
        if (std::find(seen.begin(), seen.end(), p) != seen.end()) continue;
        seen.push_back(p);
        for (const uint32_t handle : vlcallsof(*p)) {
            if (const vlpicture* called = vlpictureof(handle)) open.push_back(called);
        }
    }
    return false;
}

void eraseandreplay(int colour) {
    DERASE(vl.patch, colour);
    vlplayposted();
}

bool enabled() { return vl.patch && !(vlrootof(vl.patch)->flags & VLDISABLED); }

vlpicture* newpicture(int state) {
    vlpicture* p = vladdpicture(std::make_unique<vlpicture>());
    p->state = int16_t(state);
    vljoinlist(p);
    return p;
}

} // namespace

// The posted ones ascend by priority, a new one before its equals.
void vljoinlist(vlpicture* p) {
    vlpicture** link = &headof(p);
    vlpicture* before = nullptr;
    if (link == &vl.posted) {
        while (*link && (*link)->priority < p->priority) {
            before = *link;
            link = &before->next;
        }
    }
    p->prev = before;
    p->next = *link;
    if (p->next) p->next->prev = p;
    *link = p;
}

vlpicture* DNEWPIC() {
    DCLOSEPIC();
    vlpicture* p = newpicture(-1);
    p->colorindex = vl.color;
    vl.open = p;
    vlretarget();
    return p;
}

void DCLOSEPIC() {
    if (!vl.open) return;
    vlflushall();
    setstate(vl.open, vl.open->state == 0 ? 2 : 1);
    vl.open = nullptr;
    vlretarget();
}

void DAPPEND(vlpicture* picture, int show) {
    vlcheckpicture(picture, "DAPPEND");
    DCLOSEPIC();
    setstate(picture, isposted(picture) ? 0 : -1);
    picture->lastknown = false; // the pen is elsewhere by now
    vl.open = picture;
    vlputword(VLOPCOLOR | uint32_t(vl.color));
    vlretarget();
    if (show) DPOST(picture, show > 0 ? 0 : -1);
}

void DENQPIC(vlpicture* picture) {
    vlcheckpicture(picture, "DENQPIC");
    if (!vl.open) return;
    if (reaches(picture, vl.open)) vlerror("DENQPIC: a picture cannot call itself");
    vlflushall();
    const vlpoint pen = vltonorm(vl.x, vl.y);
    const double* matrix = vl.transformon ? vl.matrix : nullptr;
    vlputcall(picture, pen.x, pen.y, matrix, false);
    if (vl.live) vlplayat(picture, pen.x, pen.y, matrix);
    const vlpoint step = vllinear(picture->lastx * vlunit, picture->lasty * vlunit);
    const vlpoint end = vltoworld(pen.x + step.x, pen.y + step.y);
    vl.x = end.x;
    vl.y = end.y;
    vl.homset = false;
}

void DPRIORITY(vlpicture* picture, double priority) {
    vlcheckpicture(picture, "DPRIORITY");
    leavelist(picture);
    picture->priority = priority == priority ? priority : 0;
    vljoinlist(picture);
}

void DPOST(vlpicture* picture, int colour) {
    vlcheckpicture(picture, "DPOST");
    if (isposted(picture)) return;
    vlflushall();
    setstate(picture, picture->state == -1 ? 0 : 2);
    vlretarget();
    if (colour >= 0 && enabled()) vlplaypicture(picture);
}

void DUNPOST(vlpicture* picture, int colour) {
    vlcheckpicture(picture, "DUNPOST");
    if (!isposted(picture)) return;
    vlflushall();
    setstate(picture, picture->state == 0 ? -1 : 1);
    vlretarget();
    if (colour >= 0 && enabled()) eraseandreplay(colour);
}

void DPSHOW(vlpicture* picture, vlpatch* patch) {
    if (picture) vlcheckpicture(picture, "DPSHOW");
    if (patch) vlcheckpatch(patch, "DPSHOW");
    vlflushall();
    // The target comes back also when the device throws.
    struct restore {
        vlpatch* patch = vl.patch;
        ~restore() {
            vl.patch = patch;
            vlretarget();
        }
    } last;
    if (patch) vl.patch = patch;
    vlretarget();
    if (!enabled()) return;
    if (picture) {
        vlplaypicture(picture);
    } else {
        vlplayposted();
    }
}

void DKILL(vlpicture* picture, int colour) {
    vlcheckpicture(picture, "DKILL");
    if (picture == vl.open) DCLOSEPIC();
    DUNPOST(picture, colour);
    setstate(picture, 3);
    if (--picture->refs == 0) destroy(picture);
}

void DPICPOSITION(vlpicture* picture, double x, double y) {
    vlcheckpicture(picture, "DPICPOSITION");
    picture->offx = x;
    picture->offy = y;
}

int DPICSTATE(vlpicture* picture) {
    const bool dead = vl.handles && vl.handles->of.count(picture) && picture->state == 3;
    if (!dead) vlcheckpicture(picture, "DPICSTATE");
    return picture->state;
}

std::vector<uint32_t> DPICWORDS(vlpicture* picture) {
    vlcheckpicture(picture, "DPICWORDS");
    std::vector<uint32_t> words;
    for (vlwords walk(*picture); walk.more();) words.push_back(walk.next());
    return words;
}

vlpicture* vlmakepicture(std::span<const uint32_t> words) {
    vlpicture* p = newpicture(3);
    p->colorindex = -1; // drawn in the colour of its caller
    for (const uint32_t word : words) vlappendword(*p, word);
    return p;
}

void vlreleasepicture(vlpicture* picture) {
    if (--picture->refs == 0) destroy(picture);
}
