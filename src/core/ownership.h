// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Owners of heap blocks, and the guard of the output slot of functions that create records.
#pragma once

#include <cstdlib>
#include <memory>

#include "OPCV_dlib.h"

namespace opcv {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
using PixelBlock = std::unique_ptr<unsigned char, FreeDeleter>;

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using RecordPtr = std::unique_ptr<KVIMG, RecordDeleter>;

// The caller's output slot. Unless a record is handed over, the destructor releases the record in the slot, even one
// from before the call, and sets the slot to null.
class RecordSlot {
public:
    explicit RecordSlot(KVIMG** slot) : slot_(slot) {}
    RecordSlot(const RecordSlot&) = delete;
    RecordSlot& operator=(const RecordSlot&) = delete;
    ~RecordSlot() {
        if (!handedOver_) {
            DisposeKVIMG(*slot_);
            *slot_ = nullptr;
        }
    }

    void handOver(RecordPtr record) {
        *slot_ = record.release();
        handedOver_ = true;
    }

private:
    KVIMG** slot_;
    bool handedOver_ = false;
};

// A new record in an owner, from CreateNewKVIMGPtr or its sibling. A depth that has no row rule leaves the owner empty,
// with noErr.
inline OSErr createRecord(const KVRect& r, unsigned char depth, RecordPtr& record,
                          decltype(CreateNewKVIMGPtr)* create = CreateNewKVIMGPtr) {
    KVIMG* made = nullptr;
    const OSErr err = create(&made, &r, depth);
    record.reset(made);
    return err;
}

}    // namespace opcv
