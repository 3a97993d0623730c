// Entry points of an initialisation that the library does not need.
#include "OPCV_dlib.h"

int IppInit() { return 0; }

IppStatus IPPMini_ippStaticInit() { return ippStsNoErr; }

IppStatus IPPShare_ippStaticInit() { return IPPMini_ippStaticInit(); }
