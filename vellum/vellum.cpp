#include "vellum/vlcache.h"
#include "vellum/vldraw.h"
#include "vellum/vlpicture.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double mostdots = 32767; // of a device along one side

struct sizes {
    double width, height;
    int xpix, ypix;
};

// One side of the working record: what is not given follows from the rest by the dots per inch.
bool setside(double given, int pixels, double& inches, int& pix, double& dpi) {
    if (given > 0) inches = given;
    if (given > 0 && pixels > 0) dpi = pixels / given;
    if (given > 0 && pixels <= 0) {
        if (!(given * dpi <= mostdots)) return false;
        pix = int(given * dpi);
    }
    if (pixels > 0) {
        pix = pixels;
        if (!(given > 0) && dpi > 0) inches = pixels / dpi;
    }
    return std::isfinite(inches) && inches > 0 && pix > 0 && pix <= mostdots && dpi > 0;
}

bool setrecord(const sizes& given) {
    vldevice& r = vl.record;
    if (!setside(given.width, given.xpix, r.widthin, r.xpix, r.xdpi)) return false;
    if (!setside(given.height, given.ypix, r.heightin, r.ypix, r.ydpi)) return false;
    const double longer = std::max(r.widthin, r.heightin);
    r.xaspect = r.widthin / longer;
    r.yaspect = r.heightin / longer;
    return true;
}

const char* defaultname(int device) {
    switch (device) {
    case VLPSP:
    case VLPSL:
    case VLPSH: return "vellum.ps";
    case VLPNGL:
    case VLPNGP: return "vellum.png";
    case VLSVGL:
    case VLSVGP: return "vellum.svg";
    case VLPDFL:
    case VLPDFP: return "vellum.pdf";
    default: return "vellum.lj";
    }
}

// The root patch: the whole device, or pixels of its own where the device is memory.
void makescreen() {
    auto patch = std::make_unique<vlpatch>();
    patch->w = patch->stride = vl.record.xpix;
    patch->h = vl.record.ypix;
    patch->depth = vl.record.depth;
    patch->flags = VLDISABLED;
    if (vl.device == VLMEM) {
        patch->flags |= VLMEMORY;
        patch->bits = vlbigalloc(vlbitsize(patch->w, patch->h, patch->depth));
    }
    vl.screen = vl.patch = vladdpatch(std::move(patch));
}

void closedevice(int flag) {
    if (vl.ops && vl.ops->flush) vl.ops->flush();
    if (vl.ops && vl.ops->close) vl.ops->close(flag);
    if (vldevice* row = vl.device < 0 ? nullptr : DDEVICE(vl.record.name)) *row = vl.record;
}

// Pictures outlive a change of device; the state of a first start does not.
void forgetdevice() {
    vl.palette.clear();
    vl.output.reset();
    if (vl.screen) {
        vlpatch* screen = vl.screen;
        vl.screen = nullptr;
        vl.patch = nullptr;
        DKILLPATCH(screen);
    }
    vl.device = -1;
    vl.ops = nullptr;
}

void initialview() {
    const double whole[4] = {0, vl.record.xaspect, 0, vl.record.yaspect};
    std::copy_n(whole, 4, vl.viewport);
    vlretarget();
}

bool initdevice(int number, const char* file, const sizes& given) {
    vl.device = number;
    vl.record = *DDEVICE(DDEVICENAME(number));
    vl.ops = vldeviceoperations(number);
    vl.filename = file ? file : defaultname(number);
    if (!vl.ops || !setrecord(given)) return false;
    vlsetcolors();
    if (vl.ops->init && !vl.ops->init(&vl.record)) return false;
    return true;
}

} // namespace

int DINI(const char* device, int* colours, const char* file, double width, double height, int xpix,
         int ypix) {
    const int number = DDEVICENUMBER(device ? device : "");
    if (number < 0) vlerror("DINI: Not a valid display");
    if (number == vl.device) {
        if (colours) *colours = vl.record.ncolors;
        return 1;
    }
    if (vl.device >= 0) {
        vlflushall();
        closedevice(0);
        forgetdevice();
    }
    if (!initdevice(number, file, {width, height, xpix, ypix})) {
        vl.device = -1;
        vl.ops = nullptr;
        return 0;
    }
    *DDEVICE(device) = vl.record;
    makescreen();
    initialview();
    if (colours) *colours = vl.record.ncolors;
    return 1;
}

void DQUIT(int flag) {
    if (vl.device < 0) return;
    // The library starts anew also when the end of the output fails.
    struct restart {
        ~restart() {
            vl.fonts.reset(); // its glyphs are pictures
            vlstate fresh;
            fresh.handler = vl.handler;
            fresh.strokefontfile = vl.strokefontfile;
            fresh.bitmapfontfile = vl.bitmapfontfile;
            vl = std::move(fresh);
            cachediscard();
        }
    } atend;
    vlflushall();
    closedevice(flag);
}

void DGET(vlpatch* patch, int flag) {
    if (!patch) patch = vl.screen;
    vlcheckpatch(patch, "DGET");
    vlflushall();
    flag = std::clamp(flag, -3, 2);
    vlpatch* root = vlrootof(patch);
    const bool device = root == vl.screen;
    if (flag > 0) {
        if (device && vl.ops->open) vl.ops->open(flag);
        if (device) vl.active = true;
        root->flags &= ~VLDISABLED;
        if (flag == 1) DERASE(root, 0);
    } else if (flag < 0) {
        if (flag < -1) DERASE(root, 0);
        if (device && flag == -1 && vl.ops->endpage) vl.ops->endpage();
        if (device && vl.ops->open) vl.ops->open(flag);
        if (device) vl.active = false;
        root->flags |= VLDISABLED;
    }
    vlretarget();
}

void DFLUSH() {
    vlflushall();
    if (vl.ops && vl.ops->flush) vl.ops->flush();
}

void DLINEWIDTH(double w) {
    if (!(w >= 0) || !std::isfinite(w)) return;
    vlflushall();
    // A display list knows the widths 1 to 3 and the thinnest.
    const long low = w == 0 ? 0 : std::clamp(4 - std::lrint(std::min(w, 4.0)), 1L, 3L);
    vlputword(VLOPWIDTH | uint32_t(low));
    if (vl.live && vl.ops && vl.ops->setlinewidth) vl.ops->setlinewidth(w);
}

vlpatch* DSCREENPATCH() { return vl.screen; }
vlpatch* DCURRENTPATCH() { return vl.patch; }
vlpicture* DCURRENTPICTURE() { return vl.open; }

int DQEV(int op, vlevent* event, int mode, int wait, int flushop) {
    if (op < -1 || op > 5) vlerror("Illegal DQEV Op value");
    if (flushop < 0 || flushop > 1) vlerror("Illegal DQEV Flush Op value");
    return vl.ops && vl.ops->qev ? vl.ops->qev(op, event, mode, wait, flushop) : 0;
}
