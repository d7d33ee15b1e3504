#include "vellum/vldraw.h"

#include <algorithm>

namespace {

// Points nearer to the eye than this have no image.
constexpr double nearplane = 1e-6;

bool affine() { return vl.matrix[12] == 0 && vl.matrix[13] == 0 && vl.matrix[14] == 0 && vl.matrix[15] == 1; }

void apply(const double user[3], double hom[4]) {
    for (int i = 0; i < 4; i++) {
        const double* row = vl.matrix + 4 * i;
        hom[i] = row[0] * user[0] + row[1] * user[1] + row[2] * user[2] + row[3];
    }
}

void setuser(double x, double y, double z) {
    vl.user[0] = x;
    vl.user[1] = y;
    vl.user[2] = z;
}

// The pen at the image of vl.hom.
void setpen() {
    vl.homset = true;
    if (vl.hom[3] < nearplane) return;
    vl.x = vl.hom[0] / vl.hom[3];
    vl.y = vl.hom[1] / vl.hom[3];
}

// The end of a segment that lies behind the eye is brought to the near plane.
void tonear(double behind[4], const double before[4]) {
    const double t = (nearplane - before[3]) / (behind[3] - before[3]);
    for (int i = 0; i < 4; i++) behind[i] = before[i] + t * (behind[i] - before[i]);
}

void drawspace(double x, double y, double z) {
    double from[4] = {vl.x, vl.y, 0, 1}, to[4];
    if (vl.homset) std::copy_n(vl.hom, 4, from);
    setuser(x, y, z);
    apply(vl.user, vl.hom);
    std::copy_n(vl.hom, 4, to);
    const bool frombehind = from[3] < nearplane, tobehind = to[3] < nearplane;
    if (!(frombehind && tobehind)) {
        if (frombehind) tonear(from, to);
        if (tobehind) tonear(to, from);
        vlstyledline(from[0] / from[3], from[1] / from[3], to[0] / to[3], to[1] / to[3]);
    }
    setpen();
}

void movespace(double x, double y, double z) {
    setuser(x, y, z);
    apply(vl.user, vl.hom);
    setpen();
}

// The pen goes to a point of the world as it stands.
void moveplain(double x, double y) {
    vl.x = x;
    vl.y = y;
    vl.homset = false;
}

void drawplain(double x, double y) {
    const double x0 = vl.x, y0 = vl.y;
    moveplain(x, y);
    vlstyledline(x0, y0, x, y);
}

// A step of the pen: under a perspective the point itself steps, else the transform's linear part turns the
// step.
void step(double dx, double dy, bool draw) {
    if (vl.transformon && !affine()) {
        const double x = vl.user[0] + dx, y = vl.user[1] + dy, z = vl.user[2];
        return draw ? drawspace(x, y, z) : movespace(x, y, z);
    }
    vl.user[0] += dx;
    vl.user[1] += dy;
    const vlpoint d = vllinear(dx, dy);
    return draw ? drawplain(vl.x + d.x, vl.y + d.y) : moveplain(vl.x + d.x, vl.y + d.y);
}

// A step in normal lengths; the transform acts on them, and then they become world units.
void stepnorm(double dx, double dy, bool draw) {
    const vlpoint d = vllinear(dx, dy);
    const double x = vl.x + d.x / vl.norm.sx, y = vl.y + d.y / vl.norm.sy;
    if (draw) {
        drawplain(x, y);
    } else {
        moveplain(x, y);
    }
}

} // namespace

void DMOVE3(double x, double y, double z) {
    if (vl.transformon) return movespace(x, y, z);
    setuser(x, y, z);
    moveplain(x, y);
}

void DDRAW3(double x, double y, double z) {
    if (vl.transformon) return drawspace(x, y, z);
    setuser(x, y, z);
    drawplain(x, y);
}

void DMOVE(double x, double y) { DMOVE3(x, y, 0); }
void DDRAW(double x, double y) { DDRAW3(x, y, 0); }

void DMOVER(double dx, double dy) { step(dx, dy, false); }
void DDRAWR(double dx, double dy) { step(dx, dy, true); }
void DMOVEN(double dx, double dy) { stepnorm(dx, dy, false); }
void DDRAWN(double dx, double dy) { stepnorm(dx, dy, true); }

void DDOT(double dx, double dy) {
    const vlpoint d = vllinear(dx, dy);
    vldot(vl.x + d.x, vl.y + d.y);
}

void DPOINT(double x, double y) {
    DMOVE(x, y);
    vldot(vl.x, vl.y);
}

void DPOLYLINE(const double* xy, size_t n) {
    if (n == 0) return;
    DMOVE(xy[0], xy[1]);
    for (size_t i = 1; i < n; i++) DDRAW(xy[2 * i], xy[2 * i + 1]);
}

void DGETPOS(double* x, double* y, double* z) {
    if (x) *x = vl.x;
    if (y) *y = vl.y;
    if (z) *z = vl.user[2];
}
