#include "vellum/vlpalette.h"

#include <cmath>

namespace {

uint32_t rgbword(const vlrgb& c) {
    const auto part = [](double v) { return uint32_t(std::lrint(v * 255)); };
    return part(c.r) << 16 | part(c.g) << 8 | part(c.b);
}

vlrgb rgbofword(uint32_t word) {
    return {(word >> 16 & 255) / 255.0, (word >> 8 & 255) / 255.0, (word & 255) / 255.0, true};
}

std::vector<uint32_t> readcolours(vlsavefile& file, size_t count) {
    file.need(4 * uint64_t(count));
    std::vector<uint32_t> colours(count);
    for (uint32_t& c : colours) c = uint32_t(file.get(4));
    return colours;
}

std::vector<int> readindices(vlsavefile& file, size_t count) {
    file.need(2 * uint64_t(count));
    std::vector<int> index(count);
    for (int& i : index) i = int(file.get(2));
    return index;
}

void takeover(const std::vector<uint32_t>& colours) {
    for (size_t i = 0; i < colours.size() && i < vl.palette.size(); i++) {
        vl.palette[i] = rgbofword(colours[i]);
        if (vl.ops && vl.ops->getpalette) {
            vl.ops->getpalette(int(i), int(colours[i] >> 20 & 15), int(colours[i] >> 12 & 15),
                               int(colours[i] >> 4 & 15));
        }
    }
    if (vl.ops && vl.ops->getpalette) vl.ops->getpalette(-1, 0, 0, 0);
}

} // namespace

void vlwritepalette(vlsavefile& file, bool pictures) {
    const size_t count = vl.palette.size();
    if (count == 0) return file.put(0, 2);
    const uint64_t number = pictures ? count - 1 : count;
    file.put(number, 2);
    if (!pictures) file.put(number, 2);
    for (const vlrgb& c : vl.palette) file.put(rgbword(c), 4);
    if (pictures) file.put(number, 2);
    for (size_t i = 0; i < count; i++) file.put(i, 2);
}

void vlreadpalette(vlsavefile& file, bool pictures, int device, int mode, vltables* tables) {
    const size_t first = size_t(file.get(2));
    if (first == 0) return;
    const size_t more = pictures ? 1 : 0;
    size_t second = pictures ? 0 : size_t(file.get(2));
    std::vector<uint32_t> colours = readcolours(file, first + more);
    if (pictures) second = size_t(file.get(2));
    std::vector<int> index = readindices(file, second + more);
    if (mode & VLKEEPPALETTE && device == vl.device) takeover(colours);
    if (mode & VLTABLES && tables) {
        tables->colours = std::move(colours);
        tables->index = std::move(index);
    }
}
