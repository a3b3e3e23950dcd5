/* A host in C11: enlarges a grey frame on the library's pool. */
#include <stdio.h>
#include <string.h>
#include <zavricustpro.h>

int main(void) {
  static uint8_t small[16 * 8 * 3 / 2], large[32 * 16 * 3 / 2];
  memset(small, 77, sizeof small);
  T_ResizeParam param = {.src_width = 16,
                         .src_height = 8,
                         .src_stride = 16,
                         .src_y = small,
                         .src_uv = small + 16 * 8,
                         .dst_width = 32,
                         .dst_height = 16,
                         .dst_stride = 32,
                         .dst_y = large,
                         .dst_uv = large + 32 * 16};
  if (zavri_mp_resize_process(&param) != 0) return 1;
  for (size_t i = 0; i < sizeof large; ++i) {
    if (large[i] != 77) return 1;
  }
  return puts(ZAVRI_VERSION) < 0;
}
