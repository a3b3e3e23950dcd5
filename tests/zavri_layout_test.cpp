// The program against the example of a host, byte for byte.
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>

#include "tests/support/program.h"
#include "tools/error.h"

namespace zavri::tools {
namespace {

// At a height of 1500 the last strip's luma ends below the plane, and the drift of the edge
// sections takes 93 rows more: the scanlines have room for both. Above 2 megapixels thresholds are
// not scaled to 0.
constexpr int kStride = 2048;
constexpr int kScanlines = 1600;
constexpr char kLayout[] = " --size 2000x1500 --stride 2048 --scanlines 1600 ";

class Layouts : public Zavri {
 protected:
  // 0.yuv to 3.yuv, whose padding differs from frame to frame like the picture.
  void make_dumps() {
    for (unsigned k = 0; k < 4; ++k) {
      std::mt19937 random(k);
      std::string bytes(size_t{kStride} * kScanlines * 3 / 2, '\0');
      for (char& byte : bytes) byte = static_cast<char>(100 + random() % 40);
      std::ofstream(path(std::to_string(k) + ".yuv"), std::ios::binary) << bytes;
    }
  }

  std::string expected(const std::string& operation, const std::string& inputs) {
    const std::string command =
        ZAVRI_EXAMPLE_HOST " " + operation + " 2000 1500 2048 1600 " + "expected.yuv " + inputs;
    EXPECT_EQ(run_command(command).status, 0) << command;
    return text_of("expected.yuv");
  }
};

TEST_F(Layouts, EveryOperationGivesTheBytesThatACallerWithThatBufferGets) {
  make_dumps();
  std::ofstream weights(path("weights.txt"));
  for (int d = 0; d < 16; ++d) weights << 64 - 4 * d << '\n';
  weights.close();
  const std::string merge = "--thresh 60 --thresh-luma 90 --gain 10 --ref ";
  struct {
    std::string operation;
    std::string inputs;
    std::string command;
  } const kCases[] = {
      {"whole", "0.yuv 1.yuv 2.yuv", "denoise " + merge + "2"},
      {"edges", "0.yuv 1.yuv 2.yuv", "denoise --mode edges " + merge + "2"},
      {"edges-luma", "0.yuv 1.yuv", "denoise --mode edges-luma " + merge + "1"},
      {"edges", "0.yuv 1.yuv 2.yuv 3.yuv", "denoise --mode edges " + merge + "3"},
      {"chroma", "0.yuv 1.yuv 2.yuv 3.yuv", "denoise --mode chroma " + merge + "3"},
      {"smooth", "0.yuv 1.yuv", "denoise --smooth " + merge + "1"},
      {"smooth", "0.yuv", "denoise --smooth " + merge + "0"},
      {"7", "0.yuv", "chroma --weights weights.txt --taps 7"},
      {"11", "0.yuv", "chroma --weights weights.txt"},
      {"15", "0.yuv", "chroma --weights weights.txt --taps 15"},
      {"19", "0.yuv", "chroma --weights weights.txt --taps 19"},
      {"legacy", "0.yuv", "chroma --legacy"},
      {"rnr", "0.yuv", "rnr --radius 70 --strength 90"},
      {"poly", "0.yuv", "resize --to 2400x1600"},
      {"bilinear", "0.yuv", "resize --to 2400x1600 --mode bilinear"},
      {"left", "0.yuv 1.yuv", "compose --padding 32 --pad left"},
      {"right", "0.yuv 1.yuv", "compose --padding 32 --pad right"},
      {"center", "0.yuv 1.yuv", "compose --padding 32"},
      {"both", "0.yuv 1.yuv", "compose --padding 32 --pad both"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.command);
    const Outcome outcome = run(c.command + kLayout + "--force -o out.yuv " + c.inputs);
    ASSERT_EQ(outcome.status, kDone) << outcome.err;
    EXPECT_EQ(outcome.err.find("timing"), std::string::npos) << outcome.err;
    const std::string bytes = expected(c.operation, c.inputs);
    EXPECT_TRUE(text_of("out.yuv") == bytes);
    EXPECT_FALSE(text_of(c.inputs.substr(c.inputs.size() - 5)) == bytes);
  }
}

// Streams have no layout of a phone's: their planes are laid apart, so that the last strip's luma
// does not run into chroma. Raw frames without padding keep theirs, and the program says so.
TEST_F(Layouts, PlanesMeetOnlyInRawFrames) {
  make_dumps();
  const std::string layout = kLayout;
  std::string streams;
  std::string raw;
  for (const std::string name : {"0", "1", "2"}) {
    run("view" + layout + name + ".yuv -o " + name + ".y4m");
    run("view " + name + ".y4m -o " + name + "_2000x1500.nv12");
    streams += ' ' + name + ".y4m";
    raw += ' ' + name + "_2000x1500.nv12";
  }
  const std::string denoise = "denoise --thresh 60 --thresh-luma 90 --gain 10 --ref 2 --json";
  const Outcome apart = run(denoise + " -o out.y4m" + streams);
  ASSERT_EQ(apart.status, kDone) << apart.err;
  EXPECT_TRUE(nlohmann::json::parse(apart.out)["remarks"].empty()) << apart.out;
  expected("whole", "0.yuv 1.yuv 2.yuv");
  run("view" + layout + "expected.yuv -o expected.y4m");
  EXPECT_TRUE(text_of("out.y4m") == text_of("expected.y4m"));

  // The result is laid out as the frame is that it takes the place of.
  const Outcome mixed = run("denoise --thresh 60 --ref 1 0.y4m 1.yuv -o mixed.yuv" + layout);
  EXPECT_EQ(mixed.status, kDone) << mixed.err;
  EXPECT_EQ(text_of("mixed.yuv").size(), size_t{kStride} * kScanlines * 3 / 2);

#ifndef ZAVRI_WITHOUT_RACES
  const auto met = nlohmann::json::parse(run(denoise + " -o out.nv12" + raw).out);
  EXPECT_EQ(met["thresh"], 18);
  EXPECT_EQ(met["thresh_luma"], 27);
  ASSERT_EQ(met["remarks"].size(), 1u);
  EXPECT_NE(met["remarks"][0].get<std::string>().find("depends on timing"), std::string::npos);
#endif
}

// The metadata in front of luma and chroma is left out of the picture, not of the distance.
TEST_F(Layouts, ReplayIsTheLibrarysLoadAndTheOperationsInTurn) {
  make_dumps();
  std::string dumps;
  for (const std::string name : {"0", "1"}) {
    std::string bytes = text_of(name + ".yuv");
    bytes.insert(size_t{kStride} * kScanlines, 2 * kStride, 'm');
    bytes.insert(0, 16, 'm');
    dumps += " zvc_1700000000_2000x1500_" + name + "_suffix.yuv";
    std::ofstream(path(dumps.substr(dumps.rfind(' ') + 1)), std::ios::binary) << bytes;
    run("chroma --legacy" + std::string(kLayout) + name + ".yuv -o calm" + name + ".yuv");
  }
  run("compose --padding 8 calm0.yuv calm1.yuv -o expected.yuv" + std::string(kLayout));
  const Outcome outcome =
      run("replay" + dumps + kLayout + "--meta 16,4096 --then chroma:legacy=true " +
          "--then compose:8 -o out.yuv");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
  EXPECT_TRUE(text_of("out.yuv") == text_of("expected.yuv"));
  // A file of this name is a fixed dump.
  run("replay 0.yuv --then chroma:legacy=true --force -o out.yuv" + std::string(kLayout));
  EXPECT_TRUE(text_of("out.yuv") == text_of("calm0.yuv"));
}

// Every setting of a step is another one than the default, and none is like its neighbour.
TEST_F(Layouts, AChainIsItsOperationsWithTheSettingsInTheirPlaces) {
  make_dumps();
  const auto step = [&](const std::string& command) {
    const Outcome outcome = run(command + kLayout);
    EXPECT_EQ(outcome.status, kDone) << outcome.err;
    return outcome.err;
  };
  const std::string denoise = "denoise 0.yuv 1.yuv --thresh 60 --thresh-luma 90 --mode edges ";
  EXPECT_EQ(step(denoise + "--gain 15 --ref 1 -o denoised.yuv"), "");
  EXPECT_NE(step(denoise + "--gain 16 -o other.yuv").find("edges need a gain below 16"),
            std::string::npos);
  step("rnr denoised.yuv --radius 70 --strength 90 -o blurred.yuv");
  step("resize blurred.yuv --to 2400x1600 --mode bilinear -o expected.nv12");
  step(
      "replay 0.yuv 1.yuv --then denoise:60,90,edges,15,1 --then rnr:70,90 "
      "--then resize:2400x1600,bilinear -o out.nv12");
  EXPECT_TRUE(text_of("out.nv12") == text_of("expected.nv12"));
}

}  // namespace
}  // namespace zavri::tools
