// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Writes the table of hashes.
#include <cstdio>
#include <fstream>

#include "catalogue/hashes.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: write_hashes FILE\n");
        return 2;
    }
    std::ofstream file(argv[1]);
    file << "# Made by write_hashes, checked by hashes_test.cpp: function, then a hash for each batch of random "
            "calls.\n";
    for (const Entry& entry : catalogue()) file << lineOf(entry) << '\n';
    return file.good() ? 0 : 1;
}
