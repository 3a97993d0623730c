#include "kept.h"

#include <cstdlib>

#include "scene.h"

namespace {

std::vector<Record> keptRecords;
std::vector<Block> keptBlocks;
std::vector<uint8_t> stream;

}    // namespace

int keep(int status, KVIMG* record) {
    keptRecords.emplace_back(record);
    return status;
}

int keepBlock(int status, void* block) {
    keptBlocks.emplace_back(block, std::free);
    return status;
}

std::vector<uint8_t>& keptStream() { return stream; }

void forget() {
    keptRecords.clear();
    keptBlocks.clear();
    std::vector<uint8_t>().swap(stream);
    keptRecords.reserve(8);
    keptBlocks.reserve(8);
}
