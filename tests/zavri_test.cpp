// The program: its parts, and each command as a user runs it.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zavricustpro.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>

#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/metrics.h"
#include "tools/noise.h"

namespace zavri::tools {
namespace {

namespace fs = std::filesystem;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// A folder of its own for each test, and the program run in it.
class Zavri : public ::testing::Test {
 protected:
  Zavri() : folder_(fs::temp_directory_path() / ("zavri_test" + std::to_string(getpid()))) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~Zavri() override { fs::remove_all(folder_); }

  Outcome run(const std::string& arguments) {
    const std::string command = "cd '" + folder_.string() + "' && " ZAVRI_COMMAND " " + arguments +
                                (arguments.find('>') == std::string::npos ? " >stdout.txt" : "") +
                                " 2>stderr.txt";
    const int status = system(command.c_str());
    const auto text = [&](const char* name) {
      std::ifstream in(folder_ / name);
      return std::string(std::istreambuf_iterator<char>(in), {});
    };
    return {WEXITSTATUS(status), text("stdout.txt"), text("stderr.txt")};
  }

  // photo.png and, made of it, clean and frame0 to frame3.
  void make_burst_files(int width, int height);

  std::string path(const std::string& name) const { return folder_ / name; }

  // Everything in the folder but the two streams.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
      const std::string name = fs::relative(entry.path(), folder_);
      if (entry.is_regular_file() && name != "stdout.txt" && name != "stderr.txt") {
        names.push_back(name);
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path folder_;
};

Frame random_frame(int width, int height, unsigned seed) {
  std::mt19937 random(seed);
  Frame frame(width, height);
  for (auto& byte : frame.luma) byte = static_cast<uint8_t>(random());
  for (auto& byte : frame.chroma) byte = static_cast<uint8_t>(random());
  return frame;
}

// A smooth scene, as a photograph is.
Picture gradient(int width, int height) {
  Picture picture(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* const rgb = &picture.rgb[3 * (static_cast<size_t>(y) * width + x)];
      rgb[0] = static_cast<uint8_t>(40 + 180 * x / width);
      rgb[1] = static_cast<uint8_t>(60 + 150 * y / height);
      rgb[2] = static_cast<uint8_t>(90 + 60 * (x + y) / (width + height));
    }
  }
  return picture;
}

void Zavri::make_burst_files(int width, int height) {
  write_file(path("photo.png"), encode(gradient(width, height), "photo.png"));
  const Outcome outcome = run("burst photo.png -o .");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
}

std::string error_of(const std::string& path, const RawOptions& options, size_t bytes) {
  try {
    raw_format(path, options, bytes);
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

TEST(RawFormat, ComesFromTheNameOrTheOptions) {
  struct {
    const char* path;
    RawOptions options;
    size_t bytes;
    RawFormat expected;
  } const kCases[] = {
      {"a/dump_4000x2250.nv21", {}, 13500000, {4000, 2250, ChromaOrder::kVu, 4000, 2250}},
      {"4000x2250_dump.nv12", {}, 13500000, {4000, 2250, ChromaOrder::kUv, 4000, 2250}},
      {"x_64x32.yuv", {"", "nv21"}, 3072, {64, 32, ChromaOrder::kVu, 64, 32}},
      {"x_64x32.yuv", {"32x64", ""}, 3072, {32, 64, ChromaOrder::kUv, 32, 64}},
      {"dump.yuv", {"64x32", "nv12", 80, 48}, 5760, {64, 32, ChromaOrder::kUv, 80, 48}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.path);
    const RawFormat format = raw_format(c.path, c.options, c.bytes);
    EXPECT_EQ(format.width, c.expected.width);
    EXPECT_EQ(format.height, c.expected.height);
    EXPECT_EQ(format.order, c.expected.order);
    EXPECT_EQ(format.stride, c.expected.stride);
    EXPECT_EQ(format.scanlines, c.expected.scanlines);
  }
}

TEST(RawFormat, RefusalsSayWhatWouldBeRight) {
  struct {
    const char* path;
    RawOptions options;
    size_t bytes;
    const char* part;
  } const kCases[] = {
      {"dump_4000x3000.nv12", {}, 13500000, "13500000 bytes is 4000x2250 nv12"},
      {"dump_100x100.nv21", {}, 3110400, "3110400 bytes is 1920x1080 nv21"},
      {"dump_64x32.nv12", {}, 3071, "the file has 3071"},
      {"dump.nv12", {}, 3072, "--size WxH"},
      {"dump.nv12", {"64", ""}, 3072, "--size 64: a size is WxH"},
      {"dump.nv12", {"63x32", ""}, 3072, "both even"},
      {"dump.nv12", {"0x32", ""}, 3072, "--size 0x32"},
      {"dump_64x32.nv12", {"", "p010"}, 3072, "--pix p010: the formats are nv12 and nv21"},
      {"dump_64x32.nv12", {"", "", 60}, 3072, "--stride 60: at least the width, 64"},
      {"dump_64x32.nv12", {"", "", 64, 30}, 3072, "--scanlines 30"},
  };
  for (const auto& c : kCases) {
    EXPECT_NE(error_of(c.path, c.options, c.bytes).find(c.part), std::string::npos)
        << c.path << ": " << error_of(c.path, c.options, c.bytes);
  }
}

TEST(Metrics, AgreeWithHandComputedValues) {
  Frame a(16, 16);
  Frame b(16, 16);
  std::fill(a.luma.begin(), a.luma.end(), 100);
  std::fill(b.luma.begin(), b.luma.end(), 110);
  b.chroma[0] = 16;  // one U of 64
  const std::vector<PlaneDifference> planes = compare(a, b);
  EXPECT_NEAR(planes[0].psnr, 10 * std::log10(255.0 * 255 / 100), 1e-9);
  EXPECT_EQ(planes[0].largest, 10);
  // Flat windows: only the means count.
  EXPECT_NEAR(planes[0].ssim, (2 * 100 * 110 + 6.5025) / (100 * 100 + 110 * 110 + 6.5025), 1e-9);
  EXPECT_NEAR(planes[1].psnr, 10 * std::log10(255.0 * 255 / (256.0 / 64)), 1e-9);
  EXPECT_LT(planes[1].ssim, 1);
  EXPECT_TRUE(std::isinf(planes[2].psnr));
  EXPECT_EQ(planes[2].ssim, 1);

  // One window of known variances: a ramp against its half.
  Frame ramp(8, 8);
  Frame half(8, 8);
  for (int i = 0; i < 64; ++i) {
    ramp.luma[i] = static_cast<uint8_t>(4 * (i % 8));
    half.luma[i] = static_cast<uint8_t>(2 * (i % 8));
  }
  const double variance = 16 * 5.25;  // of 0, 4 .. 28
  EXPECT_NEAR(compare(ramp, half)[0].ssim,
              (2 * 14 * 7 + 6.5025) * (2 * variance / 2 + 58.5225) /
                  ((14 * 14 + 7 * 7 + 6.5025) * (variance * 1.25 + 58.5225)),
              1e-9);
}

// Mean and variance of the draws in linear light, where the sensor does not clip.
TEST(Noise, FollowsTheSensorsPhotonsAndReadOut) {
  for (const double gain : {1.0, 8.0, 64.0}) {
    Sensor sensor;
    sensor.gain = gain;
    const SensorNoise noise(sensor);
    for (const int value : {90, 128, 170}) {
      SCOPED_TRACE(::testing::Message() << "gain " << gain << " value " << value);
      const double photons = linear_from_srgb(value) * sensor.white();
      double sum = 0;
      double squares = 0;
      for (int i = 0; i < SensorNoise::kDraws; ++i) {
        const float drawn = noise.draws(static_cast<uint8_t>(value))[i];
        const double electrons = linear_from_srgb(drawn) * sensor.white();
        sum += electrons;
        squares += electrons * electrons;
      }
      const double mean = sum / SensorNoise::kDraws;
      const double variance = squares / SensorNoise::kDraws - mean * mean;
      EXPECT_NEAR(mean, photons, 0.01 * photons);
      EXPECT_NEAR(variance, photons + 9, 0.04 * (photons + 9));
    }
  }
}

TEST(Noise, DiffersFromFrameToFrameAndRepeatsWithItsSeed) {
  const SensorNoise noise(Sensor{});
  const Picture picture = gradient(64, 48);
  const Frame frame = capture(picture, noise, 5, 0);
  EXPECT_EQ(frame.luma, capture(picture, noise, 5, 0).luma);
  EXPECT_NE(frame.luma, capture(picture, noise, 5, 1).luma);
  EXPECT_NE(frame.luma, capture(picture, noise, 6, 0).luma);
}

TEST_F(Zavri, LosslessFormatsKeepEveryByte) {
  const Frame frame = to_frame(gradient(30, 18));
  for (const char* name : {"a_30x18.nv12", "a_30x18.nv21", "a_30x18.yuv", "a.y4m"}) {
    write_file(path(name), encode(frame, name));
    const Frame loaded = load_frame(path(name), {}).with_u_first();
    EXPECT_EQ(loaded.luma, frame.luma) << name;
    EXPECT_EQ(loaded.chroma, frame.chroma) << name;
  }
  const Picture picture = gradient(30, 18);
  for (const char* name : {"a.png", "a.ppm"}) {
    write_file(path(name), encode(picture, name));
    EXPECT_EQ(load_picture(path(name)).rgb, picture.rgb) << name;
  }
  // Through RGB and back a frame moves by rounding alone.
  const Frame smooth = to_frame(picture);
  EXPECT_GT(compare(smooth, to_frame(to_picture(smooth)))[0].psnr, 45);
}

// The four strips by hand, luma and chroma kept apart: at this height the last strip's luma rows
// reach past their plane.
TEST_F(Zavri, DenoisesAsTheLibrarysStripsDo) {
  constexpr int kWidth = 2000;
  constexpr int kHeight = 1500;  // three megapixels: thresholds are scaled to 30 %
  constexpr size_t kLuma = size_t{kWidth} * kHeight;
  constexpr size_t kGap = 4 * kWidth;
  make_burst_files(kWidth, kHeight);
  const Outcome outcome =
      run("denoise frame0_2000x1500.nv12 frame1_2000x1500.nv12 frame2_2000x1500.nv12 "
          "--ref 1 --thresh 60 --thresh-luma 90 --smooth --json -o out_2000x1500.nv12");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  const auto report = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(report["thresh"], 18);
  EXPECT_EQ(report["threshY"], 27);

  T_3DYuvDenoiseParam param{};
  std::vector<Bytes> frames(3);
  for (size_t k = 0; k < frames.size(); ++k) {
    frames[k] = read_file(path("frame" + std::to_string(k) + "_2000x1500.nv12"));
    frames[k].insert(frames[k].begin() + kLuma, kGap, 0);
    param.frame_y[k] = frames[k].data();
  }
  param.ref_index = 1;
  param.frame_num = 3;
  param.switch_a = param.switch_d = param.thresh_tune = 1;
  param.width = param.y_stride = param.uv_stride = kWidth;
  param.height = kHeight;
  param.uv_offset = kLuma + kGap;
  param.thresh = 18;
  param.threshY = 27;
  for (int32_t strip = 0; strip < 4; ++strip) {
    zavri_mp_3D_YUV_denoise_inner(&strip, &param, nullptr);
  }
  Bytes& expected = frames[1];
  expected.erase(expected.begin() + kLuma, expected.begin() + kLuma + kGap);
  EXPECT_TRUE(read_file(path("out_2000x1500.nv12")) == expected);
}

TEST_F(Zavri, BadInputIsOneLineStatusTwoAndNoFile) {
  make_burst_files(64, 48);
  write_file(path("bad.png"), {1, 2, 3});
  write_file(path("short.y4m"), encode(to_frame(gradient(8, 8)), "a.y4m"));
  fs::resize_file(path("short.y4m"), 60);
  write_file(path("large.ppm"), encode(gradient(96, 160), "large.ppm"));
  write_file(path("tiny.ppm"), encode(gradient(1, 1), "tiny.ppm"));
  write_file(path("long_8192x2.nv12"), Bytes(8192 * 3));
  std::ofstream(path("few.txt")) << "64 20 -5";
  std::ofstream(path("large.txt")) << "64 20 99999999999";
  std::ofstream(path("rest.txt")) << "64 20 -";
  const std::vector<std::string> before = files();
  struct {
    const char* arguments;
    const char* part;
  } const kCases[] = {
      {"", "a command is needed: burst"},
      {"sharpen a b", "sharpen: no such command"},
      {"denoise frame0_64x48.nv12 --smooth", "-o"},
      {"denoise frame0_64x48.nv12 -o out.png", "--smooth"},
      {"denoise frame0_64x48.nv12 frame1_64x48.nv12 --ref 2 -o out.png", "--ref 2"},
      {"denoise frame0_64x48.nv12 frame1_64x48.nv12 --thresh 101 -o out.png", "1..100 or auto"},
      {"denoise frame0_64x48.nv12 frame1_64x48.nv12 --mode best -o out.png", "--mode"},
      {"denoise frame0_64x48.nv12 photo.png missing.png -o out.png", "missing.png"},
      {"denoise frame0_64x48.nv12 frame1_64x48.nv12 -o out.gif", ".png, .jpg"},
      {"denoise frame0_64x48.nv12 frame1_64x48.nv12 --size 32x32 -o out.png", "bytes is 32x96"},
      {"view bad.png -o out.png", "bad.png: not a PNG"},
      {"view short.y4m -o out.png", "short.y4m: the stream ends within frame 0"},
      {"view photo.png -o photo.png", "--force"},
      {"view tiny.ppm -o out.png", "tiny.ppm: a picture of 1x1"},
      {"compare photo.png frame0_64x48.nv12 --size 48x64", "cannot be compared"},
      {"chroma photo.png --taps 9 -o out.png", "--taps 9: there are 7, 11, 15 and 19"},
      {"chroma photo.png -o out.png", "IN: 64x48 is too small for 11 taps: it takes 96x154"},
      {"chroma large.ppm --threshold 128 -o out.png", "--threshold"},
      {"chroma large.ppm --threshold 4 --weights few.txt -o out.png", "--threshold 4"},
      {"chroma large.ppm --threshold 3 --weights few.txt -o out.png", "outweigh the centre"},
      {"chroma large.ppm --weights large.txt -o out.png", "large.txt: 99999999999: weights are"},
      {"chroma large.ppm --weights rest.txt -o out.png", "rest.txt: -: weights are whole"},
      {"chroma large.ppm --falloff nan -o out.png", "--falloff"},
      {"chroma large.ppm --weights few.txt --falloff 3 -o out.png", "--falloff"},
      {"chroma large.ppm --legacy --threshold 3 -o out.png", "--legacy"},
      {"chroma large.ppm --legacy --taps 7 -o out.png", "--legacy has 11"},
      {"resize photo.png --to 63x48 -o out.png", "--to"},
      {"resize photo.png --to 128x96 --mode 1 -o out.png", "--mode 1: there are poly, bilinear"},
      {"rnr photo.png --radius 0 -o out.png", "--radius"},
      {"rnr photo.png --strength 101 -o out.png", "--strength"},
      {"rnr long_8192x2.nv12 --radius 256 -o out.png", "--radius 256: at 8192x2 at most 255"},
      {"rnr long_8192x2.nv12 --strength 100 -o out.png", "--radius 100 at most 99"},
      {"compose photo.png frame0_64x48.nv12 --padding 65 -o out.png", "--padding 65"},
      {"compose photo.png frame0_64x48.nv12 --pad 1 -o out.png", "--pad 1: there are left, right"},
      {"compose photo.png frame0_64x48.nv12 --size 32x96 -o out.png", "one size"},
      {"measure photo.png --rect 1,2,63,45", "photo.png: --rect 1,2,63,45: a column"},
      {"measure photo.png --rect 1,2,62,46", "62x45 of 64x48 would fit"},
      {"measure photo.png --rect 63,0,1,2", "within 0,0 and 62,45"},
      {"measure photo.png --rect 0,0,9", "x,y,width,height"},
      {"replay frame0_64x48.nv12 --then rotate -o out.png", "the steps are denoise"},
      {"replay frame0_64x48.nv12 --then chroma:7,0 -o out.png",
       "--then chroma:7,0: '0' is no number from 1 to 127"},
      {"replay frame0_64x48.nv12 --then rnr:1,2,3 -o out.png", "too much for rnr"},
      {"replay frame0_64x48.nv12 frame1_64x48.nv12 -o out.png", "IN: 2 dumps"},
      {"replay --meta 8 frame0_64x48.nv12 -o out.png", "64x48 nv12 is 4608 bytes"},
      {"burst photo.png -o .", "--force"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.arguments);
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, kBadInput);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_NE(outcome.err.find(c.part), std::string::npos) << outcome.err;
    EXPECT_EQ(files(), before);
  }
}

TEST_F(Zavri, ComparesAndSaysByItsStatusWhatIsBelowTheLimit) {
  make_burst_files(64, 48);
  EXPECT_EQ(run("compare clean_64x48.nv12 clean_64x48.nv12 --min-psnr 99").status, kDone);
  EXPECT_EQ(run("compare clean_64x48.nv12 frame0_64x48.nv12 --min-psnr 99").status, kBelowLimit);
  const Outcome outcome =
      run("compare clean_64x48.nv12 frame0_64x48.nv12 --json --diff difference.ppm");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  EXPECT_EQ(nlohmann::json::parse(outcome.out)["planes"].size(), 3u);
  EXPECT_EQ(load_picture(path("difference.ppm")).width, 64);
}

TEST_F(Zavri, ShowsTheLibrarysLinesAndRemarksOnIdleThresholds) {
  make_burst_files(64, 48);
  const std::string denoise =
      "denoise frame0_64x48.nv12 frame1_64x48.nv12 --thresh 50 --force -o out.y4m ";
  EXPECT_NE(run(denoise).err.find("below 2 megapixels"), std::string::npos);
  const Outcome verbose = run(denoise + "--verbose --quiet");
  EXPECT_EQ(verbose.out, "");
  EXPECT_NE(verbose.err.find("E/ZVC: zavri-mp 3dyuv begin\n"), std::string::npos) << verbose.err;
  EXPECT_NE(verbose.err.find("height:48, width:64, gain:16, thresh:0, threshY:0, num:2\n"),
            std::string::npos)
      << verbose.err;
  EXPECT_NE(verbose.err.find("V/Defog: 4 threads created by the thread pool\n"), std::string::npos);
  EXPECT_EQ(run(denoise + "--quiet").err, "");
}

// A step of luma overshoots where a polynomial scales it, and nowhere else.
TEST_F(Zavri, ResizeEnlargesByTheModeAskedFor) {
  Frame step(64, 48);
  for (size_t i = 0; i < step.luma.size(); ++i) step.luma[i] = i % 64 < 32 ? 50 : 200;
  write_file(path("step_64x48.nv12"), encode(step, "step.nv12"));
  for (const std::string mode : {"", "--mode poly", "--mode bilinear"}) {
    const Outcome outcome =
        run("resize step_64x48.nv12 --to 98x64 --force -o out_98x64.nv12 " + mode);
    ASSERT_EQ(outcome.status, kDone) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const Frame out = load_frame(path("out_98x64.nv12"), {});
    const auto [least, most] = std::minmax_element(out.luma.begin(), out.luma.end());
    const bool overshoots = *least < 50 && *most > 200;
    EXPECT_EQ(overshoots, mode != "--mode bilinear") << int{*least} << ' ' << int{*most};
  }
  EXPECT_NE(run("resize step_64x48.nv12 --to 98x66 --force -o out.png").err, "");
}

TEST_F(Zavri, ResizeRefusesWhatTheLibraryCannotDo) {
  write_file(path("in_64x48.nv12"), encode(random_frame(64, 48, 3), "in.nv12"));
  write_file(path("flat_64x4.nv12"), encode(random_frame(64, 4, 3), "in.nv12"));
  write_file(path("flat_64x12.nv12"), encode(random_frame(64, 12, 3), "in.nv12"));
  for (const char* arguments :
       {"in_64x48.nv12 --to 62x48", "in_64x48.nv12 --to 64x46", "flat_64x4.nv12 --to 64x8",
        "flat_64x4.nv12 --to 64x4", "flat_64x12.nv12 --to 64x24"}) {
    const Outcome outcome = run(std::string("resize ") + arguments + " -o out.png");
    EXPECT_EQ(outcome.status, kRefused) << arguments;
    EXPECT_NE(outcome.err.find("library"), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(path("out.png")));
  }
}

TEST_F(Zavri, RnrIsTheTwelveTilesOfTheLuma) {
  const Frame frame = random_frame(130, 98, 3);
  write_file(path("in_130x98.nv12"), encode(frame, "in.nv12"));
  ASSERT_EQ(run("rnr in_130x98.nv12 --radius 70 --strength 90 -o out_130x98.nv12").status, kDone);
  const Frame out = load_frame(path("out_130x98.nv12"), {});
  Frame expected = frame;
  ASSERT_EQ(zavri_mp_RNR_init_base(130, 98, 130, 70, 90), 1u);
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_init_weight(&tile);
  for (uint32_t tile = 0; tile < 12; ++tile) {
    zavri_mp_RNR_process_inner(&tile, expected.luma.data());
  }
  EXPECT_EQ(out.luma, expected.luma);
  EXPECT_NE(out.luma, frame.luma);
  EXPECT_EQ(out.chroma, frame.chroma);
}

// NV21 frames meet NV12 ones, and the result is U first.
TEST_F(Zavri, ComposeIsTheLibrarysFrame) {
  const Frame a = random_frame(64, 48, 4);
  Frame b = random_frame(64, 48, 5);
  b.order = ChromaOrder::kVu;
  write_file(path("a_64x48.nv12"), encode(a, "a.nv12"));
  write_file(path("b_64x48.nv21"), encode(b, "b.nv21"));
  const Bytes first = encode(a, "a.nv12");
  const Bytes second = encode(b.with_u_first(), "b.nv12");
  const char* const places[] = {"left", "right", "center", "both"};
  for (uint32_t mode = 0; mode < 4; ++mode) {
    Bytes expected(first.size());
    T_ComposeParam param{};
    param.width = 64;
    param.height = 48;
    param.mode = mode;
    param.padding = 8;
    param.src_frame1 = first.data();
    param.src_frame2 = second.data();
    param.dst_frame = expected.data();
    ASSERT_EQ(zavri_mp_compose_two_same_frame(&param), 0u);
    const Outcome outcome =
        run(std::string("compose a_64x48.nv12 b_64x48.nv21 --padding 8 --pad ") + places[mode] +
            " --force -o out_64x48.nv12");
    ASSERT_EQ(outcome.status, kDone) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(read_file(path("out_64x48.nv12")), expected) << places[mode];
  }
  const Outcome inexact = run("compose a_64x48.nv12 b_64x48.nv21 --padding 9 --force -o out.png");
  EXPECT_NE(inexact.err.find("padding, 55, is no multiple of 4\n"), std::string::npos)
      << inexact.err;
}

// The chroma denoise of the frame with U first, its plane at its size, strip after strip.
Frame denoised_by_hand(const Frame& frame, int taps, const std::vector<int>& weights) {
  Frame result = frame.with_u_first();
  T_UVDenoiseParam param{};
  param.width = param.stride = static_cast<uint32_t>(frame.width);
  param.height = static_cast<uint32_t>(frame.height / 2);
  param.uv_plane = result.chroma.data();
  param.kernel_size = static_cast<int8_t>(taps);
  param.threshold = static_cast<int8_t>(weights.size());
  std::copy(weights.begin(), weights.end(), param.weight_table);
  const auto denoise =
      weights.empty() ? zavri_mp_single_UV_denoise_inner_11 : zavri_mp_UV_denoise_inner;
  for (uint32_t strip = 0; strip < 4; ++strip) denoise(&strip, &param, nullptr);
  return result;
}

TEST_F(Zavri, ChromaIsTheLibrarysFourStrips) {
  std::ofstream(path("weights.txt")) << "60 50 40\n30 9 9 9";
  // So tall that no strip needs room around the plane.
  Frame frame = random_frame(160, 600, 6);
  for (uint8_t& byte : frame.chroma) byte = static_cast<uint8_t>(100 + byte % 24);
  frame.order = ChromaOrder::kVu;
  write_file(path("in_160x600.nv21"), encode(frame, "in.nv21"));
  struct {
    const char* arguments;
    int taps;
    std::vector<int> weights;
  } const kCases[] = {
      {"--threshold 4 --falloff 3", 11, {64, 61, 51, 39}},
      {"--taps 7 --threshold 2", 7, {64, 39}},
      {"--taps 19 --threshold 6 --weights weights.txt", 19, {60, 50, 40, 30, 9, 9}},
      {"--legacy", 11, {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.arguments);
    const std::string command = "chroma in_160x600.nv21 --force -o out_160x600.nv12 ";
    const Outcome outcome = run(command + c.arguments);
    ASSERT_EQ(outcome.status, kDone) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const Frame out = load_frame(path("out_160x600.nv12"), {});
    EXPECT_EQ(out.chroma, denoised_by_hand(frame, c.taps, c.weights).chroma);
    EXPECT_EQ(out.luma, frame.luma);
  }
#ifndef ZAVRI_WITHOUT_RACES
  const Outcome parallel = run("chroma in_160x600.nv21 --parallel --force -o out.png");
  EXPECT_EQ(parallel.status, kDone);
  EXPECT_NE(parallel.err.find("depend on timing"), std::string::npos);
#endif
  // The smallest plane, whose windows lead out of it.
  write_file(path("small.ppm"), encode(gradient(96, 142), "small.ppm"));
  EXPECT_EQ(run("chroma small.ppm -o small.png").status, kDone);
}

TEST_F(Zavri, MeasuresAreTheLibrarysAndTheSharpestIsMarked) {
  const Frame sharp = random_frame(64, 48, 7);
  write_file(path("sharp_64x48.nv12"), encode(sharp, "a.nv12"));
  write_file(path("flat_64x48.nv12"), encode(Frame(64, 48), "a.nv12"));
  const Outcome outcome = run("measure flat_64x48.nv12 sharp_64x48.nv12 --rect 5,6,20,13 --json");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  const auto rows = nlohmann::json::parse(outcome.out)["measures"];
  const T_OptRect rect{5, 6, 20, 13};
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  const uint8_t* const luma = sharp.luma.data();
  const uint32_t bright = zavri_auto_shoot_opt_get_bright(luma, &rect, 64, 48);
  EXPECT_EQ(rows[1]["focus"], zavri_auto_shoot_opt_get_FV_value(luma, &rect, 64, 48));
  EXPECT_EQ(rows[1]["derivation"], zavri_auto_shoot_opt_get_FV_value_derivation(luma, 64, 48));
  EXPECT_EQ(rows[1]["average"], zavri_auto_shoot_opt_get_FV_value_average(luma, 64, 48));
  EXPECT_EQ(rows[1]["brightness"], bright);
  EXPECT_NEAR(rows[1]["mean"], bright / (20.0 * 12), 0.006);
  EXPECT_TRUE(rows[1]["sharpest"]);
  EXPECT_FALSE(rows[0]["sharpest"]);
  EXPECT_EQ(run("measure flat_64x48.nv12 --csv").out,
            "file,rect,focus,derivation,average,brightness,mean\n"
            "flat_64x48.nv12,\"0,0,63,47\",0,0,0,0,0.0\n");
  const std::string table = run("measure flat_64x48.nv12 sharp_64x48.nv12 --csv").out;
  EXPECT_NE(table.find(",mean,sharpest\n"), std::string::npos) << table;
  EXPECT_EQ(table.substr(table.size() - 3), ",*\n");
}

TEST_F(Zavri, ReplayIsTheLibrarysLoadAndTheCommandsInTurn) {
  std::string dumps;
  for (const std::string name : {"a", "b"}) {
    Bytes bytes = encode(random_frame(96, 160, name[0]), "a.nv12");
    write_file(path(name + "_96x160.nv12"), bytes);
    run("chroma " + name + "_96x160.nv12 --threshold 99 -o " + name + "_calm_96x160.nv12");
    bytes.insert(bytes.begin() + 96 * 160, 4, 1);
    bytes.insert(bytes.begin(), 16, 2);
    write_file(path("zvc_1700000000_96x160_" + name + "_suffix.yuv"), bytes);
    dumps += " zvc_1700000000_96x160_" + name + "_suffix.yuv";
  }
  run("compose a_calm_96x160.nv12 b_calm_96x160.nv12 --padding 8 -o both.yuv");
  const Outcome outcome = run("replay" + dumps + " --meta 16,4 --then chroma:11,99 " +
                              "--then compose:8 -o replayed.yuv");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  EXPECT_EQ(read_file(path("replayed.yuv")), read_file(path("both.yuv")));

  fs::rename(path("a_96x160.nv12"), path("0.yuv"));
  const Frame padded = load_frame(path("0.yuv"), {"90x156", "", 96, 160});
  run("replay 0.yuv --size 90x156 --stride 96 --scanlines 160 -o fixed.yuv");
  EXPECT_EQ(read_file(path("fixed.yuv")), encode(padded, "a.yuv"));
}

TEST_F(Zavri, ReadsAndWritesStreams) {
  make_burst_files(64, 48);
  ASSERT_EQ(run("view clean_64x48.nv12 -o - >clean.y4m").status, kDone);
  ASSERT_EQ(run("view - -o again_64x48.nv12 <clean.y4m").status, kDone);
  EXPECT_EQ(read_file(path("again_64x48.nv12")), read_file(path("clean_64x48.nv12")));
}

TEST_F(Zavri, DemoWritesPicturesAndNumbersOfAnyPhotograph) {
  write_file(path("photo.png"), encode(gradient(1801, 1203), "photo.png"));
  const Outcome outcome = run("demo photo.png -o results --json");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  const auto report = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(report["size"], "1800x1202");
  // Two megapixels: 15 % of the thresholds asked for.
  EXPECT_EQ(report["thresh"], 4);
  EXPECT_EQ(report["threshY"], 6);
  for (const auto& plane : report["denoise"]) {
    EXPECT_GT(plane["PSNR after"], plane["PSNR before"]) << plane;
    EXPECT_GT(plane["SSIM after"], plane["SSIM before"]) << plane;
  }
  const Frame before = load_frame(path("results/frame0_1800x1202.nv12"), {});
  EXPECT_EQ(load_picture(path("results/before.png")).rgb, to_picture(before).rgb);
  EXPECT_EQ(load_picture(path("results/crop.png")).height, 2 * 640);
  EXPECT_EQ(load_picture(path("results/chroma.png")).width, 1800);
  EXPECT_EQ(load_picture(path("results/resize.png")).width, 2 * 1800);
  EXPECT_EQ(load_picture(path("results/rnr.png")).width, 1800);
  EXPECT_EQ(load_picture(path("results/compose.png")).height, 1200);
  EXPECT_EQ(run("info results/after.png").status, kDone);

  // Of small ones, the operations that they are large enough for.
  for (const auto& [width, height] : {std::pair{32, 10}, {40, 200}}) {
    write_file(path("small.png"), encode(gradient(width, height), "small.png"));
    const Outcome small = run("demo small.png -o results" + std::to_string(height));
    EXPECT_EQ(small.status, kDone) << small.err;
    EXPECT_NE(small.out.find("rnr.png"), std::string::npos) << small.out;
  }
}

}  // namespace
}  // namespace zavri::tools
