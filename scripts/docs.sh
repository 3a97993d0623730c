# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Generated documents.

site_packages=(chromium chromium-driver python3-selenium)

# The site in HTML: documents, reference and manual pages.
make_site() {
    build release man
    python3 docs/generators/make_site.py build/release/man build/site
}

# Chromium reads every page as a phone would. The screenshots are for people.
browse_site() { /usr/bin/python3 tests/system/documents/browse_site.py build/site/html build/site/screenshots; }

check_site() { make_site && browse_site; }

cmd_docs() {
    install_packages
    make_site
    python3 tests/system/documents/check_site.py build/site/html
    echo "Site: $PWD/build/site/html/index.html"
    echo "Manual pages: man -M $PWD/build/release/man opcv_dlib"
}

# Writes the gallery with its pictures, and docs/functions.md.
cmd_gallery() {
    install_packages
    build release gallery function_document_update
    ./build/release/docs/generators/gallery docs
    echo "Gallery: $PWD/docs/gallery.md"
}
