#include "plot/scene.h"

#include "plot/colors.h"
#include "vellum/vellum.h"

#include <cmath>
#include <numbers>

scenestate scene;

namespace {

void setviewport(double x0, double x1, double y0, double y1) {
    const double s = scene.plotscale;
    DVIEWPORT(s * x0, s * x1, s * y0, s * y1);
}

// Viewport and world window alike: what follows is drawn in screen-normal units.
void clipnormal(const box& b) {
    setviewport(b.x0, b.x1, b.y0, b.y1);
    DWINDOW(b.x0, b.x1, b.y0, b.y1);
}

// The frame as viewport, with the world scale of the image carried on to its edges.
void clipworldframe(const window& w) {
    setviewport(w.fxmin, w.fxmax, w.fymin, w.fymax);
    const double sx = (w.wxmax - w.wxmin) / (w.ixmax - w.ixmin), ox = w.wxmin - w.ixmin * sx;
    const double sy = (w.wymax - w.wymin) / (w.iymax - w.iymin), oy = w.wymin - w.iymin * sy;
    DWINDOW(w.fxmin * sx + ox, w.fxmax * sx + ox, w.fymin * sy + oy, w.fymax * sy + oy);
}

void drawbackground(const box& b, int color) {
    if (color == CLEARCOLOR) return;
    const double s = scene.plotscale * DPIXELSPER();
    erasebox(int(std::lround(s * b.x0)), int(std::lround(s * b.y0)), int(std::lround(s * (b.x1 - b.x0))),
             int(std::lround(s * (b.y1 - b.y0))), color);
}

void drawbox(const box& b, int color) {
    setviewport(b.x0, b.x1, b.y0, b.y1);
    DWINDOW(0, 1, 0, 1);
    setcolor(color);
    DMOVE(0, 0);
    DDRAW(1, 0);
    DDRAW(1, 1);
    DDRAW(0, 1);
    DDRAW(0, 0);
}

void drawboxes(const window& w) {
    if (scene.backgrounds) {
        drawbackground(frameof(w), w.framecolor);
        drawbackground(imageof(w), w.imagecolor);
    }
    if (w.imagebox) drawbox(imageof(w), w.imageboxcolor);
    if (w.framebox) drawbox(frameof(w), w.frameboxcolor);
}

// With its edges, however they were rounded on the way from fractions.
bool inside(const box& b, double x, double y) {
    constexpr double ROUNDING = 1e-12;
    return x >= b.x0 - ROUNDING && x <= b.x1 + ROUNDING && y >= b.y0 - ROUNDING && y <= b.y1 + ROUNDING;
}

// How far a ray from (x, y) inside the box goes along (dx, dy) before it leaves.
double raylength(const box& b, double x, double y, double dx, double dy) {
    constexpr double AXISPARALLEL = 1e-12;
    const double tx = std::fabs(dx) < AXISPARALLEL ? HUGE_VAL : ((dx > 0 ? b.x1 : b.x0) - x) / dx;
    const double ty = std::fabs(dy) < AXISPARALLEL ? HUGE_VAL : ((dy > 0 ? b.y1 : b.y0) - y) / dy;
    return std::fmin(tx, ty);
}

/* A title stands on the line from its anchor to the edge of the frame; `shift` tells which part of the room
 * that the text leaves free lies before it. A negative shift looks along the line the other way. */
void drawtitle(const window& w, const title& t) {
    const box frame = frameof(w);
    double x = t.x, y = t.y, otherx = t.x, othery = t.y;
    convertunits(x, otherx, y, othery, w, t.atunits, UNITSNORMAL);
    if (!inside(frame, x, y)) return;
    clipnormal(frame);
    const double size = sizetonormal(t.size, t.sizeunits, w);
    const double turn = t.angle / 360 * 2 * std::numbers::pi;
    const double cosine = std::cos(turn), sine = std::sin(turn);
    double shift = t.shift, length;
    if (shift < 0) {
        length = raylength(frame, x, y, -cosine, -sine);
        x -= length * cosine;
        y -= length * sine;
        shift = 1 + shift;
    } else {
        length = raylength(frame, x, y, cosine, sine);
    }
    const double width = textadvance(t.text.c_str(), t.font, size, TEXTCOMMANDS);
    const double height = textheight(t.text.c_str(), t.font, size, TEXTCOMMANDS);
    const double along = (length - width) * shift - (t.hplace + 1) * 0.5 * width;
    const double across = -(t.vplace + 1) * 0.5 * height;
    DMOVE(x + along * cosine - across * sine, y + along * sine + across * cosine);
    drawtext(t.text.c_str(), t.font, size, t.color, t.angle, TEXTCOMMANDS);
}

void drawcurve(const window& w, const curve& c) {
    sceneclip(w, c);
    drawline(c.data.get(), c.linetype, w, c);
    drawpoints(c.data.get(), c.pointtype, w, c);
    drawlabels(w, c);
}

void drawmember(const window& w, int member) {
    scene.member = member;
    if (istitle(member)) {
        const title& t = titleof(member);
        if (!t.blanked && !t.text.empty()) drawtitle(w, t);
    } else if (iscurve(member)) {
        const curve& c = curveof(member);
        if (!c.blanked && c.data) drawcurve(w, c);
    }
}

} // namespace

scenescale worldpernormal() { return {scene.plotscale / DXSCALE(), scene.plotscale / DYSCALE()}; }

void sceneclipnormal(const window& w, const curve& c) {
    clipnormal(c.wclipsw & CLIPTOIMAGE ? imageof(w) : frameof(w));
}

void sceneclip(const window& w, const curve& c) {
    const bool toimage = c.wclipsw & CLIPTOIMAGE;
    if (c.kind != TOKDRAW) return sceneclipnormal(w, c);
    if (!toimage) return clipworldframe(w);
    setviewport(w.ixmin, w.ixmax, w.iymin, w.iymax);
    DWINDOW(w.wxmin, w.wxmax, w.wymin, w.wymax);
}

void drawwindow(int index) {
    const window& w = windowof(index);
    if (w.blanked) return;
    drawboxes(w);
    if (w.w3d) {
        if (scene.drawwindow3d) scene.drawwindow3d(index);
        scene.nowait = true;
        return;
    }
    for (int member = ringnext(index); member != 0; member = ringnext(member)) drawmember(w, member);
}
