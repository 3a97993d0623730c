# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Measures what straightening is worth to the recognition of text.

recognition_packages=(python3-matplotlib unpaper)

# Takes about ten minutes on two cores.
cmd_recognition() {
    local program=docs/generators/recognition folder=build/recognition
    install_packages
    need "${recognition_packages[@]}"
    build release scanpage opcv_dlib_python opcv_dlib_python_skew gallery
    mkdir -p "$folder"
    say "Wrong characters"
    SCANPAGE=build/release/bin/scanpage nice /usr/bin/python3 -B "$program/measure.py" | tee "$folder/errors.tsv"
    say "OCRmyPDF"
    PYTHONPATH=build/release/python /usr/bin/python3 -B "$program/measure_ocrmypdf.py" | tee "$folder/ocrmypdf.tsv"
    /usr/bin/python3 -B "$program/section.py" "$folder/errors.tsv" "$folder/ocrmypdf.tsv" "$program/section.md" \
        docs/images/recognition.svg README.md
    ./build/release/docs/generators/gallery docs
}
