// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// SIGTERM and SIGINT as a request to stop: pages in hand are finished, and no other page is started.
#pragma once

// Must be called before any thread is started. A second signal ends the program at once, and so does the tenth second
// after the first.
void catchStopSignals();

void requestStop();

bool stopRequested();
