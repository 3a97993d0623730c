// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Work on OpenCV's threads. Nothing else in the library distributes work.
#pragma once

namespace opcv {

// A reference to a function object, valid for the call that it is passed to. Unlike std::function it never allocates.
template <class... Arguments>
class FunctionRef {
public:
    template <class Function>
    FunctionRef(const Function& function)    // NOLINT(google-explicit-constructor): callers pass a lambda directly
        : object_(&function), call_([](const void* object, Arguments... arguments) {
              (*static_cast<const Function*>(object))(arguments...);
          }) {}

    void operator()(Arguments... arguments) const { call_(object_, arguments...); }

private:
    const void* object_;
    void (*call_)(const void*, Arguments...);
};

// Calls `run(firstRow, endRow)` for bands of rows that cover each row from 0 to rows - 1 once. Few elements are one
// band; more are distributed over OpenCV's threads. If a thread cannot be started, the caller's thread runs the
// remaining bands. `run` may throw anything but std::runtime_error.
void forEachBand(int rows, double elements, FunctionRef<int, int> run);

// Runs OpenCV calls that distribute their work themselves. If a thread cannot be started, they run again on the
// caller's thread only, so they must not change their input.
void withOpenCVThreads(FunctionRef<> calls);

}    // namespace opcv
