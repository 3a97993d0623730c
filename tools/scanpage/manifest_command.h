// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// scanpage manifest: what the manifests of many shards say together.
#pragma once

// Returns the exit status. The first argument is the name of the command.
int manifestCommand(int argc, char** argv);
