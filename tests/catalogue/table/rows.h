// The rows of the table: each is a function, called with certain arguments.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "scene.h"

struct Row {
    std::string name;
    std::string shape;                  // what it was called with
    int pixelSize;                      // of the source around the region; 0 if there is no region with surroundings
    std::function<int(Scene&)> call;    // 0 for success
};

inline IppiPoint centre(int side) { return {side / 2, side / 2}; }
inline IppiSize square(int side) { return {side, side}; }
inline std::string sides(int side) { return std::to_string(side) + " x " + std::to_string(side); }

template <class Function>
int always(Function call) {
    call();
    return 0;
}

// Each under its subsystem's name.
void addRecords(std::vector<Row>& rows);
void addGeometry(std::vector<Row>& rows, Documents& documents);
void addJpeg(std::vector<Row>& rows, Documents& documents);
void addRank(std::vector<Row>& rows);
void addPixel(std::vector<Row>& rows);
void addFilters(std::vector<Row>& rows);
