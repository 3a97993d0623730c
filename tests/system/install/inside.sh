#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# inside.sh SOURCES: what check.sh runs in the fresh tree. SOURCES is where the packages were built.
set -euo pipefail
sources=$1
cd /check

echo "- the C and C++ examples, by pkg-config"
read -ra flags <<<"$(pkg-config --cflags --libs OPCV_dlib)"
gcc -std=c11 -Wall -Wextra -Werror readme/first.c "${flags[@]}" -o first_c
./first_c
g++ -std=c++17 -Wall -Wextra -Werror readme/first.cpp "${flags[@]}" -o first_cpp
./first_cpp
[ -z "$(pkg-config --print-requires --print-requires-private OPCV_dlib)" ]

echo "- the same, by CMake"
cmake -S consumer -B build -DEXAMPLES=/check/readme >cmake.log || { cat cmake.log && exit 1; }
cmake --build build >cmake.log || { cat cmake.log && exit 1; }
build/first_c
build/first_cpp

echo "- the skew finder, a library of its own"
read -ra flags <<<"$(pkg-config --cflags --libs OPCV_dlib_skew)"
gcc -std=c11 -Wall -Wextra -Werror find_skew_c.c "${flags[@]}" -o find_skew
./find_skew
if ldd "$(ldconfig -p | sed -n 's/.*libOPCV_dlib_skew.so.1 .*=> //p')" | grep -iE 'opencv|lept|OPCV_dlib.so'; then
    echo "it loads a library that it does not need" && exit 1
fi

echo "- the Python example"
python3 readme/first.py

echo "- the manual"
for page in "7 opcv_dlib" "3 IPPShare_ippiConvert_1u8u_C1R" "3 opcv_find_skew" "1 scanpage"; do
    MANPAGER='cat' man "${page% *}" "${page#* }" >page.txt
    grep -q "${page#* }" page.txt
done

echo "- no search path, and no path of the build machine"
dpkg -L libopcv-dlib1 libopcv-dlib-dev libopcv-dlib-skew1 libopcv-dlib-skew-dev opcv-tools python3-opcv-dlib | sort -u >files.txt
while read -r file; do
    [ -f "$file" ] || continue
    if grep -aF "$sources" "$file"; then echo "$file knows $sources" && exit 1; fi
    if readelf -d "$file" 2>/dev/null | grep -E 'RPATH|RUNPATH'; then echo "$file has a search path" && exit 1; fi
done <files.txt
grep -q '/libOPCV_dlib.so.1$' files.txt
grep -q '/opcv_dlib/ocrmypdf.py$' files.txt

echo "- 1,000 pages through scanpage"
mkdir scans straight
python3 make_pages.py 1000 scans
scanpage scans/*.jpg -o straight --format jpeg --jobs 2 >report.txt
[ "$(find straight -name '*.jpg' | wc -l)" -eq 1000 ]
[ "$(cut -f2 report.txt | grep -cx 'done')" -eq 1000 ]
python3 make_pages.py --check straight
