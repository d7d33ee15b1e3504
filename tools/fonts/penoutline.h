/* tools/fonts/penoutline.h - from the centre lines of a glyph to what a face draws: polylines, or the
 * outlines that a pen of some width leaves. Knows nothing of files. */
#pragma once

#include "glyphsource.h"

namespace fonttool {

/* Contours that are filled together by the even-odd rule. */
using contour = std::vector<point>;
using shape = std::vector<contour>;

/* A glyph as a face has it, in units of the source grid; x from the glyph's origin. */
struct drawnglyph {
    std::vector<shape> shapes; // filled: outlines of one stroke each, which may overlap; else open polylines
    double advance = 0;
};

/* `spread` is the greatest distance of a chord from its curve. */
drawnglyph drawglyph(const glyph& g, const glyphset& set, const face& f, double spread);

/* The pieces of a stroke as one polyline, chords no farther than `spread` from the curve. */
contour flatten(const stroke& s, double spread);

} // namespace fonttool
