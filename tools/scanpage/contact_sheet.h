// A picture of pages before and after, side by side.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "page.h"
#include "pix.h"

class ContactSheet {
public:
    static constexpr size_t kMostPages = 50;

    // Page number `index`, from any thread. Only small copies are kept.
    void add(size_t index, const KVIMG& before, const KVIMG& after);

    void write(const std::string& file) const;

private:
    std::mutex mutex_;
    std::map<size_t, std::pair<PixPtr, PixPtr>> rows_;
};
