/* Stands before the library in the search order and takes over one exported name. */
int IPPMini_ippStaticInit(void);
int IPPMini_ippStaticInit(void) { return 4711; }
