# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# `./dev test`: all checks. Stages that wait for the network or use one processor run in the background.

# Prints the time of each stage, the vector targets and the counts, even if the run is interrupted.
summarize() {
    local status=$?
    [ "$status" -eq 0 ] || failed=$((failed + 1))
    print_stage_times
    [ ! -x build/release/tests/unit_tests ] || build/release/tests/unit_tests --targets
    echo
    echo "$passed passed, $failed failed"
    exit $((failed > 0))
}

cmd_test() {
    local other
    other=$(other_release)
    trap summarize EXIT
    need "${packages[@]}" "${arm64_packages[@]}" "${packaging_packages[@]}" "${scale_packages[@]}" "${fuzz_packages[@]}" \
        "${coverage_packages[@]}" "${lint_packages[@]}" "${site_packages[@]}"
    aside trees make_trees "$other"
    build release
    run_tests release
    build release unit_tests_counted catalogue_memory_tests_counted
    check "Coverage" check_coverage
    check "Two thousand pages by each recipe" check_scale
    aside packages check_packages
    aside site check_site
    join trees
    lint "$library" --checks='-clang-analyzer-*'
    build asan
    check "Packages in a fresh Debian tree" join packages
    check "The site in a browser" join site
    run_tests asan
    run_debian_tests "$other"
    aside debian check_debian_packages "$other"
    # With clang: what depends on the compiler.
    build clang unit_tests catalogue_tests interposition
    run_tests clang -R '^(unit_.*|catalogue|catalogue_(SSSE3|AVX2)|exported_names|interposition)$'
    build fuzz
    check "Packages in a fresh tree of Debian's $other" join debian
    jobs=1 aside fuzz check_fuzz 30
    build tsan catalogue_tests
    aside tsan start_tests tsan -R '^catalogue$'
    build arm64-asan catalogue_tests
    join tsan
    count_tests tsan
    aside arm64-asan start_tests arm64-asan -R '^catalogue$'
    build arm64
    check "Fuzzing" join fuzz
    run_tests arm64
    join arm64-asan
    count_tests arm64-asan
}

make_trees() {
    arm64_sysroot
    debian_tree "$1"
}
