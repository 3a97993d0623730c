# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Coverage of lines and branches.

coverage_packages=(gcovr)

# Writes the lines and branches that the tests execute to build/coverage.txt. Branches that only exceptions take are
# tested by the memory tests; the longest of those is left out, because the others execute nearly all of its lines.
check_coverage() {
    local objects=build/release/CMakeFiles/opcv_dlib_counted_objects.dir tests=build/release/tests
    find "$objects" -name '*.gcda' -delete
    {
        "$tests/unit_tests" --targets | sed 's/^targets: //; s/;.*//' | xargs -n 1 |
            sed "s|.*|OPCV_DLIB_TEST_TARGET=& $tests/unit_tests_counted|"
        echo "$tests/catalogue/memory/catalogue_memory_tests_counted" \
            --gtest_filter=-OutOfMemory.EveryFunction*:OutOfMemory.TheDocument*
    } |
        xargs -P "$jobs" -L 1 env >build/coverage.log 2>&1 || { tail -20 build/coverage.log; return 1; }
    gcovr --root . --filter 'src/' \
        --exclude-throw-branches --exclude-unreachable-branches --txt build/coverage.txt --print-summary \
        --fail-under-line 99.5 --fail-under-branch 95 "$objects"
}

cmd_coverage() {
    install_packages
    need "${coverage_packages[@]}"
    build release unit_tests unit_tests_counted catalogue_memory_tests_counted
    check "Coverage" check_coverage
    [ "$failed" -eq 0 ]
}
