/* The header alone, as C11. */
#include "OPCV_dlib.h"

int deskewInC(void);

_Static_assert(sizeof(OSErr) == 2 && sizeof(IppStatus) == 4, "status types");
_Static_assert(sizeof(KVImageHeader) == 32 && sizeof(KVIMG) == 32, "records");

int deskewInC(void) {
    KVImageDescription description = {40, 30, 300, 300, 0, 8};
    KVImageDescription* record = &description;
    KVIMG* page = NULL;
    KVIMG* straight = NULL;
    KVRect r;
    KVSetRect(&r, 0, 0, 40, 30);
    if (CreateNewKVIMGPtr(&page, &r, 8) != noErr) return 1;
    for (int i = 0; i < page->size; ++i) page->data[i] = 200;
    const OSErr err = DeskewImageWithIPP(page, &record, &straight, 0, 0, 1.0);
    const int result = err == noErr && straight->data[15 * straight->rowBytes + 20] == 200 ? 0 : 2;
    DisposeKVIMG(page);
    DisposeKVIMG(straight);
    return result;
}
