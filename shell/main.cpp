#include "interp/base/report.h"
#include "interp/dofiles.h"
#include "interp/session.h"
#include "shell/commandline.h"
#include "shell/console.h"
#include "shell/hooks.h"
#include "shell/platform.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int WRONGUSAGE = 2;

// The statements of a batch, and what they are called in messages.
bool batchstatements(const commandline& c, std::string& name, std::string& text) {
    if (c.run == runkind::eval) {
        name = "--eval";
        text = c.operand;
        return true;
    }
    const bool standardinput = c.operand == "-";
    name = standardinput ? "standard input" : dofilepath(c.operand);
    if (!(standardinput ? readwhole(stdin, text) : readwhole(name.c_str(), text))) return false;
    // The line of a script that names its interpreter; its line end stays, for the line numbers.
    if (text.starts_with("#!")) text.erase(0, text.find('\n'));
    return true;
}

int runsession(const sessionoptions& options) {
    constart(options.batch);
    consolehooksset();
    int status = sessionstart(options);
    if (status == 0) status = sessionrun();
    conclose();
    return status;
}

} // namespace

int main(int argc, char** argv) {
    commandline c = readcommandline(std::vector<std::string>(argv + 1, argv + argc));
    switch (c.run) {
    case runkind::help: return printf("%s\n%s", usageline, helptext) < 0;
    case runkind::version: return printf("TARN %s\n", TARNVERSION) < 0;
    case runkind::wrong: fprintf(stderr, "tarn: %s\n%s", c.operand.c_str(), usageline); return WRONGUSAGE;
    case runkind::batch:
    case runkind::eval:
        if (batchstatements(c, c.session.batchname, c.session.batchtext)) break;
        fprintf(stderr, "##Error: couldn't open DO file %s\nWarning: %s\n", c.operand.c_str(),
                notreadable(c.operand).text.c_str());
        return 1;
    case runkind::session: break;
    }
    c.session.programpath = programdirectory(argv[0]);
    c.session.freememory = freememory();
    c.session.stackbytes = stackbytes();
    return runsession(c.session);
}
