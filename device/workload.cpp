#include "device/workload.h"

#include <cstring>
#include <memory>

#include "include/zavricustpro.h"

namespace zavri::device {
namespace {

using Bytes = std::vector<uint8_t>;

// Fills a plane with tiles of 24 samples and with noise: of two pairs that are drawn from 28
// levels, a third is less than 10 levels apart.
void fill_noise(uint8_t* plane, uint32_t width, uint32_t rows, uint32_t spread, uint32_t& x) {
  for (uint32_t row = 0; row < rows; ++row) {
    for (uint32_t column = 0; column < width; ++column) {
      x ^= x << 13;
      x ^= x >> 17;
      x ^= x << 5;
      const uint32_t tile = (column / 24 * 73 ^ row / 24 * 151) + (column & 1) * 20;
      *plane++ = static_cast<uint8_t>(40 + tile % 120 + ((x >> 8) * spread >> 24));
    }
  }
}

// Holds four captures of one scene, in the layout of the denoise.
struct Frames {
  Frames(uint32_t frame_width, uint32_t frame_height)
      : width(frame_width), height(frame_height), luma(size_t{width} * height) {
    // Of 2 or 3 frames the edges need most room, and smoothing needs whole rows.
    T_3DYuvDenoiseParam widest{};
    widest.frame_num = 3;
    widest.switch_b = widest.switch_d = 1;
    widest.width = widest.y_stride = widest.uv_stride = width;
    widest.height = height;
    uv_offset = zavri_room_denoise_luma(&widest);
    uint32_t random = 1;
    for (Bytes& frame : frames) {
      frame.resize(uv_offset + zavri_room_denoise_chroma(&widest));
      fill_noise(frame.data(), width, height, 7, random);
      fill_noise(frame.data() + uv_offset, width, height / 2, 28, random);
    }
    result = frames[0];
  }

  void restore() { memcpy(result.data(), frames[0].data(), result.size()); }
  uint8_t* chroma() { return result.data() + uv_offset; }

  const uint32_t width;
  const uint32_t height;
  const size_t luma;  // bytes
  size_t uv_offset;
  Bytes frames[4];
  Bytes result;  // is a copy of the first frame before each operation
};

using Shared = std::shared_ptr<Frames>;

class Operations {
 public:
  explicit Operations(Shared frames) : frames_(std::move(frames)) {}

  void add_memcpy();
  void add_denoise(const char* name, uint8_t frame_num, const T_3DYuvDenoiseParam& switches);
  void add_chroma(const char* name, ThreadPoolTaskFunc strip);
  void add_resize(const char* name, uint16_t mode);
  void add_rnr();
  void add_compose();
  void add_measures();

  std::vector<Operation> take() { return std::move(operations_); }

 private:
  using Run = std::function<void(int)>;
  void add(const char* name, bool takes_threads, const Run& run) {
    const Shared f = frames_;
    operations_.push_back({name, takes_threads, [f] { f->restore(); }, run});
  }

