# shellcheck shell=bash
# `./dev test`: everything, in an order that keeps all processors busy.

cmd_test() {
    need "${packages[@]}" "${arm64_packages[@]}" "${packaging_packages[@]}" "${scale_packages[@]}" "${fuzz_packages[@]}" \
        "${coverage_packages[@]}" "${lint_packages[@]}"
    aside sysroot arm64_sysroot
    build release
    run_tests release
    build release unit_tests_counted memory_tests_counted
    check "Coverage" check_coverage
    check "A thousand pages by each engine" check_scale
    aside packages check_packages
    check "shellcheck" check_scripts
    check "clang-format" check_format
    check "clang-tidy of the library" check_tidy "$library" --checks='-clang-analyzer-*'
    build asan
    check "Packages in a fresh Debian tree" join packages
    run_tests asan
    build fuzz
    jobs=1 aside fuzz check_fuzz 30
    build tsan reliability_tests
    aside tsan start_tests tsan -R '^reliability$'
    join sysroot
    build arm64-asan reliability_tests
    join tsan
    count_tests tsan
    aside arm64-asan start_tests arm64-asan -R '^reliability$'
    build arm64
    check "Fuzzing" join fuzz
    run_tests arm64
    join arm64-asan
    count_tests arm64-asan
    echo
    echo "$passed passed, $failed failed"
    [ "$failed" -eq 0 ]
}
