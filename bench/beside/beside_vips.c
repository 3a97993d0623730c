// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* Times the operations of beside.cpp with libvips, in one thread: beside_vips GREY.jpg COLOUR.jpg */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <vips/vips.h>

enum { kRounds = 9 };
static const double kDegrees = 2.3;

static gchar* streams[2];
static gsize sizes[2];
static VipsImage* pages[2];

/* libvips computes pixels when they are requested, so the result is copied to memory. */
static VipsImage* inMemory(VipsImage* lazy) {
    VipsImage* made = lazy ? vips_image_copy_memory(lazy) : NULL;
    if (!made) vips_error_exit("beside_vips");
    g_object_unref(lazy);
    return made;
}

static VipsImage* readPage(int which) {
    VipsImage* lazy = NULL;
    vips_jpegload_buffer(streams[which], sizes[which], &lazy, NULL);
    return inMemory(lazy);
}

static VipsImage* median(int which) {
    VipsImage* lazy = NULL;
    vips_median(pages[which], &lazy, 3, NULL);
    return inMemory(lazy);
}

static VipsImage* deskew(int which) {
    const double radians = kDegrees * VIPS_PI / 180, s = sin(radians), c = cos(radians);
    const int width = vips_image_get_width(pages[which]), height = vips_image_get_height(pages[which]);
    const double x = (width - 1) / 2.0, y = (height - 1) / 2.0;
    VipsArrayInt* whole = vips_array_int_newv(4, 0, 0, width, height);
    VipsImage* lazy = NULL;
    vips_affine(pages[which], &lazy, c, s, -s, c, "idx", -x, "idy", -y, "odx", x, "ody", y, "oarea", whole, "extend",
                VIPS_EXTEND_WHITE, NULL);
    vips_area_unref(VIPS_AREA(whole));
    return inMemory(lazy);
}

static VipsImage* sharpen(int which) {
    VipsImage* kernel = vips_image_new_matrixv(3, 3, -1.0, -1.0, -1.0, -1.0, 16.0, -1.0, -1.0, -1.0, -1.0);
    vips_image_set_double(kernel, "scale", 8.0);
    VipsImage* lazy = NULL;
    vips_conv(pages[which], &lazy, kernel, "precision", VIPS_PRECISION_INTEGER, NULL);
    g_object_unref(kernel);
    return inMemory(lazy);
}

static VipsImage* quarterTurn(int which) {
    VipsImage* lazy = NULL;
    vips_rot90(pages[which], &lazy, NULL);
    return inMemory(lazy);
}

static VipsImage* scale(int which) {
    VipsImage* lazy = NULL;
    vips_affine(pages[which], &lazy, 0.75, 0.0, 0.0, 0.75, NULL);
    return inMemory(lazy);
}

/* The stream is freed; the page stands for a result. */
static VipsImage* writePage(int which) {
    void* stream = NULL;
    size_t bytes = 0;
    if (vips_jpegsave_buffer(pages[which], &stream, &bytes, "Q", 70, NULL) != 0) vips_error_exit("beside_vips");
    g_free(stream);
    return g_object_ref(pages[which]);
}

static int ascending(const void* a, const void* b) {
    const double x = *(const double*)a, y = *(const double*)b;
    return x < y ? -1 : x > y;
}

static void measure(const char* operation, VipsImage* (*run)(int), int which) {
    double times[kRounds + 1];
    for (int round = 0; round <= kRounds; ++round) {
        struct timespec before, after;
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
        g_object_unref(run(which));
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &after);
        times[round] = (double)(after.tv_sec - before.tv_sec) * 1e3 + (double)(after.tv_nsec - before.tv_nsec) / 1e6;
    }
    qsort(times + 1, kRounds, sizeof times[0], ascending); /* the first round warms up */
    printf("%s\t%s\t%.2f\n", operation, "libvips", times[1 + kRounds / 2]);
}

int main(int argc, char** argv) {
    if (argc != 3 || VIPS_INIT(argv[0]) != 0) return 2;
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    for (int i = 0; i < 2; ++i) {
        if (!g_file_get_contents(argv[i + 1], &streams[i], &sizes[i], NULL)) return 2;
        pages[i] = readPage(i);
    }
    fprintf(stderr, "libvips %s\n", vips_version_string());
    measure("read JPEG, grey", readPage, 0);
    measure("read JPEG, colour", readPage, 1);
    measure("write JPEG, grey", writePage, 0);
    measure("median 3 x 3, grey", median, 0);
    measure("sharpen 3 x 3, grey", sharpen, 0);
    measure("deskew by 2.3 degrees, grey", deskew, 0);
    measure("deskew by 2.3 degrees, colour", deskew, 1);
    measure("quarter turn, colour", quarterTurn, 1);
    measure("scale to 3/4, grey", scale, 0);
    return 0;
}
