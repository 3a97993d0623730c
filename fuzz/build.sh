#!/bin/bash -eu
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Builds every fuzz target as OSS-Fuzz asks for it: the sources are in $SRC/opcv_dlib, the compilers and their flags in
# CC, CXX, CFLAGS, CXXFLAGS and LIB_FUZZING_ENGINE, and the programs, their seeds and what they load go to $OUT.
build=${WORK:-$SRC}/opcv_dlib-build

# Debug adds no flag that could weaken a sanitizer. Programs search for libraries in lib/ of their own folder.
cmake -S "$SRC/opcv_dlib" -B "$build" \
    -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS" \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_EXE_LINKER_FLAGS=-Wl,--disable-new-dtags "-DCMAKE_BUILD_RPATH=\$ORIGIN/lib" \
    -DOPCV_DLIB_BUILD_TESTS=OFF -DOPCV_DLIB_BUILD_TOOLS=OFF -DOPCV_DLIB_BUILD_DOCS=OFF -DOPCV_DLIB_BUILD_PYTHON=OFF \
    -DOPCV_DLIB_BUILD_FUZZ=ON -DOPCV_DLIB_FUZZING_ENGINE="$LIB_FUZZING_ENGINE"
cmake --build "$build" --parallel --target fuzz_targets corpus

mkdir -p "$OUT/lib"
for program in "$build"/fuzz/fuzz_*; do
    if [ ! -f "$program" ] || [ ! -x "$program" ]; then continue; fi
    target=${program##*/fuzz_}
    cp "$program" "$OUT"
    # What the system's C library brings is there wherever the programs run.
    ldd "$program" | awk '$3 ~ /^\// { print $3 }' |
        grep -vE '/(libc|libm|libdl|libpthread|librt|libresolv|ld-linux[^/]*)\.so' | xargs -r cp -u -t "$OUT/lib"
    seeds=("$build/fuzz/seeds/$target" "$SRC/opcv_dlib/fuzz/regressions/$target")
    for folder in "${seeds[@]}"; do
        if [ -d "$folder" ]; then (cd "$folder" && zip -q -r "$OUT/fuzz_${target}_seed_corpus.zip" .); fi
    done
done
cp "$build/fuzz/seeds/jpeg.dict" "$OUT/fuzz_jpeg_read.dict"
