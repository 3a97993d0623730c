# shellcheck shell=bash
# A generated page through scanpage: the skew that is found must be the one that was drawn.

cmd_demo() {
    local folder=build/demo skew=2.3 found
    install_packages
    build release scanpage pagegen
    mkdir -p "$folder/straight"
    say "Making a page with a skew of $skew degrees"
    ./build/release/bin/pagegen --skew "$skew" "$folder/page.jpg"
    say "Straightening it"
    ./build/release/bin/scanpage --verbose "$folder/page.jpg" -o "$folder/straight" --format jpeg,g4 \
        --contact-sheet "$folder/contact_sheet.png" >"$folder/report.tsv"
    found=$(cut -f 3 "$folder/report.tsv")
    echo
    if ! awk -v found="$found" -v true="$skew" 'BEGIN { d = found - true; exit !(found != "" && d >= -0.2 && d <= 0.2) }'; then
        echo "The skew was found as '$found' degrees, not as $skew." >&2
        return 1
    fi
    echo "Skew found: $found degrees, drawn: $skew."
    echo "Before and after: $PWD/$folder/contact_sheet.png"
    echo "Results: $PWD/$folder/straight/"
}
