#include "vellum/vldevice.h"

// In place of the cairo devices where cairo is not there: they cannot be opened.
const vldeviceops* vlcairooperations(int) { return nullptr; }
