// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Initialisation, records and planes.
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "catalogue/catalogue.h"
#include "core/ownership.h"

namespace {

using Creator = OSErr (*)(KVIMG**, const KVRect*, unsigned char);

// Writes every byte of the block, to check that it is allocated.
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
        opcv::RecordPtr made;
        opcv::createRecord({0, 0, c.size.height, c.size.width}, 24, made);
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
        constexpr int kRowAlignment = 64;
        const int pixelSize = std::is_same_v<T, short> ? 2 : 3;
        const int whole = (pixelSize * c.size.width + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
        c.afterFailure = [step, whole] {
            return *step == whole || *step == 0 ? "" : "the step is neither the row's nor untouched";
        };
        const auto statusOf = [](const T* none) { return none ? 0 : int{ippStsBadArgErr}; };
        c.refuse("no place for the step", ippStsBadArgErr,
                 [=, &c] { return statusOf(allocate(c.size.width, c.size.height, nullptr)); });
        for (const int side : {0, -1}) {
            c.refuse("an empty row", ippStsBadArgErr,
                     [=, &c] { return statusOf(allocate(side, c.size.height, step)); });
            c.refuse("no rows", ippStsBadArgErr, [=, &c] { return statusOf(allocate(c.size.width, side, step)); });
        }
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
    const OutOfMemory never = OutOfMemory::never();
    const std::vector<Shape> any = {{"", 0}};
    const std::vector<Shape> colour = {{"24 bits", 2}};
    const OutOfMemory records = OutOfMemory::answers(memFullErr);
    const OutOfMemory planes = OutOfMemory::answers(ippStsNoMemErr).as("null");
    return {
        {"IppInit", 1, never, initialisation(IppInit), any, kNoImageWork},
        {"IPPMini_ippStaticInit", 1, never, initialisation(IPPMini_ippStaticInit), any, kNoImageWork},
        {"IPPShare_ippStaticInit", 1, never, initialisation(IPPShare_ippStaticInit), any, kNoImageWork},
        {"KVSetRect", 1, never, rectangle, any, kNoImageWork},
        {"CreateNewKVIMGPtr", kDepths, records, creation(CreateNewKVIMGPtr), colour, kNoImageWork},
        {"CreateNewKVIMGPtrForUnite", kDepths, records, creation(CreateNewKVIMGPtrForUnite), colour, kNoImageWork},
        {"DisposeKVIMG", 1, never, disposal, any, kNoImageWork},
        {"IPPShare_ippiMalloc_16s_C1", 1, planes, planeAllocation(IPPShare_ippiMalloc_16s_C1), any, kNoImageWork},
        {"IPPMini_ippiMalloc_8u_C3", 1, planes, planeAllocation(IPPMini_ippiMalloc_8u_C3), any, kNoImageWork},
        {"IPPMini_ippiFree", 1, never, planeRelease(IPPMini_ippiFree), any, kNoImageWork},
        {"IPPShare_ippiFree", 1, never, planeRelease(IPPShare_ippiFree), any, kNoImageWork},
    };
}
