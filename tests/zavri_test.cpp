// These tests run the commands as a user does.
#include <zavricustpro.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/program.h"
#include "tools/error.h"
#include "tools/images/files.h"

namespace zavri::tools {
namespace {

using Json = nlohmann::json;

TEST_F(Zavri, ComparesAndSaysByItsStatusWhatIsBelowTheLimit) {
  make_burst_files(64, 48);
  const std::string same = "compare clean_64x48.nv12 clean_64x48.nv12 --min-psnr 99 --json";
  const Outcome equal = run(same);
  EXPECT_EQ(equal.status, kDone);
  const Json report = Json::parse(equal.out);
  expect_plain(report);
  EXPECT_EQ(report["planes"][2]["psnr"], "inf");
  const Outcome noisy =
      run("compare clean_64x48.nv12 frame0_64x48.nv12 --min-psnr 99 --diff d_64x48.nv12");
  EXPECT_EQ(noisy.status, kBelowLimit);
  // Mid-grey, and eight times the difference.
  const Bytes a = read_file(path("clean_64x48.nv12"));
  const Bytes b = read_file(path("frame0_64x48.nv12"));
  const Bytes difference = read_file(path("d_64x48.nv12"));
  ASSERT_EQ(difference.size(), a.size());
  for (size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(difference[i], std::clamp(128 + 8 * (a[i] - b[i]), 0, 255)) << i;
  }
}

TEST_F(Zavri, ShowsTheLibrarysLinesAndRemarksOnIdleThresholds) {
  make_burst_files(64, 48);
  const std::string denoise =
      "denoise frame0_64x48.nv12 frame1_64x48.nv12 --thresh 50 --force -o out.y4m ";
  EXPECT_NE(run(denoise).err.find("below 2 megapixels"), std::string::npos);
  const Outcome json = run(denoise + "--json");
  EXPECT_EQ(json.err, "");
  EXPECT_NE(Json::parse(json.out)["remarks"].dump().find("below 2 megapixels"), std::string::npos);
  expect_plain(Json::parse(json.out));
  const Outcome edges = run(denoise + "--mode edges --gain 16");
  EXPECT_NE(edges.err.find("below 2 megapixels"), std::string::npos);
  const Outcome verbose = run(denoise + "--verbose --quiet");
  EXPECT_EQ(verbose.out, "");
  EXPECT_NE(verbose.err.find("E/ZVC: zavri-mp 3dyuv begin\n"), std::string::npos) << verbose.err;
  EXPECT_NE(verbose.err.find("height:48, width:64, gain:16, thresh:0, threshY:0, num:2\n"),
            std::string::npos)
      << verbose.err;
  EXPECT_NE(verbose.err.find("V/Defog: 4 threads created by the thread pool\n"), std::string::npos);
  EXPECT_EQ(run(denoise + "--quiet").err, "");
}

// Where nothing else is said, weights fall as a Gaussian of half the threshold.
TEST_F(Zavri, ChromaWeightsFallAsTheyAreTold) {
  std::ofstream(path("wide.txt")) << "64 61 51 39";
  std::ofstream(path("narrow.txt")) << "64 39";
  // The windows lead out of the smallest plane.
  Frame frame = random_frame(96, 142, 6);
  for (uint8_t& byte : frame.buffer()) byte = static_cast<uint8_t>(100 + byte % 8);
  save(frame, path("in_96x142.nv12"));
  const auto filtered = [&](const std::string& arguments) {
    const Outcome outcome = run("chroma in_96x142.nv12 --force -o out.nv12 " + arguments);
    EXPECT_EQ(outcome.status, kDone) << outcome.err;
    return text_of("out.nv12");
  };
  const std::string wide = filtered("--threshold 4 --weights wide.txt");
  const std::string narrow = filtered("--threshold 2 --weights narrow.txt");
  EXPECT_TRUE(filtered("--threshold 4 --falloff 3") == wide);
  EXPECT_TRUE(filtered("--threshold 2") == narrow);
  EXPECT_FALSE(wide == narrow);
  // What is even stays so: around a picture its border is repeated.
  std::fill(frame.buffer().begin(), frame.buffer().end(), uint8_t{3});
  save(frame, path("even.y4m"));
  EXPECT_EQ(run("chroma even.y4m -o after.y4m").status, kDone);
  EXPECT_TRUE(text_of("after.y4m") == text_of("even.y4m"));
#ifndef ZAVRI_WITHOUT_RACES
  const Outcome parallel = run("chroma in_96x142.nv12 --parallel --force -o out.png");
  EXPECT_EQ(parallel.status, kDone);
  EXPECT_NE(parallel.err.find("depend on timing"), std::string::npos);
#endif
}

// NV21 frames meet NV12 ones.
TEST_F(Zavri, FramesOfBothOrdersAreOperatedOnTogether) {
  const Frame a = random_frame(64, 48, 4);
  const Frame b = random_frame(64, 48, 5);
  save(a, path("a_64x48.nv12"));
  save(b, path("b_64x48.nv12"));
  save(b, path("b_64x48.nv21"));
  run("compose a_64x48.nv12 b_64x48.nv12 --padding 8 -o same.yuv");
  const Outcome outcome = run("compose a_64x48.nv12 b_64x48.nv21 --padding 8 -o mixed.yuv");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  EXPECT_TRUE(text_of("mixed.yuv") == text_of("same.yuv"));
  const Outcome inexact = run("compose a_64x48.nv12 b_64x48.nv21 --padding 9 --force -o out.png");
  EXPECT_NE(inexact.err.find("padding, 55, is no multiple of 4\n"), std::string::npos)
      << inexact.err;
  EXPECT_NE(run("resize a_64x48.nv12 --to 98x66 -o out.yuv").err.find("rows shift"),
            std::string::npos);
}

TEST_F(Zavri, MeasuresAreTheLibrarysAndTheSharpestIsMarked) {
  const Frame sharp = random_frame(64, 48, 7);
  save(sharp, path("sharp_64x48.nv12"));
  save(Frame(64, 48), path("flat_64x48.nv12"));
  const Outcome outcome = run("measure flat_64x48.nv12 sharp_64x48.nv12 --rect 5,6,20,13 --json");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  const Json rows = Json::parse(outcome.out)["measures"];
  const T_OptRect rect{5, 6, 20, 13};
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  const uint8_t* const luma = sharp.luma_row(0);
  const uint32_t bright = zavri_auto_shoot_opt_get_bright(luma, &rect, 64, 48);
  EXPECT_EQ(rows[1]["rect"], Json({5, 6, 20, 13}));
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
  // This is the same picture with padding.
  const Json padded = Json::parse(
      run("measure sharp_64x48.nv12 --size 60x48 --stride 64 --rect 5,6,20,13 --json").out);
  EXPECT_EQ(padded["measures"][0]["focus"], rows[1]["focus"]);
}

TEST_F(Zavri, StreamsGoThroughPipesAndTellOfTheirFrames) {
  make_burst_files(64, 48);
  ASSERT_EQ(run("view clean_64x48.nv12 -o - >clean.y4m").status, kDone);
  ASSERT_EQ(run("view - -o again_64x48.nv12 <clean.y4m >none").status, kDone);
  EXPECT_EQ(text_of("again_64x48.nv12"), text_of("clean_64x48.nv12"));
  std::ofstream(path("two.y4m"), std::ios::binary)
      << text_of("clean.y4m") << text_of("clean.y4m").substr(text_of("clean.y4m").find("FRAME"));
  const Outcome unnamed = run("view two.y4m -o out.png");
  EXPECT_EQ(unnamed.status, kBadInput);
  EXPECT_NE(unnamed.err.find("two.y4m: there are 2 frames"), std::string::npos) << unnamed.err;
  EXPECT_EQ(run("view two.y4m --frame 1 -o out.png").status, kDone);
  EXPECT_EQ(run("denoise two.y4m --quiet --frames 0:1 -o both.png").status, kDone);
}

TEST_F(Zavri, DemoWritesPicturesAndNumbersOfAnyPhotograph) {
  save(gradient(1801, 1203), path("photo.png"));
  const Outcome outcome = run("demo photo.png -o results --json");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  const Json report = Json::parse(outcome.out);
  expect_plain(report);
  EXPECT_EQ(report["size"], "1800x1200");
  // At two megapixels the thresholds are 15 % of those asked for.
  EXPECT_EQ(report["thresh"], 4);
  EXPECT_EQ(report["thresh_luma"], 6);
  for (const auto& plane : report["denoise"]) {
    EXPECT_GT(plane["psnr_after"], plane["psnr_before"]) << plane;
    EXPECT_GT(plane["ssim_after"], plane["ssim_before"]) << plane;
  }
  const Frame before = load_frame(path("results/frame0_1800x1200.nv12"), {});
  EXPECT_EQ(load_picture(path("results/before.png")).rgb, to_picture(before).rgb);
  EXPECT_GT(report["score"][0]["noise_removed"], 1);
  // Tiles of before, after and clean under their labels, in pairs of two scales.
  EXPECT_EQ(load_picture(path("results/crop.png")).width, 3 * 540);
  EXPECT_EQ(load_picture(path("results/crop.png")).height % (2 * (28 + 396)), 0);
  EXPECT_EQ(load_picture(path("results/chroma.png")).width, 1800);
  EXPECT_EQ(load_picture(path("results/resize.png")).width, 2 * 1800);
  EXPECT_EQ(load_picture(path("results/rnr.png")).width, 1800);
  EXPECT_EQ(load_picture(path("results/compose.png")).height, 1200);
  EXPECT_EQ(run("info results/after.png").status, kDone);

  // Small photographs show the operations that they are large enough for.
  for (const auto& [width, height] : {std::pair{32, 10}, {40, 200}}) {
    save(gradient(width, height), path("small.png"));
    const Outcome small = run("demo small.png -o results" + std::to_string(height));
    EXPECT_EQ(small.status, kDone) << small.err;
    EXPECT_NE(small.out.find("rnr.png"), std::string::npos) << small.out;
  }
}

}  // namespace
}  // namespace zavri::tools
