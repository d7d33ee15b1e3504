// Fuzz target: any bytes as the two font files. Text is drawn and measured with them; a fault is an error of
// the library, never a crash.
#include "vellum/vellum.h"
#include "vellum/vldevice.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace {

struct fontfault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void writefile(const char* name, const uint8_t* data, size_t size) {
    if (FILE* file = fopen(name, "wb")) {
        fwrite(data, 1, size, file);
        fclose(file);
    }
}

void usefonts() {
    DFONT(1);
    DFONT(0);
    DMOVE(0.2, 0.2);
    DTEXT("Hamburgefonstiv\n\b\r\xce\xb1 0123456789");
    vltextsize size;
    DTEXTSIZE(&size, "Sample text", 2);
    vlpicture* picture = DNEWPIC();
    DTEXT("picture");
    DKILL(picture, -1);
    DENQBTXT("Bitmap\n\b", 1, 2, 1, 10, 20, 1, 1);
    double q[10];
    for (int c = 0; c < 128; c += 5) DQFONT(q, c, 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const size_t half = size / 2;
    writefile("vlfonts.0", data, half);
    writefile("vlbfonts.0", data + half, size - half);
    DERROR([](const char* message) { throw fontfault(message); });
    DSETFONTPATH("");
    DDEVICE("MEM")->depth = 8;
    DINI("MEM", nullptr, nullptr, 0, 0, 200, 150);
    DGET(DSCREENPATCH(), 1);
    try {
        usefonts();
    } catch (const fontfault&) {}
    DQUIT(0);
    return 0;
}
