# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Runs scanpage on a generated page; the measured skew must be the drawn one.

cmd_demo() {
    local folder=build/demo skew=4.2 found
    install_packages
    build release scanpage pagegen
    mkdir -p "$folder"
    say "Drawing a dark page with a skew of $skew degrees"
    ./build/release/bin/pagegen --skew "$skew" --shade 65 --text "$folder/page.jpg"
    say "Straightening it and evening out its light"
    ./build/release/bin/scanpage --verbose --overwrite --background flatten "$folder/page.jpg" -o "$folder/straight" --format jpeg,g4 \
        --contact-sheet "$folder/contact_sheet.png" >"$folder/report.tsv"
    found=$(cut -f 3 "$folder/report.tsv")
    echo
    if ! awk -v found="$found" -v true="$skew" 'BEGIN { d = found - true; exit !(found != "" && d >= -0.05 && d <= 0.05) }'; then
        echo "The measured skew is '$found' degrees, not $skew." >&2
        return 1
    fi
    echo "Measured skew: $found degrees, drawn: $skew."
    echo "Before and after: $PWD/$folder/contact_sheet.png"
    echo "Results: $PWD/$folder/straight/"
}
