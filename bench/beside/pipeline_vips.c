// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* The page pipeline with libvips, in one thread: pipeline_vips idle|jpeg|bits GREY.jpg prints the seconds of the second
   run, and the steps. libvips computes pixels when they are requested, so nothing but the straightened page is whole in
   memory. */
#include <math.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <vips/vips.h>

static const double kDegrees = 2.3, kThreshold = 128;
enum { kQuality = 70 };

static void require(int failed) {
    if (failed) vips_error_exit("pipeline_vips");
}

static VipsImage* straightened(gchar* stream, gsize size) {
    VipsImage *page = NULL, *straight = NULL;
    require(vips_jpegload_buffer(stream, size, &page, NULL));
    const double radians = kDegrees * VIPS_PI / 180, s = sin(radians), c = cos(radians);
    const int width = vips_image_get_width(page), height = vips_image_get_height(page);
    const double x = (width - 1) / 2.0, y = (height - 1) / 2.0;
    VipsArrayInt* whole = vips_array_int_newv(4, 0, 0, width, height);
    require(vips_affine(page, &straight, c, s, -s, c, "idx", -x, "idy", -y, "odx", x, "ody", y, "oarea", whole,
                        "extend", VIPS_EXTEND_WHITE, NULL));
    vips_area_unref(VIPS_AREA(whole));
    g_object_unref(page);
    return straight;
}

static void toJpeg(gchar* stream, gsize size) {
    VipsImage *straight = straightened(stream, size), *filtered = NULL;
    require(vips_median(straight, &filtered, 3, NULL));
    void* result = NULL;
    gsize bytes = 0;
    require(vips_jpegsave_buffer(filtered, &result, &bytes, "Q", kQuality, NULL));
    g_free(result);
    g_object_unref(filtered);
    g_object_unref(straight);
}

static void toBits(gchar* stream, gsize size) {
    VipsImage *straight = straightened(stream, size), *binary = NULL;
    require(vips_moreeq_const1(straight, &binary, kThreshold, NULL));
    VipsTarget* target = vips_target_new_to_memory();
    require(vips_ppmsave_target(binary, target, "format", VIPS_FOREIGN_PPM_FORMAT_PBM, NULL));
    g_object_unref(target);
    g_object_unref(binary);
    g_object_unref(straight);
}

static double now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

int main(int argc, char** argv) {
    gchar* stream = NULL;
    gsize size = 0;
    if (argc != 3 || VIPS_INIT(argv[0]) != 0 || !g_file_get_contents(argv[2], &stream, &size, NULL)) return 2;
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    if (strcmp(argv[1], "idle") == 0) {
        puts("0\t");
        return 0;
    }
    const int jpeg = strcmp(argv[1], "jpeg") == 0;
    void (*run)(gchar*, gsize) = jpeg ? toJpeg : toBits;
    run(stream, size);
    const double start = now();
    run(stream, size);
    printf("%.9f\t%s\n", now() - start,
           jpeg ? "vips_jpegload_buffer, vips_affine, vips_median 3x3 (no weighted one), vips_jpegsave_buffer"
                : "vips_jpegload_buffer, vips_affine, vips_moreeq_const1, vips_ppmsave_target to PBM");
    g_free(stream);
    return 0;
}
