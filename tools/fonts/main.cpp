// vlfontmake DATADIR OUTDIR: makes vlfonts.0 and vlbfonts.0 from the faces and glyphs of DATADIR.
#include "bitmapdraw.h"
#include "fontfile.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace {

using namespace fonttool;

constexpr double spread =
    0.7; // of chords from their curves, units of the source grid: 1/1000 of a capital's height

strokefont makefont(const face& f, const std::string& folder) {
    glyphset set;
    for (const std::string& source : f.sources) readglyphs(folder + "/" + source, set);
    strokefont made;
    made.number = f.number;
    made.filled = f.penx > 0;
    made.proportional = f.cell == 0;
    made.italic = f.slant != 0;
    for (const auto& [code, g] : set.glyphs) made.glyphs[code] = drawglyph(g, set, f, spread);
    return made;
}

bitmapfont makebitmap(const bitmapface& f, const std::string& folder) {
    glyphset set;
    for (const std::string& source : f.sources) readglyphs(folder + "/" + source, set);
    bitmapfont made{f.number, f.cellwidth, f.cellheight, f.baseline, {}};
    for (const auto& [code, g] : set.glyphs) made.glyphs[code] = drawbitmap(g, f);
    return made;
}

void writefile(const std::string& path, const std::vector<uint8_t>& data) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path);
}

void makefiles(const std::string& from, const std::string& to) {
    const facelist list = readfaces(from + "/faces");
    std::vector<strokefont> fonts;
    for (const face& f : list.faces) fonts.push_back(makefont(f, from));
    std::vector<bitmapfont> bitmaps;
    for (const bitmapface& f : list.bitmaps) bitmaps.push_back(makebitmap(f, from));
    writefile(to + "/vlfonts.0", strokefontfile(fonts));
    writefile(to + "/vlbfonts.0", bitmapfontfile(bitmaps));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: vlfontmake DATADIR OUTDIR\n");
        return 2;
    }
    try {
        makefiles(argv[1], argv[2]);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "vlfontmake: %s\n", fault.what());
        return 1;
    }
    return 0;
}
