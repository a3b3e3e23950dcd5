#include "denoise3d/uv_run_smooth.h"

#include "denoise3d/chroma_runs.h"

extern "C" void uv_run_smooth(const T_UvRunSmoothParam* param) {
  const zavri::ChromaRunKernels& kernels = zavri::chroma_run_kernels();
  const size_t bytes = size_t{param->rows} * param->stride;
  if (bytes >= 3) kernels.smooth_sequence(param->plane, bytes);
  if (param->rows >= 2) {
    kernels.smooth_columns(param->plane, param->width, param->rows, param->stride);
  }
}
