#include "interp/base/hooks.h"

consolehooks console;
upperhooks upper;

void hooksreset() {
    console = {};
    console.write = [](const char*, size_t) {};
    console.getkey = [](bool) { return -1; };
    console.breakpending = [] { return false; };
    console.colour = [](int, int) {};
    console.question = [](const char*, const char*, const char* const*, int) { return 0; };
    console.readline = [](const char*, std::string&) { return false; };
    console.lineedit = [](std::string&) { return false; };
    console.editfile = [](const char*) { return false; };
    console.printfile = [](const char*) { return false; };
    console.errortext = [](const char*) {};
    console.help = [](const char*) { return false; };
    console.largeblock = [](void*, size_t) {};
    upper = {};
    upper.newtoken = [](int& number, int& index) { number = 75, index = 0; };
    upper.pushtoken = [](int, int) {};
    upper.subscript = [](int, int) {};
    upper.runstatement = [](const char*) {};
    upper.usequietly = [](const char*) {};
    upper.redraw = [] {};
    upper.indofile = [] { return false; };
    upper.shutdowngraphics = [] {};
    upper.nformatchanged = [](const char*) {};
    upper.displayselect = [](const char*) {};
    upper.nametext = [](const char* name) { return std::string(name); };
    upper.derivative = [](int, int) { return 0; };
    upper.odecall = [](int, const double*, int, double&) { return false; };
}

namespace {
const bool hooked = (hooksreset(), true); // before main, so that no caller meets a null pointer
}
