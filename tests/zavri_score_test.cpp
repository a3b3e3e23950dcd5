// Bursts that are wrong, their noise, and the score of what is made of them, as a user runs them.
#include <nlohmann/json.hpp>

#include "tests/support/pictures.h"
#include "tests/support/program.h"
#include "tools/error.h"
#include "tools/images/files.h"
#include "tools/sensor/noise_profile.h"

namespace zavri::tools {
namespace {

using Json = nlohmann::json;

class ZavriScore : public Zavri {
 protected:
  Json report(const std::string& arguments) {
    const Outcome outcome = run(arguments + " --json");
    EXPECT_EQ(outcome.status, kDone) << arguments << ": " << outcome.err;
    const Json report = Json::parse(outcome.out, nullptr, false);
    expect_plain(report);
    return report;
  }
};

TEST_F(ZavriScore, FitsAProfileThatMakesTheSameNoiseAgain) {
  save(half_textured(640, 480), path("photo.png"));
  write_file(path("profile.json"), [] {
    const std::string json = to_json({{{0.4, 6}, {0.1, 3}, {0.1, 3}}});
    return Bytes(json.begin(), json.end());
  }());
  report("burst photo.png --profile profile.json -o f");
  const Json fit = report("noise f/frame?_640x480.nv12 -o fit.json");
  ASSERT_EQ(fit["planes"].size(), 3u);
  EXPECT_EQ(fit["remarks"].dump().find("nothing is flat"), std::string::npos) << fit["remarks"];
  EXPECT_NEAR(fit["planes"][0]["variances"][1], 0.4 * 128 + 6, 3);
  const NoiseLine line = load_noise_profile(path("fit.json"))[1];
  EXPECT_NEAR(line.variance(128), 0.1 * 128 + 3, 0.8);
  report("burst photo.png --profile fit.json -o g");
}

// The later burst is of another size, format and kind.
TEST_F(ZavriScore, ABurstReplacesTheOneInItsFolderWithItsTruth) {
  save(gradient(96, 64), path("large.png"));
  save(gradient(64, 48), path("photo.png"));
  report("burst large.png --object -o .");
  const std::vector<std::string> names = files();
  EXPECT_EQ(std::count(names.begin(), names.end(), "mask_96x64.png"), 1);
  EXPECT_EQ(run("burst photo.png -o .").status, kBadInput);
  EXPECT_EQ(files(), names);
  report("burst photo.png --frames 2 --pix nv21 -o . --force");
  EXPECT_EQ(files(), (std::vector<std::string>{"clean_64x48.nv21", "frame0_64x48.nv21",
                                               "frame1_64x48.nv21", "large.png", "photo.png"}));
}

TEST_F(ZavriScore, ComparesByThreeNumbersOnFilesPartsAndFolders) {
  save(half_textured(640, 480), path("photo.png"));
  report("burst photo.png --object --frames 3 -o in");
  std::filesystem::create_directories(path("out"));
  // As a result that merged nothing.
  std::filesystem::copy(path("in/frame0_640x480.nv12"), path("out/frame0.nv12"));
  save(load_frame(path("in/clean_640x480.nv12"), {}), path("out/frame1_640x480.nv21"));
  const std::string truth =
      " --reference in/clean_640x480.nv12 --mask in/mask_640x480.png --size 640x480";

  const Json same = report("compare in/frame0_640x480.nv12 out/frame0.nv12" + truth)["score"];
  ASSERT_EQ(same.size(), 2u);
  EXPECT_EQ(same[0]["noise_removed"], 0);
  EXPECT_EQ(same[0]["texture_psnr"], same[0]["texture_psnr_before"]);
  EXPECT_LT(same[0]["ghost_error"], 3);
  const Json part = report("compare in/frame0_640x480.nv12 out/frame1_640x480.nv21" + truth +
                           " --rect 0,0,64,64");
  EXPECT_EQ(part["size"], "64x64");
  EXPECT_EQ(part["score"][0]["noise_removed"], "inf");
  EXPECT_EQ(part["score"][0]["ghost_error"], "none");  // nothing moves there

  const Json pairs = report("compare in out" + truth)["pairs"];
  ASSERT_EQ(pairs.size(), 2u);
  EXPECT_EQ(pairs[0]["name"], "frame0");
  EXPECT_EQ(pairs[0]["luma_noise_removed"], 0);
  EXPECT_EQ(pairs[1]["psnr_y"], "inf");
  EXPECT_EQ(run("compare in out" + truth + " --min-ssim 0.99").status, kBelowLimit);

  const Json left_out = report(
      "compare in/frame?_640x480.nv12 --without-last out/frame0.nv12 "
      "--size 640x480");
  EXPECT_EQ(left_out["score"][0]["noise_removed"], 0);
  EXPECT_EQ(left_out["score"][0]["ghost_error"], 0);
}

}  // namespace
}  // namespace zavri::tools
