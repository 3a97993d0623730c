// Initialisation, records and planes.
#include <cstdlib>
#include <cstring>

#include "core/ownership.h"
#include "catalogue/catalogue.h"

namespace {

using Creator = OSErr (*)(KVIMG**, const KVRect*, unsigned char);

// Every byte of the block is written: it must be there.
std::function<void(Case&)> creation(Creator create) {
    return [create](Case& c) {
        const auto depth = static_cast<unsigned char>(pick<int>({1, 8, 24, 32, 40}, c.variant));
        const auto* r = c.sourceOf(KVRect{-3, 4, c.size.height - 3, c.size.width + 4});
        c.call = [&c, create, r, depth] {
            const OSErr err = create(&c.record, r, depth);
            if (err == noErr) std::memset(c.record->data, 0x55, static_cast<size_t>(c.record->size));
            return err;
        };
    };
}

void disposal(Case& c) {
    auto* image = c.addressesIn<KVIMG*>(nullptr);
    c.before = [&c, image] {
        RecordPtr made;
        createRecord({0, 0, c.size.height, c.size.width}, 24, made);
        *image = made.release();
    };
    c.call = [image] {
        DisposeKVIMG(*image);
        return 0;
    };
}

template <class T>
std::function<void(Case&)> planeAllocation(T* (*allocate)(int, int, int*)) {
    return [allocate](Case& c) {
        int* step = c.targetEvenOnFailure(0);
        c.call = [&c, allocate, step] {
            c.plane = allocate(c.size.width, c.size.height, step);
            if (!c.plane) return int{ippStsNoMemErr};
            std::memset(c.plane, 0x55, static_cast<size_t>(*step) * static_cast<size_t>(c.size.height));
            return 0;
        };
    };
}

std::function<void(Case&)> planeRelease(void (*release)(void*)) {
    return [release](Case& c) {
        auto* plane = c.addressesIn<void*>(nullptr);
        c.before = [&c, plane] { *plane = std::malloc(static_cast<size_t>(c.size.width)); };
        c.call = [release, plane] {
            release(*plane);
            return 0;
        };
    };
}

std::function<void(Case&)> initialisation(int (*initialise)()) {
    return [initialise](Case& c) { c.call = initialise; };
}

void rectangle(Case& c) {
    auto* r = c.targetOf(KVRect{});
    c.call = [&c, r] {
        KVSetRect(r, 1, 2, c.size.width, c.size.height);
        return 0;
    };
}

}    // namespace

Entries coreEntries() {
    constexpr int kDepths = 5;
    return {
        {"IppInit", 1, OutOfMemory::never(), initialisation(IppInit)},
        {"IPPMini_ippStaticInit", 1, OutOfMemory::never(), initialisation(IPPMini_ippStaticInit)},
        {"IPPShare_ippStaticInit", 1, OutOfMemory::never(), initialisation(IPPShare_ippStaticInit)},
        {"KVSetRect", 1, OutOfMemory::never(), rectangle},
        {"CreateNewKVIMGPtr", kDepths, OutOfMemory::answers(memFullErr), creation(CreateNewKVIMGPtr)},
        {"CreateNewKVIMGPtrForUnite", kDepths, OutOfMemory::answers(memFullErr), creation(CreateNewKVIMGPtrForUnite)},
        {"DisposeKVIMG", 1, OutOfMemory::never(), disposal},
        {"IPPShare_ippiMalloc_16s_C1", 1, OutOfMemory::answers(ippStsNoMemErr).as("null"),
         planeAllocation(IPPShare_ippiMalloc_16s_C1)},
        {"IPPMini_ippiMalloc_8u_C3", 1, OutOfMemory::answers(ippStsNoMemErr).as("null"),
         planeAllocation(IPPMini_ippiMalloc_8u_C3)},
        {"IPPMini_ippiFree", 1, OutOfMemory::never(), planeRelease(IPPMini_ippiFree)},
        {"IPPShare_ippiFree", 1, OutOfMemory::never(), planeRelease(IPPShare_ippiFree)},
    };
}
