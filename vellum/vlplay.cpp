#include "vellum/vldraw.h"
#include "vellum/vlpicture.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

// Where the words of a picture go: normal = o + m (word's point).
struct place {
    double ox, oy;
    double m[4];
    vlpoint of(double x, double y) const { return {ox + m[0] * x + m[1] * y, oy + m[2] * x + m[3] * y}; }
    // The place of a picture called at a point of this one, under a matrix of its own.
    place called(double x, double y, const double own[4]) const {
        const vlpoint o = of(x, y);
        return {o.x,
                o.y,
                {m[0] * own[0] + m[1] * own[2], m[0] * own[1] + m[1] * own[3], m[2] * own[0] + m[3] * own[2],
                 m[2] * own[1] + m[3] * own[3]}};
    }
};

constexpr double unit2[4] = {1, 0, 0, 1};
constexpr int deepest = 64; // calls within calls
constexpr size_t mostwords =
    200000000; // of one play: pictures that call each other twice and twice again end here

// The colour of the client comes back after a picture, also when the device throws.
struct keepcolour {
    int color = vl.color;
    ~keepcolour() { vl.color = color; }
};

struct player {
    const double* box; // normal: what may be drawn
    int depth = 0;
    size_t words = 0;

    void play(const vlpicture& picture, const place& where);
};

// The state of one picture while its words are played.
struct playing {
    player& all;
    vlwords walk;
    const place& where;
    double x = 0, y = 0; // where the words stand
    double own[4] = {1, 0, 0, 1};

    void point(uint32_t word);
    void control(uint32_t word);
    void transform();
    void call(uint32_t word, bool restore);
    void patch(uint32_t word);
    void nativetext();
    void bitmaptext();
    std::string bytes(size_t length);
};

double coordinate(uint32_t fifteen) {
    const int v = int(fifteen & 0x7fff);
    return (v & 0x4000 ? v - 0x8000 : v) * vlunit;
}

void playing::point(uint32_t word) {
    const double nx = coordinate(word >> 15), ny = coordinate(word);
    const vlpoint to = where.of(nx, ny);
    if ((word & VLCONTROLWORD) == VLLINEWORD) {
        const vlpoint from = where.of(x, y);
        double line[4] = {from.x, from.y, to.x, to.y};
        if (vlclipline(all.box, &line[0], &line[1], &line[2], &line[3])) {
            const vlpoint a = vltopixel(line[0], line[1]), b = vltopixel(line[2], line[3]);
            vlpixelline(vl.patch, a.x, a.y, b.x, b.y);
        }
    } else if ((word & VLCONTROLWORD) == VLPOINTWORD) {
        double dot[4] = {to.x, to.y, to.x, to.y};
        if (vlclipline(all.box, &dot[0], &dot[1], &dot[2], &dot[3])) {
            const vlpoint p = vltopixel(to.x, to.y);
            vlpixeldot(vl.patch, p.x, p.y, vl.color);
        }
    }
    x = nx;
    y = ny;
}

void playing::transform() {
    double matrix[16];
    for (double& element : matrix) {
        const uint64_t low = walk.next();
        element = std::bit_cast<double>(uint64_t(walk.next()) << 32 | low);
    }
    const double linear[4] = {matrix[0], matrix[1], matrix[4], matrix[5]};
    std::copy_n(linear, 4, own);
}

void playing::call(uint32_t word, bool restore) {
    walk.next();
    const vlpicture* picture = vlpictureof(word & vloperandmask);
    if (picture) {
        all.play(*picture, where.called(x, y, own));
        if (!restore) {
            const double dx = picture->lastx * vlunit, dy = picture->lasty * vlunit;
            x += own[0] * dx + own[1] * dy;
            y += own[2] * dx + own[3] * dy;
        }
    }
    std::copy_n(unit2, 4, own);
}

