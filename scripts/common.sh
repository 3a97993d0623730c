# shellcheck shell=bash
# What every script uses. The scripts only define functions and settings; `dev` reads all of them and calls one function.

say() { printf '\n== %s\n' "$*"; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
