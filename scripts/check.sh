# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# `./dev check`: what changed, in less than a minute. The hook before a commit calls it.

# The files that differ from the last commit or, if none do, from the merge base with the upstream branch.
changed_files() {
    local changed base
    changed=$(git diff --name-only --diff-filter=d HEAD; git ls-files --others --exclude-standard)
    if [ -z "$changed" ] && base=$(git merge-base HEAD '@{upstream}' 2>/dev/null); then
        changed=$(git diff --name-only --diff-filter=d "$base")
    fi
    [ -z "$changed" ] || sort -u <<<"$changed"
}

# The suites of the unit tests that a list of files can affect, as a filter of GoogleTest: a source of src/X affects the
# tests of tests/unit/X; files that all folders include affect all tests.
affected_suites() {
    local folders
    if grep -qE '^(include|src/core|src/simd|tests/(support|oracle)|cmake)/|CMake' <<<"$1"; then
        echo '*'
        return
    fi
    folders=$(sed -nE 's,^(src|tests/unit)/([a-z]+)/.*,tests/unit/\2,p' <<<"$1" | sort -u)
    for folder in $folders; do
        [ ! -d "$folder" ] || grep -rhoE '^(TEST|TEST_F|TEST_P|TYPED_TEST)\(\w+' "$folder"
    done | sed 's/.*(//' | sort -u | sed 's,.*,&.*:*/&.*:&/*,' | paste -s -d:
}

# The other tests of ctest that a list of files can affect, as a regular expression.
affected_tests() {
    sed -nE -e 's,^(tools|tests/system)/scanpage/.*,^scanpage,p' -e 's,^(python|tests/system/python)/.*,^python,p' \
        -e 's,^tests/catalogue/.*,^(catalogue|function_document)$,p' -e 's,^include/.*,^(reference|interface|function_document)$,p' \
        -e 's,.*\.md$|^(dev|scripts/.*)$|^examples/.*,^(documented_|map$),p' <<<"$1" | sort -u | paste -s -d'|'
}

check_changed_format() {
    local sources
    mapfile -t sources < <(sed -n '/\.\(cpp\|h\|c\)$/p' <<<"$1")
    [ ${#sources[@]} -eq 0 ] || on_lint_release clang-format --dry-run --Werror "${sources[@]}"
}

run_affected() {
    local suites tests
    suites=$(affected_suites "$1")
    tests=$(affected_tests "$1")
    if [ -n "$suites" ]; then
        say "Unit tests: $(tr : '\n' <<<"$suites" | sed -nE 's,^([A-Za-z0-9]+)\.\*$,\1,p' | paste -s -d' ')"
        GTEST_FILTER=$suites GTEST_BRIEF=1 ctest --preset release -j "$jobs" --no-tests=error -R '^unit' || return
    fi
    if [ -n "$tests" ]; then
        say "Tests: $tests"
        ctest --preset release -j "$jobs" -R "$tests" || return
    fi
}

cmd_check() {
    local changed
    changed=$(changed_files)
    if [ -z "$changed" ]; then
        echo "Nothing has changed."
        return
    fi
    install_packages
    need "${lint_packages[@]}"
    check "clang-format" check_changed_format "$changed"
    if grep -qE '^dev$|\.sh$|^\.githooks|^\.ci' <<<"$changed"; then check "shellcheck" check_scripts; fi
    build release
    check "Tests of what changed" run_affected "$changed"
    echo
    echo "$passed checks passed, $failed failed, in $SECONDS s"
    [ "$failed" -eq 0 ]
}
