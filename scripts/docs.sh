# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Generated documents.

# The reference in HTML and the manual pages, both from the public header.
cmd_docs() {
    install_packages
    mkdir -p build/docs
    doxygen docs/Doxyfile
    build release man
    echo "Reference: $PWD/build/docs/html/index.html"
    echo "Manual pages: man -M $PWD/build/release/man opcv_dlib"
}

# Writes the gallery with its pictures, and docs/functions.md.
cmd_gallery() {
    install_packages
    build release gallery function_document_update
    ./build/release/docs/generators/gallery docs
    echo "Gallery: $PWD/docs/gallery.md"
}
