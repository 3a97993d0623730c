// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The command line of scanpage.
#pragma once

#include "page_report.h"
#include "tar_writer.h"

namespace CLI {
class App;
class ParseError;
}    // namespace CLI

// A tar of pages in, a tar of results out.
struct ShardSettings {
    bool on = false;
    bool dropOthers = false;    // members that are no page
    std::string manifest;       // empty: none
    Compression compression = Compression::kByName;
};

struct Settings {
    Options page;
    std::vector<std::string> pages;    // and folders of pages
    bool recursive = false;            // the folders below them, too
    std::string list;                  // file with more names; "-": standard input
    std::string folder;                // for the results; empty: none are written but a book. Of a shard, the tar
    std::string pdf, tiff;             // names of books
    bool overwrite = false;
    bool dryRun = false;
    char separator = '\n';
    std::string contactSheet;
    ShardSettings shard;
    int jobs = 1;
    Talk talk = Talk::kUsual;
};

enum ExitStatus { kAllDone = 0, kSomeBad = 1, kUsage = 2, kStopped = 3 };

// False if there is nothing to do: help was asked for, or the arguments are wrong. `exitStatus` is set then.
bool parseCommandLine(int argc, char** argv, Settings& settings, int& exitStatus);

// Prints the help, or what is wrong. Returns the exit status.
int reportUsage(const CLI::App& app, const CLI::ParseError& e);