  Shared frames_;
  std::vector<Operation> operations_;
};

void Operations::add_memcpy() {
  add("memcpy of a frame", true, [f = frames_](int threads) {
    const size_t part = f->luma * 3 / 2 / kZavriStrips;
    run_tasks(threads, kZavriStrips, [&](uint32_t i) {
      memcpy(f->result.data() + i * part, f->frames[1].data() + i * part, part);
    });
  });
}

void Operations::add_denoise(const char* name, uint8_t frame_num,
                             const T_3DYuvDenoiseParam& switches) {
  T_3DYuvDenoiseParam param = switches;
  param.frame_num = frame_num;
  param.width = param.y_stride = param.uv_stride = frames_->width;
  param.height = frames_->height;
  param.uv_offset = static_cast<uint32_t>(frames_->uv_offset);
  param.thresh_tune = 1;
  // The frame's size scales the threshold to 10: 13 by 83 % at twelve megapixels, 67 by 15 % at
  // two.
  param.thresh = param.threshY = frames_->luma > 10000000 ? 13 : 67;
  param.frame_y[0] = frames_->result.data();
  for (int k = 1; k < 4; ++k) param.frame_y[k] = frames_->frames[k].data();
  add(name, true, [f = frames_, param](int) {
    T_3DYuvDenoiseParam used = param;
    zavri_mp_3D_YUV_denoise(&used);
  });
}

void Operations::add_chroma(const char* name, ThreadPoolTaskFunc strip) {
  T_UVDenoiseParam param{};
  param.width = param.stride = frames_->width;
  param.height = frames_->height / 2;
  param.uv_plane = frames_->chroma();
  param.threshold = 20;
  for (int d = 0; d < param.threshold; ++d) param.weight_table[d] = static_cast<int8_t>(60 - 3 * d);
  add(name, true, [f = frames_, param, strip](int threads) {
    run_tasks(threads, kZavriStrips, [&](uint32_t i) { strip(&i, &param, nullptr); });
  });
}

void Operations::add_resize(const char* name, uint16_t mode) {
  T_ResizeParam param{};
  param.scale_mode = mode;
  param.src_width = param.src_stride = static_cast<uint16_t>(frames_->width / 2);
  param.src_height = static_cast<uint16_t>(frames_->height / 2);
  param.src_y = frames_->frames[1].data();
  param.src_uv = frames_->frames[1].data() + frames_->uv_offset;
  param.dst_width = param.dst_stride = static_cast<uint16_t>(frames_->width);
  param.dst_height = static_cast<uint16_t>(frames_->height);
  param.dst_y = frames_->result.data();
  param.dst_uv = frames_->chroma();
  add(name, true, [f = frames_, param](int) {
    T_ResizeParam used = param;
    zavri_mp_resize_process(&used);
  });
}

void Operations::add_rnr() {
  constexpr uint32_t kTiles = 12;
  constexpr uint32_t kRadius = 90;
  constexpr int32_t kStrength = 70;
  add("rnr: tables", true, [f = frames_](int threads) {
    zavri_mp_RNR_init_base(0, 0, 0, 0, 0);  // or the tables would be kept
    zavri_mp_RNR_init_base(f->width, f->height, f->width, kRadius, kStrength);
    run_tasks(threads, kTiles, [](uint32_t tile) { zavri_mp_RNR_init_weight(&tile); });
  });
  add("rnr: blur", true, [f = frames_](int threads) {
    run_tasks(threads, kTiles,
              [&](uint32_t tile) { zavri_mp_RNR_process_inner(&tile, f->result.data()); });
  });
}

void Operations::add_compose() {
  T_ComposeParam param{};
  param.width = static_cast<uint16_t>(frames_->width);
  param.height = static_cast<uint16_t>(frames_->height);
  param.mode = 2;
  param.padding = 32;
  param.src_frame1 = frames_->frames[1].data();
  param.src_frame2 = frames_->frames[2].data();
  param.dst_frame = frames_->result.data();
  add("compose", false, [f = frames_, param](int) {
    T_ComposeParam used = param;
    zavri_mp_compose_two_same_frame(&used);
  });
}

void Operations::add_measures() {
  const T_OptRect all{0, 0, static_cast<int32_t>(frames_->width) - 1,
                      static_cast<int32_t>(frames_->height) - 1};
  zavri_auto_shoot_opt_set_FV_rect(&all);
  const auto measure = [&](const char* name, auto function) {
    add(name, false, [f = frames_, all, function](int) {
      function(f->frames[0].data(), &all, f->width, f->height);
    });
  };
  measure("focus value", zavri_auto_shoot_opt_get_FV_value);
  measure("focus derivation", [](const uint8_t* y, const T_OptRect*, uint32_t w, uint32_t h) {
    return zavri_auto_shoot_opt_get_FV_value_derivation(y, w, h);
  });
  measure("focus average", [](const uint8_t* y, const T_OptRect*, uint32_t w, uint32_t h) {
    return zavri_auto_shoot_opt_get_FV_value_average(y, w, h);
  });
  measure("brightness", zavri_auto_shoot_opt_get_bright);
}

}  // namespace

std::vector<Operation> all_operations(uint32_t width, uint32_t height) {
  Operations operations(std::make_shared<Frames>(width, height));
  operations.add_memcpy();
  T_3DYuvDenoiseParam whole{};
  whole.switch_a = 1;
  operations.add_denoise("denoise: 2 frames", 2, whole);
  operations.add_denoise("denoise: 3 frames", 3, whole);
  operations.add_denoise("denoise: 4 frames", 4, whole);
  T_3DYuvDenoiseParam edges{};
  edges.switch_b = 1;
  operations.add_denoise("denoise: edges of 4 frames", 4, edges);
  T_3DYuvDenoiseParam smoothing{};
  smoothing.switch_d = 1;
  operations.add_denoise("denoise: run smoothing", 1, smoothing);
  operations.add_chroma("chroma: 7 taps", zavri_mp_single_UV_denoise_new_inner_7);
  operations.add_chroma("chroma: 11 taps", zavri_mp_single_UV_denoise_new_inner_11);
  operations.add_chroma("chroma: 15 taps", zavri_mp_single_UV_denoise_new_inner_15);
  operations.add_chroma("chroma: 19 taps", zavri_mp_single_UV_denoise_new_inner_19);
  operations.add_chroma("chroma: fixed tolerance", zavri_mp_single_UV_denoise_inner_11);
  operations.add_resize("resize: poly, from half size", 0);
  operations.add_resize("resize: bilinear, from half size", 1);
  operations.add_rnr();
  operations.add_compose();
  operations.add_measures();
  return operations.take();
}

}  // namespace zavri::device
