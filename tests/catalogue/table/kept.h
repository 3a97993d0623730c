// Keeps what a call hands over until the heap has been read.
#pragma once

#include <OPCV_dlib.h>

#include <cstdint>
#include <vector>

// Both give the status back.
int keep(int status, KVIMG* record);
int keepBlock(int status, void* block);

// For the functions that append to a stream.
std::vector<uint8_t>& keptStream();

void forget();
