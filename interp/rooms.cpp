#include "interp/rooms.h"

#include "funcs/builtin.h"
#include "funcs/define.h"
#include "funcs/flatcode.h"
#include "funcs/ran.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "interp/datafiles.h"
#include "interp/diskuse.h"
#include "interp/dofiles.h"
#include "interp/edit.h"
#include "interp/listing.h"
#include "interp/process.h"
#include "interp/session.h"
#include "interp/textcalls.h"
#include "plot/display.h"
#include "plot/plotobj.h"
#include "solvers/start.h"
#include "values/harray.h"

void roomsstart() {
    const consolehooks kept = console; // it was set before the start, by the shell
    hooksreset();
    console = kept;
    fp = fpstate{};
    parser = parserstate{};
    parserreset();
    symtabstart();
    valuesstart();
    trinodestart();
    funcsstart();
    ranreset();
    definestart();
    flatstart();
    solversstart();
    evalstart();
    plotobjstart();
    displaystart();
    dofilesreset();
    editing = editstate{};
    processstart();
    sessionrows();
    listingstart();
    diskstart();
    datafilesstart();
    textcallsstart();
    toclausestart();
    upper.indofile = [] { return !typedbyhand(); };
}
