# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The static libraries for OPCV_DLIB_SELF_CONTAINED: OpenCV's core and imgproc, libjpeg-turbo and Highway for the library,
# and libtiff, Leptonica and qpdf for scanpage. They are built from this Debian release's source packages once for each
# architecture and kept in build/static.

static_packages=(dpkg-dev libbz2-dev liblz4-dev nasm zlib1g-dev)
static=build/static
static_sources=(opencv libjpeg-turbo highway leptonlib qpdf tiff)

# apt_apart COMMAND...: runs an apt command with a configuration of its own. It reads the same archives as this machine
# does, with their source packages, and RELEASE replaces the release.
apt_apart() {
    local release=${RELEASE:-$(debian_release)} folder=$PWD/build/apt/${RELEASE:-$(debian_release)} archive
    mkdir -p "$folder/lists" "$folder/cache"
    # shellcheck disable=SC2016
    archive=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' |
        awk -v release="$(debian_release)" '$2 == release && $3 == "main" && !found++ {print $1}')
    printf '%s [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s %s main\n' \
        deb "$archive" "$release" deb-src "$archive" "$release" >"$folder/sources.list"
    cat >"$folder/apt.conf" <<END
Dir::State::Lists "$folder/lists";
Dir::Cache "$folder/cache";
Dir::Etc::SourceList "$folder/sources.list";
Dir::Etc::SourceParts "/dev/null";
Dir::Etc::Preferences "/dev/null";
Dir::Etc::PreferencesParts "/dev/null";
APT::Default-Release "$release";
APT::Sandbox::User "root";
END
    [ -n "$(find "$folder/updated" -mtime -1 2>/dev/null)" ] || {
        APT_CONFIG=$folder/apt.conf apt-get update -qq
        touch "$folder/updated"
    }
    APT_CONFIG=$folder/apt.conf "$@"
}