void playing::patch(uint32_t word) {
    walk.next();
    vlpatch* source = vlpatchof(word & vloperandmask);
    if (!source || source == vl.patch) return;
    const vlpoint n = where.of(x, y), p = vltopixel(n.x, n.y);
    if (!(std::fabs(p.x) < 1e6 && std::fabs(p.y) < 1e6)) return;
    DSETPATCH(vl.patch, source, int(std::lrint(p.x)) - vl.patch->offx, int(std::lrint(p.y)) - vl.patch->offy,
              -1);
}

std::string playing::bytes(size_t length) {
    std::string s;
    for (size_t i = 0; i < length && walk.more(); i += 4) {
        const uint32_t word = walk.next();
        for (size_t k = 0; k < 4 && i + k < length; k++) s += char(word >> (24 - 8 * k));
    }
    return s;
}

void playing::nativetext() {
    const float size = std::bit_cast<float>(walk.next());
    const uint32_t head = walk.next();
    const std::string s = bytes(head >> 16);
    if (!vl.ops || !vl.ops->drawtext || vlrootof(vl.patch)->flags & VLMEMORY || !std::isfinite(size)) return;
    const vlpoint n = where.of(x, y), p = vltopixel(n.x, n.y);
    vlnativetext text{s.data(), s.size(), int16_t(head), p.x, p.y, size, {}, vl.color, -1};
    std::copy_n(where.m, 4, text.m);
    vlcursorhold hold;
    vl.ops->drawtext(text);
}

void playing::bitmaptext() {
    const auto high = [](uint32_t word) { return int(int16_t(word >> 16)); };
    const auto low = [](uint32_t word) { return int(int16_t(word)); };
    const uint32_t space = walk.next(), colours = walk.next(), head = walk.next();
    const std::string s = bytes(head & 0xffff);
    const vlpoint n = where.of(x, y), p = vltopixel(n.x, n.y);
    if (!(std::fabs(p.x) < 1e6 && std::fabs(p.y) < 1e6)) return;
    vlplaybitmaptext({s, int(std::lrint(p.x)), int(std::lrint(p.y)), high(colours), low(colours), high(head),
                      high(space), low(space)});
}

void playing::control(uint32_t word) {
    switch (word & vlopmask) {
    case VLOPCOLOR: vl.color = int(word & 0xffffff); return;
    case VLOPTRANSFORM: return transform();
    case VLOPCALL: return call(word, false);
    case VLOPCALLRESTORE: return call(word, true);
    case VLOPPATCH: return patch(word);
    case VLOPTEXT: return word & 0xffff ? nativetext() : bitmaptext();
    case VLOPWIDTH: {
        const int low = int(word & 0xffff);
        if (vl.ops && vl.ops->setlinewidth) vl.ops->setlinewidth(low == 0 ? 0 : std::max(4 - low, 0));
        return;
    }
    default: return;
    }
}

void player::play(const vlpicture& picture, const place& where) {
    if (depth == deepest) return;
    depth++;
    keepcolour colour;
    if (picture.colorindex >= 0) vl.color = picture.colorindex;
    playing now{*this, vlwords(picture), where};
    while (now.walk.more()) {
        const uint32_t word = now.walk.next();
        if (++words > mostwords) vlerror("VELLUM: pictures call each other too often");
        if ((word & VLCONTROLWORD) == VLCONTROLWORD) {
            now.control(word);
        } else {
            now.point(word);
        }
    }
    depth--;
}

} // namespace

void vlplaypicture(const vlpicture* picture) {
    if (!vl.patch) return;
    player all{vl.patchbox};
    all.play(*picture, {picture->offx, picture->offy, {1, 0, 0, 1}});
}

void vlplayposted() {
    for (const vlpicture* p = vl.posted; p; p = p->next) vlplaypicture(p);
}

void vlplayat(const vlpicture* picture, double nx, double ny, const double* matrix) {
    player all{vl.drawbox};
    place where{nx, ny, {1, 0, 0, 1}};
    if (matrix) {
        const double linear[4] = {matrix[0], matrix[1], matrix[4], matrix[5]};
        std::copy_n(linear, 4, where.m);
    }
    all.play(*picture, where);
}
