// These tests show what the program refuses, and how it says so.
#include <algorithm>
#include <fstream>

#include "tests/support/program.h"
#include "tools/error.h"
#include "tools/images/files.h"

namespace zavri::tools {
namespace {

TEST_F(Zavri, BadInputIsOneLineStatusTwoAndNoFile) {
  make_burst_files(64, 48);
  save(gradient(96, 160), path("large.png"));
  write_file(path("long_8192x2.nv12"), Bytes(8192 * 3));
  std::ofstream(path("few.txt")) << "64 20 -5";
  std::ofstream(path("much.txt")) << "64 20 99999999999";
  std::ofstream(path("rest.txt")) << "64 20 -";
  write_file(path("wide_2x2.nv12"), Bytes(40000 * 3));
  std::filesystem::create_directory(path("twice"));
  for (const char* name : {"twice/a_2x2.nv12", "twice/a_4x2.nv12"}) {
    write_file(path(name), Bytes(6));
  }
  const std::vector<std::string> before = files();
  const std::string two = " frame0_64x48.nv12 frame1_64x48.nv12 -o out.png";
  struct {
    std::string arguments;
    const char* part;
  } const kCases[] = {
      {"", "a command is needed: burst"},
      {"--json", "--json: no such option; a command comes first"},
      {"sharpen a b", "sharpen: no such command"},
      {"view photo.png -o out.png --sharp", "--sharp: not expected here"},
      {"view photo.png", "-o"},
      {"view photo.png -o", "-o: takes one value"},
      {"view photo.png -o out.png --frame 0:1", "--frame 0:1: takes N"},
      {"view photo.png -o out.png --frames 1:0", "--frames 1:0: takes A:B"},
      {"view photo.png -o out.png --frame 0 --frames 0:1", "--frames: is given once, or --frame"},
      {"view photo.png -o photo.png", "--force"},
      {"view photo.png -o none/out.png", "none"},
      {"view photo.png -o out.png --size 64x48", "--size"},
      {"denoise frame0_64x48.nv12 -o out.png", "--smooth: is needed for a single frame"},
      {"denoise --ref 2" + two, "--ref 2: below the number of frames, 2"},
      {"denoise --thresh 101" + two, "--thresh 101: takes 1..100 or auto"},
      {"denoise --thresh 0x20" + two, "--thresh 0x20"},
      {"denoise --thresh ''" + two, "--thresh"},
      {"denoise --gain 010" + two, "--gain 010: takes 0..255"},
      {"denoise --gain -1" + two, "--gain"},
      {"denoise --mode best" + two, "--mode best: takes whole, edges, edges-luma, chroma"},
      {"denoise missing.png" + two, "missing.png"},
      {"denoise large.png" + two, "frames of 96x160 and 64x48"},
      {"denoise frame0_64x48.nv12 frame1_64x48.nv12 frame2_64x48.nv12" + two,
       "5 frames, where 1 to 4 are taken"},
      {"denoise wide_2x2.nv12 --stride 40000 --smooth -o out.png",
       "--stride 40000: chroma is smoothed with at most 32767"},
      {"denoise wide_2x2.nv12 wide_2x2.nv12 --stride 40000 --mode edges --gain 9 -o out.png",
       "--stride 40000: edges are merged with at most 32767"},
      {"chroma photo.png --taps 9 -o out.png", "--taps 9: takes 7, 11, 15, 19"},
      {"chroma photo.png -o out.png", "--taps 11: 64x48 is too small, they take 96x154"},
      {"chroma" + two, "2 frames, where 1 is taken"},
      {"chroma large.png --threshold 4 --weights few.txt -o out.png", "--threshold 4"},
      {"chroma large.png --threshold 3 --weights few.txt -o out.png", "outweigh the centre"},
      {"chroma large.png --weights much.txt -o out.png", "much.txt: 99999999999: weights are"},
      {"chroma large.png --weights rest.txt -o out.png", "rest.txt: -: weights are whole"},
      {"chroma large.png --falloff nan -o out.png", "--falloff nan: takes 0.1..1000 or auto"},
      {"chroma large.png --threshold 3 --weights few.txt --falloff 3 -o out.png", "--falloff"},
      {"chroma large.png --legacy --taps 7 -o out.png", "--legacy: has 11 taps"},
      {"resize photo.png --to 63x48 -o out.png", "--to 63x48"},
      {"resize photo.png -o out.png", "--to: is needed"},
      {"rnr long_8192x2.nv12 --radius 256 -o out.png", "--radius 256: at 8192x2 at most 255"},
      {"rnr long_8192x2.nv12 --strength 100 -o out.png", "--radius 100 at most 99"},
      {"compose --padding 65" + two, "--padding 65"},
      {"compare photo.png frame0_64x48.nv12 --min-psnr nan", "--min-psnr nan"},
      {"compare photo.png large.png", "large.png: 96x160 cannot be compared with 64x48"},
      {"compare photo.png frame0_64x48.nv12 --mask photo.png", "--mask: needs --reference"},
      {"compare photo.png photo.png --reference photo.png --mask large.png",
       "large.png: a mask has the frames' size, 64x48"},
      {"compare photo.png photo.png --rect 0,0,31,48", "--rect 0,0,31,48: takes four even"},
      {"compare photo.png photo.png --without-last photo.png", "leaving a frame out needs three"},
      {"compare twice twice", "twice: two files are called a"},
      {"compare . photo.png", "IN: two folders are compared, or two frames"},
      {"noise photo.png", "too few flat or still parts"},
      {"burst photo.png -o new --profile few.txt", "few.txt: a noise profile is JSON"},
      {"burst photo.png -o new --object-speed 4", "--object-speed: needs --object"},
      {"measure photo.png --rect 1,2,63,45", "photo.png: --rect 1,2,63,45: a column"},
      {"measure photo.png --rect 1,2,62,46", "62x45 of 64x48 would fit"},
      {"measure photo.png --rect 63,0,1,2", "within 0,0 and 62,45"},
      {"measure photo.png --rect 0,0,9", "--rect 0,0,9: takes x,y,width,height"},
      {"measure photo.png --csv --json", "--csv"},
      {"replay --then rotate" + two, "the steps are denoise[:THRESH,THRESH-LUMA"},
      {"replay --then smooth:50 --then chroma:9" + two, "--then chroma:9: taps 9: takes 7, 11"},
      {"replay --then chroma:threshold=0" + two, "--then chroma:threshold=0: threshold 0: takes"},
      {"replay --then chroma:size=3" + two, "size: no setting of chroma"},
      {"replay --then rnr:1,2,3" + two, "too much for rnr[:RADIUS,STRENGTH]"},
      {"replay --then compose --then chroma" + two, "--then chroma: taps 11: 64x48 is too small"},
      {"replay" + two, "IN: 2 dumps"},
      {"replay --meta 8" + two, "64x48 nv12 is 4608 bytes"},
      {"burst photo.png -o .", "--force"},
      {"info --json > /dev/full", "stdout: cannot be written: No space left on device"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.arguments);
    std::ofstream(path("stdout.txt")).flush();
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, kBadInput);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_NE(outcome.err.find(c.part), std::string::npos) << outcome.err;
    EXPECT_EQ(files(), before);
  }
}

TEST_F(Zavri, WhatTheLibraryCannotDoIsStatusThree) {
  save(random_frame(64, 48, 3), path("in_64x48.nv12"));
  save(random_frame(64, 4, 3), path("flat_64x4.nv12"));
  save(random_frame(64, 12, 3), path("flat_64x12.nv12"));
  for (const char* arguments :
       {"in_64x48.nv12 --to 62x48", "in_64x48.nv12 --to 64x46", "flat_64x4.nv12 --to 64x8",
        "flat_64x4.nv12 --to 64x4", "flat_64x12.nv12 --to 64x24"}) {
    const Outcome outcome = run(std::string("resize ") + arguments + " -o out.png");
    EXPECT_EQ(outcome.status, kRefused) << arguments;
    EXPECT_NE(outcome.err.find("library"), std::string::npos) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(path("out.png")));
  }
}

// Sanitizers need more address space than the limit leaves; nothing is tried there.
TEST_F(Zavri, LimitsOfTheSystemAreToldLikeBadInput) {
  save(gradient(640, 480), path("photo.png"));
  std::ofstream(path("vast.nv12")).flush();
  std::filesystem::resize_file(path("vast.nv12"), 1536000000);
  const std::vector<std::string> before = files();
  const auto limited = [&](const std::string& limit, const std::string& arguments) {
    return run_command("ulimit " + limit + "; " ZAVRI_COMMAND " " + arguments);
  };
  const Outcome file = limited("-f 64", "view photo.png -o out.nv12");
  EXPECT_EQ(file.status, kBadInput);
  EXPECT_EQ(file.err, "zavri: out.nv12: cannot be written: File too large\n");
  if (limited("-v 800000", "--version").status == kDone) {
    const Outcome memory = limited("-v 800000", "view vast.nv12 --size 32000x32000 -o out.png");
    EXPECT_EQ(memory.status, kBadInput);
    EXPECT_NE(memory.err.find("vast.nv12: there is not enough memory"), std::string::npos)
        << memory.err;
  }
  EXPECT_EQ(files(), before);
}

}  // namespace
}  // namespace zavri::tools