# Unpacks the source packages that are missing, patched as Debian does. apt has verified them.
fetch_static_sources() {
    local package folder=$PWD/$static/sources missing=()
    mkdir -p "$folder"
    for package in "${static_sources[@]}"; do [ -e "$folder/$package/debian" ] || missing+=("$package"); done
    [ ${#missing[@]} -eq 0 ] && return
    say "Fetching the sources of ${missing[*]}"
    # shellcheck disable=SC2016
    apt_apart bash -c 'cd "$0" && apt-get source -qq --download-only "$@"' "$folder" "${missing[@]}"
    for package in "${missing[@]}"; do
        rm -rf "${folder:?}/$package" "$folder/unpacked"
        dpkg-source --no-check -x "$folder/$package"_*.dsc "$folder/unpacked" >/dev/null
        mv "$folder/unpacked" "$folder/$package"
    done
    rm -f "$folder"/*.tar.* "$folder"/*.dsc
}

# build_static PACKAGE ARCHITECTURE OPTION...: TARGET replaces all targets, COMPONENT what is installed of them.
build_static() {
    local package=$1 work=$static/$2/$1 prefix=$PWD/$static/$2 options=()
    local flags="-O2 -ffunction-sections -fdata-sections -fvisibility=hidden -fstack-protector-strong"
    flags+=" -D_FORTIFY_SOURCE=2 -Wno-deprecated-declarations -ffile-prefix-map=$PWD/$static/sources/="
    if [ "$2" = arm64 ] && [ "$(dpkg --print-architecture)" != arm64 ]; then
        options+=(-DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/arm64.cmake" -DOPCV_DLIB_SYSROOT="$PWD/$sysroot")
    fi
    case $2 in
        amd64) flags+=' -fcf-protection=full' ;;
        arm64) flags+=' -mbranch-protection=standard' ;;
    esac
    ! command -v ccache >/dev/null ||
        options+=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    shift 2
    say "Building $package for a self-contained library"
    mkdir -p "$work"
    {
        cmake -G Ninja -S "$static/sources/$package" -B "$work" -DCMAKE_BUILD_TYPE=Release \
            -DCMAKE_C_FLAGS_RELEASE="$flags" -DCMAKE_CXX_FLAGS_RELEASE="$flags" \
            -DCMAKE_POSITION_INDEPENDENT_CODE=ON -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF \
            -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "${options[@]}" "$@" &&
            find "$work" -name version_string.inc -exec sed -i "s|$PWD/||g" {} + &&    # OpenCV quotes its options
            cmake --build "$work" -j "$jobs" --target "${TARGET:-all}" &&
            cmake --install "$work" ${COMPONENT:+--component "$COMPONENT"}
    } >"$work.log" 2>&1 || {
        tail -30 "$work.log"
        return 1
    }
    rm -rf "$work"
}

# Every part of OpenCV that the library does not call is left out. Its instruction sets are those of Debian's package.
build_static_opencv() {
    local options=() name
    for name in WITH_{1394,ADE,CAROTENE,EIGEN,FFMPEG,GDAL,GDCM,GPHOTO2,GSTREAMER,GTK,IPP,ITT,JASPER,JPEG,LAPACK,OPENCL} \
        WITH_{OPENEXR,OPENGL,OPENJPEG,OPENMP,PNG,PROTOBUF,QT,QUIRC,TBB,TIFF,V4L,VA,VTK,WEBP,IMGCODEC_HDR} \
        WITH_IMGCODEC_{PFM,PXM,SUNRASTER} CV_TRACE OPENCV_GENERATE_SETUPVARS ENABLE_PRECOMPILED_HEADERS \
        BUILD_{TESTS,PERF_TESTS,EXAMPLES,DOCS,JAVA,PROTOBUF,ITT,IPP_IW,ZLIB} BUILD_opencv_{apps,python2,python3,java} \
        BUILD_opencv_{java_bindings_generator,js,js_bindings_generator,objc_bindings_generator,python_bindings_generator}; do
        options+=("-D$name=OFF")
    done
    [ "$1" != amd64 ] || options+=(-DCPU_BASELINE=SSE2 -DCPU_BASELINE_DISABLE=SSE3)
    build_static opencv "$1" -DBUILD_LIST=core,imgproc -DENABLE_PIC=ON -DWITH_PTHREADS_PF=ON "${options[@]}"
}

# static_recipe FUNCTION...: changes with the functions that build.
static_recipe() { declare -f build_static "$@" | sha256sum; }

# static_libraries ARCHITECTURE: makes build/static/ARCHITECTURE, unless it was made by this script.
static_libraries() {
    local stamp
    stamp=$(static_recipe build_static_opencv static_libraries)
    [ "$(cat "$static/$1/stamp" 2>/dev/null)" = "$stamp" ] && return
    need "${static_packages[@]}"
    fetch_static_sources
    rm -rf "${static:?}/$1"
    build_static highway "$1" -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF -DHWY_ENABLE_TESTS=OFF
    build_static libjpeg-turbo "$1" -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF -DREQUIRE_SIMD=ON \
        -DCMAKE_INSTALL_LIBDIR="$PWD/$static/$1/lib"    # relative to this folder otherwise
    build_static_opencv "$1"
    echo "$stamp" >"$static/$1/stamp"
}

# scanpage_libraries ARCHITECTURE: the same for what only scanpage calls. libtiff is without JBIG, whose library would put
# the program under its licence, the GPL. Leptonica reads its own fonts as TIFF. qpdf's own cryptography replaces GnuTLS,
# which brings eight other libraries.
scanpage_libraries() {
    local stamp
    stamp=$(static_recipe scanpage_libraries)
    [ "$(cat "$static/$1/stamp-scanpage" 2>/dev/null)" = "$stamp" ] && return
    need "${static_packages[@]}"
    fetch_static_sources
    build_static tiff "$1" -Djbig=OFF -Dcxx=OFF -Dtiff-{tools,tests,contrib,docs}=OFF
    # Leptonica 1.82 takes what it finds, 1.84 has options.
    build_static leptonlib "$1" -DCMAKE_DISABLE_FIND_PACKAGE_{GIF,JPEG,PNG,PkgConfig,ZLIB}=ON -DWEBP_LIBRARY=OFF \
        -DWEBPMUX_LIBRARY=OFF -DENABLE_{GIF,JPEG,OPENJPEG,PNG,WEBP,ZLIB}=OFF
    TARGET=libqpdf COMPONENT=dev build_static qpdf "$1" -DCMAKE_CXX_FLAGS=-fPIE -DUSE_IMPLICIT_CRYPTO=OFF \
        -DREQUIRE_CRYPTO_NATIVE=ON
    echo "$stamp" >"$static/$1/stamp-scanpage"
}

cmd_static() {
    local architecture=${1:-$(dpkg --print-architecture)}
    install_packages
    [ "$architecture" != arm64 ] || [ "$(dpkg --print-architecture)" = arm64 ] || arm64_sysroot
    static_libraries "$architecture"
    scanpage_libraries "$architecture"
}
