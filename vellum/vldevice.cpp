#include "vellum/vldevice.h"

#include "vellum/vlstate.h"

#include <cstring>

namespace {

// In the order of vldevicenumber. The screens of old and the platform's window have no operations of their
// own here.
vldevice devices[VLNDEVICES] = {
    {"PSD", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {"CGAC", 9.6, 7.0, 66.6667, 28.571429, 0, 0, 640, 200, 2, 1, 1, 1, 0, 1, 4, 0},
    {"EGAC", 9.6, 7.0, 66.6667, 50, 0, 0, 640, 350, 4, 2, 2, 2, 0, 1, 16, 0},
    {"EGAM", 9.6, 7.0, 66.6667, 50, 0, 0, 640, 350, 4, 1, 1, 2, 0, 1, 16, 0},
    {"VGAC", 10, 7.5, 64, 64, 0, 0, 640, 480, 4, 2, 2, 2, 0, 1, 16, 0},
    {"VGAM", 10, 7.5, 64, 64, 0, 0, 640, 480, 4, 1, 1, 2, 0, 1, 16, 0},
    {"ATIC", 10, 7.5, 80, 74.6667, 0, 0, 800, 560, 4, 2, 2, 2, 0, 1, 16, 0},
    {"GENC", 10, 7.5, 80, 80, 0, 0, 800, 600, 4, 2, 2, 2, 0, 1, 16, 0},
    {"PSP", 7.944444, 10.444444, 300, 300, 0, 0, 2383, 3133, 1, 4, 4, 4, 13, 0, 4096, 1},
    {"PSL", 10.444444, 7.944444, 300, 300, 0, 0, 3133, 2383, 1, 4, 4, 4, 13, 0, 4096, 1},
    {"PSH", 7.94444444, 5.2222222, 300, 300, 0, 0, 2383, 1567, 1, 4, 4, 4, 13, 0, 4096, 1},
    {"LJ2P", 7.8333, 10.4433, 300, 300, 0, 0, 2350, 3133, 1, 4, 0, 0, 13, 0, 16, 1},
    {"LJ2L", 10.6, 7.95, 300, 300, 0, 0, 3180, 2385, 1, 4, 0, 0, 13, 0, 16, 1},
    {"lj2p", 7.9167, 10.6, 300, 300, 0, 0, 2375, 3180, 1, 4, 0, 0, 13, 0, 16, 1},
    {"lj2l", 10.6, 8.0, 300, 300, 0, 0, 3180, 2400, 1, 4, 0, 0, 13, 0, 16, 1},
    {"XDEV", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {"MSWDEV", 0, 0, 72, 72, 0, 0, 0, 0, 24, 4, 4, 4, 13, 0, 4096, 1},
    {"DPS", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {"RPS", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {"MACD", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    // A patch in memory as a device: its depth may be changed before DINI.
    {"MEM", 10, 7.5, 72, 72, 0, 0, 720, 540, 24, 8, 8, 8, 0, 0, 1 << 24, 0},
    // Pages of the size of PSL and PSP, in true colour, antialiased.
    {"PNG", 10.444444, 7.944444, 150, 150, 0, 0, 1566, 1191, 15, 5, 5, 5, 13, 0, 32768, 1},
    {"PNGP", 7.944444, 10.444444, 150, 150, 0, 0, 1191, 1566, 15, 5, 5, 5, 13, 0, 32768, 1},
    {"SVG", 10.444444, 7.944444, 300, 300, 0, 0, 3133, 2383, 15, 5, 5, 5, 13, 0, 32768, 1},
    {"SVGP", 7.944444, 10.444444, 300, 300, 0, 0, 2383, 3133, 15, 5, 5, 5, 13, 0, 32768, 1},
    {"PDF", 10.444444, 7.944444, 300, 300, 0, 0, 3133, 2383, 15, 5, 5, 5, 13, 0, 32768, 1},
    {"PDFP", 7.944444, 10.444444, 300, 300, 0, 0, 2383, 3133, 15, 5, 5, 5, 13, 0, 32768, 1},
};

const vldeviceops* outside[VLNDEVICES]; // of devices that live outside the library

} // namespace

int DDEVICENUMBER(const char* name) {
    if (!name) return vl.device;
    for (int i = 0; i < VLNDEVICES; i++)
        if (!strcmp(devices[i].name, name)) return i;
    return -1;
}

const char* DDEVICENAME(int number) {
    return number < 0 || number >= VLNDEVICES ? nullptr : devices[number].name;
}

vldevice* DDEVICE(const char* name) {
    if (!name) return vl.device < 0 ? nullptr : &vl.record;
    const int number = DDEVICENUMBER(name);
    return number < 0 ? nullptr : &devices[number];
}

const vldeviceops* vldeviceoperations(int number) {
    if (number < 0 || number >= VLNDEVICES) return nullptr;
    if (outside[number]) return outside[number];
    switch (number) {
    case VLPSP:
    case VLPSL:
    case VLPSH: return vlpostscriptoperations();
    case VLLJ2P:
    case VLLJ2L:
    case VLLJ2PFULL:
    case VLLJ2LFULL: return vllaserjetoperations();
    case VLMEM: return vlmemoryoperations();
    case VLPNGL:
    case VLPNGP:
    case VLSVGL:
    case VLSVGP:
    case VLPDFL:
    case VLPDFP: return vlcairooperations(number);
    default: return nullptr;
    }
}

void vlsetdeviceoperations(int number, const vldeviceops* ops) {
    if (number >= 0 && number < VLNDEVICES) outside[number] = ops;
}
