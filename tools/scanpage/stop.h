// SIGTERM and SIGINT as a request to stop: pages in hand are finished, no further one is begun.
#pragma once

// To be called before any thread is started. A second signal of the same kind ends the program at once.
void catchStopSignals();

void requestStop();

bool stopRequested();
