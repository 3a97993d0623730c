# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Shared by all scripts. The scripts only define functions and settings; `dev` reads all of them and calls one function.

# Begins a stage, which lasts until the next one.
stages=()
stage_starts=()
say() {
    stages+=("$*")
    stage_starts+=("$SECONDS")
    printf '\n== %s\n' "$*"
}

print_stage_times() {
    local end
    say "Seconds of each stage"
    for i in "${!stage_starts[@]}"; do
        end=${stage_starts[i + 1]:-}
        [ -z "$end" ] || printf '%5d  %s\n' $((end - stage_starts[i])) "${stages[i]}"
    done
    printf '%5d  in all\n' "$SECONDS"
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# The name of this machine's Debian release.
debian_release() { sed -n 's/^VERSION_CODENAME=//p' /etc/os-release; }
