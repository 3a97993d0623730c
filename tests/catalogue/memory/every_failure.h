// Every allocation of a call fails once, one after the other, and then all from it on. Each time the call must say so
// by its status or by the exception that OpenCV throws, hand out nothing and keep nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"

using Bytes = std::vector<uint8_t>;

constexpr long kNever = 1 << 30;

class Call {
public:
    virtual ~Call() = default;
    virtual std::string name() const = 0;
    virtual int run() = 0;                // the status
    virtual Bytes takeOutput() = 0;       // releases what was handed over; empty if nothing was
    virtual int noMemory() const = 0;     // the status that says so
    virtual bool mayThrow() const = 0;    // whether OpenCV's exceptions pass

    // What a failed call leaves in the caller's variables is as documented.
    virtual void expectNothingPartial() = 0;
};

void checkEveryFailure(Call& call);

// The pixels of a record, which is released.
Bytes takeRecord(KVIMG*& record);

RecordPtr recordOf(int width, int height, int depth);
