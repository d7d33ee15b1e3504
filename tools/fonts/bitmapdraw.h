/* tools/fonts/bitmapdraw.h - from the centre lines of a glyph to a bitmap of a fixed cell. Knows nothing of
 * files. */
#pragma once

#include "fontfile.h"

namespace fonttool {

/* The glyph centred in the cell, its lines snapped so that foot, small and capital height lie on rows of
 * pixels. */
bitmap drawbitmap(const glyph& g, const bitmapface& f);

} // namespace fonttool
