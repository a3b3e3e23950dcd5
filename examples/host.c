/* A host of the library: reads the dumps of a phone, whose rows have padding, calls one operation
 * on their very bytes as a camera HAL does on its buffers, and writes what became of them.
 *
 *   cc host.c $(pkg-config --cflags --libs zavricustpro) -o host
 *   ./host OPERATION WIDTH HEIGHT STRIDE SCANLINES OUT IN...
 *
 * OPERATION is whole, edges, edges-luma, chroma or smooth (multi-frame denoise), 7, 11, 15, 19 or
 * legacy (chroma denoise), rnr, poly or bilinear (resize), left, right, center or both (composition
 * of two frames). A host that must go on has more to do about errors than abort().
 *
 * Compiled with -I. '-DZAVRI_TABLES="tables.h"', a file that `zavri tune denoise` wrote, it
 * denoises the first dump by that curve of thresholds at gain 16.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <zavricustpro.h>

#ifdef ZAVRI_TABLES
#include ZAVRI_TABLES
#endif

enum {
  kMostFrames = 4,
  /* An operation may touch bytes behind a plane: the zavri_room_ functions say how many. This is
   * more than frames of twelve megapixels need. */
  kSlack = 1 << 20
};

struct Dumps {
  size_t width, height, stride, chroma_at, bytes;
  size_t count;
  uint8_t* frames[kMostFrames];
};

static int is(const char* text, const char* word) { return strcmp(text, word) == 0; }

static void* allocate(size_t bytes) {
  void* const memory = calloc(bytes, 1);
  if (memory == NULL) abort();
  return memory;
}

static void read_dump(struct Dumps* dumps, const char* path) {
  uint8_t* const bytes = allocate(dumps->bytes + kSlack);
  FILE* const file = fopen(path, "rb");
  if (file == NULL || fread(bytes, 1, dumps->bytes, file) != dumps->bytes) abort();
  fclose(file);
  dumps->frames[dumps->count++] = bytes;
}

static void write_bytes(const char* path, const uint8_t* bytes, size_t count) {
  FILE* const file = fopen(path, "wb");
  if (file == NULL || fwrite(bytes, 1, count, file) != count || fclose(file) != 0) abort();
}

/* A single frame is smoothed, of more the last is denoised. Returns which one that is. */
static size_t denoise(const char* mode, const struct Dumps* dumps) {
  T_3DYuvDenoiseParam param;
  memset(&param, 0, sizeof param);
  param.ref_index = (uint8_t)(dumps->count - 1);
  param.frame_num = (uint8_t)dumps->count;
  param.switch_a = is(mode, "whole") || is(mode, "smooth");
  param.switch_b = is(mode, "edges");
  param.switch_c = is(mode, "edges-luma");
  param.switch_d = is(mode, "smooth");
  param.thresh_tune = 1;
  param.gain = 10;
  param.width = (uint32_t)dumps->width;
  param.height = (uint32_t)dumps->height;
  param.y_stride = param.uv_stride = (uint32_t)dumps->stride;
  param.uv_offset = (uint32_t)dumps->chroma_at;
  param.thresh = 60;
  param.threshY = 90;
#ifdef ZAVRI_TABLES
  param.ref_index = 0;
  param.gain = 16;
  param.thresh = 0;
  param.thresh_table = thresh_table;
  param.thresh_table_len = sizeof thresh_table / sizeof thresh_table[0];
#endif
  memcpy(param.frame_y, dumps->frames, sizeof param.frame_y);
  if (zavri_mp_3D_YUV_denoise(&param) != 0) abort();
  return param.ref_index;
}

/* Differences below 16 count, the less the larger they are. */
static void denoise_chroma(const char* taps, const struct Dumps* dumps) {
  T_UVDenoiseParam param;
  memset(&param, 0, sizeof param);
  param.width = (uint32_t)dumps->width;
  param.height = (uint32_t)dumps->height / 2;
  param.stride = (uint32_t)dumps->stride;
  param.uv_plane = dumps->frames[0] + dumps->chroma_at;
  param.kernel_size = (int8_t)atoi(taps);
  param.threshold = 16;
  for (int d = 0; d < param.threshold; ++d) param.weight_table[d] = (int8_t)(64 - 4 * d);
  for (uint32_t strip = 0; strip < kZavriStrips; ++strip) {
    if (is(taps, "legacy")) {
      zavri_mp_single_UV_denoise_inner_11(&strip, &param, NULL);
    } else {
      zavri_mp_UV_denoise_inner(&strip, &param, NULL);
    }
  }
}

