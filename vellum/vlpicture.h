/* vellum/vlpicture.h - the records of pictures and patches and the words of a display list.
 * Owns:    their layout, the handle table, recording. Callers: the files of vellum/. Never:   sees a device's
 * format. */
#pragma once

#include "vellum/vlstate.h"

struct vlchunk {
    static constexpr int room = 250;
    uint16_t count = 0;
    uint32_t words[room];
};

struct vlpicture {
    vlpicture* next = nullptr;
    vlpicture* prev = nullptr;
    int16_t state = -1;
    int refs = 1; // one for the client, one for each call in another picture
    double priority = 0;
    std::vector<std::unique_ptr<vlchunk>> list;
    double offx = 0, offy = 0; // normal units
    int colorindex = 1;        // at the start
    uint32_t handle = 0;
    int lastx = 0, lasty = 0; // where it ends, in units of a word
    bool lastknown = false;
};

enum vlpatchflags { VLCHILD = 1, VLMEMORY = 2, VLDISABLED = 4 };

struct vlpatch {
    int w = 0, h = 0;
    int flags = 0;
    int depth = 1;
    std::unique_ptr<uint8_t[]> bits; // of a memory patch: rows from the bottom, msb first, not padded
    vlpatch* parent = nullptr;
    vlpatch* child = nullptr;
    vlpatch* sibling = nullptr;
    int stride = 0;         // pixels from row to row
    int subx = 0, suby = 0; // within the parent
    int offx = 0, offy = 0; // on the device or within the root
    uint32_t handle = 0;
};

// Every picture and patch that lives, by its handle; slot 0 is none. A handle is never given twice, so
// that a call of a thing that is gone calls nothing.
struct vlhandles {
    struct slot {
        std::unique_ptr<vlpicture> picture;
        std::unique_ptr<vlpatch> patch;
    };
    std::vector<slot> slots = std::vector<slot>(1);
    std::unordered_map<const void*, uint32_t> of;
};
vlpicture* vladdpicture(std::unique_ptr<vlpicture> picture); // gives it a handle
vlpatch* vladdpatch(std::unique_ptr<vlpatch> patch);
void vljoinlist(vlpicture* picture); // takes its place for its state in one of the three lists
void vldrophandle(uint32_t handle);  // destroys what it stands for
// A handle of the client's that is not in the table stops with the name of the call.
void vlcheckpicture(const vlpicture* picture, const char* call);
void vlcheckpatch(const vlpatch* patch, const char* call);

enum vlkind : uint32_t {
    VLMOVEWORD = 0,
    VLLINEWORD = 1u << 30,
    VLPOINTWORD = 2u << 30,
    VLCONTROLWORD = 3u << 30
};
enum vlopcode : uint32_t {
    VLOPCOLOR = 0xc0000000,
    VLOPTRANSFORM = 0xc4000000, // 32 words: 16 doubles, low word first
    VLOPCALL = 0xc8000000,      // 1 word
    VLOPCALLRESTORE = 0xcc000000,
    VLOPPATCH = 0xd0000000, // 1 word
    VLOPTEXT = 0xdc000000,  // bitmap text: (dx, dy), (fg, bg), (font, length), bytes; native: size, (length,
                            // mode), bytes
    VLOPWIDTH = 0xe0000000
};
constexpr uint32_t vlopmask = 0xfc000000, vloperandmask = 0x03ffffff;
constexpr double vlunit = 1.0 / 16384; // of a coordinate in a word

// Appends a word to the open picture; nothing when none is open.
void vlputword(uint32_t word);
// Records the pen's place (normal units) if the open picture does not stand there.
void vlputmove(double nx, double ny);
void vlputline(double nx, double ny);
void vlputpoint(double nx, double ny);

// A closed picture of its own with these words, on no client's hands: for glyphs. The maker holds one
// reference until vlreleasepicture; the pictures that call it hold theirs.
vlpicture* vlmakepicture(std::span<const uint32_t> words);
void vlreleasepicture(vlpicture* picture);
// Records a call of a picture at a point (normal units); with a matrix its transform goes before. restore:
// the point of the display list comes back to the place of the call.
void vlputcall(vlpicture* picture, double nx, double ny, const double* matrix, bool restore);
// Plays a picture at a point (normal units) into the target, under a matrix or null, clipped as a line would
// be.
void vlplayat(const vlpicture* picture, double nx, double ny, const double* matrix);
// Plays a picture where it stands, or all posted ones.
void vlplaypicture(const vlpicture* picture);
void vlplayposted();

// Text as words: these record it, and vlplay.cpp hands what it reads to the device or to vlplaybitmaptext.
struct vlbitmaptext {
    std::string text;
    int x, y; // pixels
    int fg, bg, font, xspace, yspace;
};
void vlputnativetext(const vlnativetext& text);
void vlputbitmaptext(const vlbitmaptext& text);
void vlplaybitmaptext(const vlbitmaptext& text); // vltext.cpp

// A walk over the words of a picture. A control word has data words behind it, which are skipped.
struct vlwords {
    const vlpicture& picture;
    size_t chunk = 0;
    int at = 0;

    explicit vlwords(const vlpicture& p) : picture(p) {}
    bool more() const { return chunk < picture.list.size(); }
    uint32_t next();                       // 0 past the end
    size_t datawords(uint32_t word) const; // behind a control word just taken
    void skip(size_t count) {
        for (; count > 0 && more(); count--) next();
    }
};
// The handles that a picture calls, in order, with repeats.
std::vector<uint32_t> vlcallsof(const vlpicture& picture);
void vlappendword(vlpicture& picture, uint32_t word);

const vlpatch* vlrootof(const vlpatch* patch);
inline vlpatch* vlrootof(vlpatch* patch) {
    return const_cast<vlpatch*>(vlrootof(const_cast<const vlpatch*>(patch)));
}

// The picture or patch of a handle, null for none.
vlpicture* vlpictureof(uint32_t handle);
vlpatch* vlpatchof(uint32_t handle);
