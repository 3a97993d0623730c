# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The catalogue and the unit tests under valgrind.

# A read outside every block, a branch on an indeterminate byte or a lost block is a failure.
under_valgrind() {
    valgrind --quiet --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite "$@"
}

# Long tests, which would take as long under valgrind as all other tests together; other tests try the same code on
# fewer values. The readers' tests check whether OpenCV returns a page that it never wrote, as it does for a stream
# without rows.
not_under_valgrind='-*.ConvertsEveryTriple/*:SquareMedianNetworks.AreCorrectForEveryWindowOfSortedColumns'
not_under_valgrind+=':Box.EverySumIsRoundedAsOpenCVRounds:Box.AnAnchorFarOutsideTheMaskMovesTheWindows'
not_under_valgrind+=':ResizePlaced.ScalesTheLongestRowsLikeOpenCV'
not_under_valgrind+=':Rotate.EqualsOpenCVCallsOnLargeImages:*OrAreRefused:*OrIsRefused'

# Runs the catalogue without the bounds, which inaccessible pages check, and without the threads, which the thread
# sanitizer checks; then the unit tests, in as many parts as there are processors. libjpeg runs without its vectors:
# valgrind tracks sums of two products in units of 64 bits, so it would report a page's last column as indeterminate.
cmd_memcheck() {
    install_packages
    need valgrind
    build release catalogue_tests unit_tests
    export JSIMD_FORCENONE=1
    say "The catalogue"
    under_valgrind ./build/release/tests/catalogue/catalogue_tests --gtest_filter='Catalogue.*'
    say "The hashed calls"    # some run on the threads of OpenCV's pool, which keeps a block for each
    under_valgrind --leak-check=no ./build/release/tests/catalogue/catalogue_tests --gtest_filter='Hashes.*'
    say "The unit tests"
    export -f under_valgrind
    export GTEST_TOTAL_SHARDS=$jobs GTEST_BRIEF=1
    seq 0 $((jobs - 1)) | xargs -P "$jobs" -I{} env GTEST_SHARD_INDEX={} bash -c 'under_valgrind "$@"' valgrind \
        ./build/release/tests/unit_tests --gtest_filter="${1:-$not_under_valgrind}"
}