static void reduce_radially(const struct Dumps* dumps) {
  zavri_mp_RNR_init_base((uint32_t)dumps->width, (uint32_t)dumps->height, (uint32_t)dumps->stride,
                         70, 90);
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_init_weight(&tile);
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_process_inner(&tile, dumps->frames[0]);
}

/* To a frame without padding that is 400 columns wider and 100 rows higher. */
static void resize(uint16_t mode, const struct Dumps* dumps, const char* path) {
  const size_t width = dumps->width + 400;
  const size_t height = dumps->height + 100;
  uint8_t* const to = allocate(width * height * 3 / 2);
  T_ResizeParam param;
  memset(&param, 0, sizeof param);
  param.scale_mode = mode;
  param.src_width = (uint16_t)dumps->width;
  param.src_height = (uint16_t)dumps->height;
  param.src_stride = (uint16_t)dumps->stride;
  param.src_y = dumps->frames[0];
  param.src_uv = dumps->frames[0] + dumps->chroma_at;
  param.dst_width = param.dst_stride = (uint16_t)width;
  param.dst_height = (uint16_t)height;
  param.dst_y = to;
  param.dst_uv = to + width * height;
  if (zavri_mp_resize_process(&param) != 0) abort();
  write_bytes(path, to, width * height * 3 / 2);
  free(to);
}

/* The record has no stride: the frames are copied without their padding. */
static uint8_t* without_padding(const struct Dumps* dumps, size_t index) {
  uint8_t* const bytes = allocate(dumps->width * dumps->height * 3 / 2);
  for (size_t y = 0; y < dumps->height * 3 / 2; ++y) {
    const size_t at = y < dumps->height ? y * dumps->stride
                                        : dumps->chroma_at + (y - dumps->height) * dumps->stride;
    memcpy(bytes + y * dumps->width, dumps->frames[index] + at, dumps->width);
  }
  return bytes;
}

static void compose(uint32_t mode, const struct Dumps* dumps, const char* path) {
  if (dumps->count != 2) abort();
  uint8_t* const a = without_padding(dumps, 0);
  uint8_t* const b = without_padding(dumps, 1);
  T_ComposeParam param;
  memset(&param, 0, sizeof param);
  param.width = (uint16_t)dumps->width;
  param.height = (uint16_t)dumps->height;
  param.mode = mode;
  param.padding = 32;
  param.src_frame1 = a;
  param.src_frame2 = b;
  param.dst_frame = allocate(dumps->width * dumps->height * 3 / 2);
  if (zavri_mp_compose_two_same_frame(&param) != 0) abort();
  write_bytes(path, param.dst_frame, dumps->width * dumps->height * 3 / 2);
  free(param.dst_frame);
  free(a);
  free(b);
}

static void run(const char* operation, const struct Dumps* dumps, const char* path) {
  static const char* const places[] = {"left", "right", "center", "both"};
  uint32_t place = 0;
  while (place < 4 && !is(operation, places[place])) ++place;
  if (place < 4) {
    compose(place, dumps, path);
  } else if (is(operation, "poly") || is(operation, "bilinear")) {
    resize(is(operation, "bilinear"), dumps, path);
  } else if (is(operation, "rnr")) {
    reduce_radially(dumps);
    write_bytes(path, dumps->frames[0], dumps->bytes);
  } else if (is(operation, "legacy") || atoi(operation) > 0) {
    denoise_chroma(operation, dumps);
    write_bytes(path, dumps->frames[0], dumps->bytes);
  } else {
    write_bytes(path, dumps->frames[denoise(operation, dumps)], dumps->bytes);
  }
}

int main(int argc, char** argv) {
  struct Dumps dumps;
  if (argc < 8 || argc > 7 + kMostFrames) {
    fprintf(stderr, "usage: %s OPERATION WIDTH HEIGHT STRIDE SCANLINES OUT IN...\n", argv[0]);
    return 2;
  }
  memset(&dumps, 0, sizeof dumps);
  dumps.width = strtoul(argv[2], NULL, 10);
  dumps.height = strtoul(argv[3], NULL, 10);
  dumps.stride = strtoul(argv[4], NULL, 10);
  dumps.chroma_at = dumps.stride * strtoul(argv[5], NULL, 10);
  dumps.bytes = dumps.chroma_at * 3 / 2;
  for (int k = 7; k < argc; ++k) read_dump(&dumps, argv[k]);
  run(argv[1], &dumps, argv[6]);
  for (size_t k = 0; k < dumps.count; ++k) free(dumps.frames[k]);
  HALThreadPoolDestroy();
  return 0;
}
