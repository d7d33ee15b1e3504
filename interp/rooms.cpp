#include "interp/rooms.h"

#include "funcs/trinode.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/edit.h"
#include "interp/process.h"
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
    dofilesreset();
    editing = editstate{};
    processstart();
}
