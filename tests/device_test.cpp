// The program for the phone's shell: its probe of scalers that are known to differ, and its
// commands as a user runs them.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "device/conditions.h"
#include "device/probes.h"
#include "tests/support/altered_scaler.h"

namespace zavri::device {
namespace {

namespace fs = std::filesystem;
using namespace zavri::testing;

void expect_in(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), text.npos) << "no \"" << part << "\" in:\n" << text;
}

TEST(DeviceProbe, SeesWhatAnAlteredScalerDoes) {
  const Scaler portable = portable_scaler();
  const struct {
    Scaler scaler;
    std::vector<const char*> found;
  } kCases[] = {
      {{altered_scale<corners, triangle>, portable.scale_up_poly, altered_gaussian<reflected, 128>},
       {"corners aligned, i * from / to (of 24 to 60: 0.400 * i +0.000)", "taps            linear",
        "border 1        reflected, b a | a b c", "border 0        copied from the source",
        "rounded once, (sum + 128) >> 8", "source 0 wide   crashes with signal 6",
        "not those of this device: radial noise reduction (fcvFilterGaussian5x5u8), bilinear"}},
      {{altered_scale<ends, nearest>, altered_poly<centres, triangle>,
        altered_gaussian<reflected_inside, 0>},
       {"first and last samples aligned", "taps            nearest", "centres aligned",
        "taps            linear", "reflected without the edge, c b | a b c",
        "truncated once, sum >> 8", "poly resize (fcvScaleUpPolyu8)"}},
      {{portable.scale, altered_poly<centres, sharp_cubic>, altered_gaussian<black, 127>},
       {"cubic with a = -3/4", "black outside", "halves down", "bilinear",
        "not those of this device: radial noise reduction (fcvFilterGaussian5x5u8), poly"}},
      {{portable.scale, altered_poly<centres, spline>, portable.gaussian},
       {"cubic B-spline", "border 1        replicated", "border 0        not written",
        "not those of this device: poly resize (fcvScaleUpPolyu8)\n"}},
  };
  for (const auto& altered : kCases) {
    std::string report;
    probe(altered.scaler, [&](const std::string& line) { report += line; });
    for (const char* found : altered.found) expect_in(report, found);
  }
}

TEST(DeviceConditions, ReadWhatTheSystemShows) {
  const fs::path root = fs::temp_directory_path() / ("zavri_sys" + std::to_string(getpid()));
  const auto write = [&](const std::string& name, const std::string& text) {
    fs::create_directories((root / name).parent_path());
    std::ofstream(root / name) << text << '\n';
  };
  const std::string cpu = "devices/system/cpu/cpu";
  for (const auto& [number, most] : {std::pair{0, 1400000}, {1, 1400000}, {2, 1800000}}) {
    write(cpu + std::to_string(number) + "/cpufreq/cpuinfo_max_freq", std::to_string(most));
  }
  write(cpu + "1/cpufreq/scaling_cur_freq", "998400");
  write(cpu + "2/cpufreq/scaling_cur_freq", "1305600");
  write("class/thermal/thermal_zone0/type", "tsens \"0\"");
  write("class/thermal/thermal_zone0/temp", "41");
  write("class/thermal/thermal_zone1/type", "off");
  write("class/thermal/thermal_zone1/temp", "-273000");
  write("class/thermal/thermal_zone2/type", "xo_therm");
  write("class/thermal/thermal_zone2/temp", "38500");

  const Conditions conditions(root);
  EXPECT_EQ(conditions.fastest_first({0, 1, 2, 3}), (std::vector<int>{2, 0, 1, 3}));
  EXPECT_EQ(conditions.megahertz({0, 1, 2}), 1305);
  EXPECT_EQ(conditions.megahertz({1}), 998);
  EXPECT_EQ(conditions.megahertz({3}), 0);
  std::string zones;
  for (const auto& [zone, degrees] : conditions.temperatures()) {
    zones += zone + ' ' + std::to_string(degrees).substr(0, 4) + ' ';
  }
  EXPECT_EQ(zones, "tsens__0_ 41.0 xo_therm 38.5 ");
  fs::remove_all(root);

  ClockRange range;
  for (const int megahertz : {1400, 1390, 1400}) range.add(megahertz);
  EXPECT_FALSE(range.changed());
  range.add(1190);
  EXPECT_TRUE(range.changed());
  EXPECT_FALSE(ClockRange().changed());
}

struct Outcome {
  int status;
  std::string out;  // and what went to stderr
};

Outcome run(const std::string& arguments, const std::string& environment = "") {
  FILE* const pipe = popen(
      ("env " + environment + " " ZAVRI_DEVICE_COMMAND " " + arguments + " 2>&1").c_str(), "r");
  std::string out;
  for (int c = 0; (c = getc(pipe)) != EOF;) out += static_cast<char>(c);
  const int status = pclose(pipe);
  return {WEXITSTATUS(status), out};
}

TEST(DeviceProgram, VerifiesAndNamesTheCaseThatIsWrong) {
  const Outcome right = run("verify");
  EXPECT_EQ(right.status, 0);
  EXPECT_EQ(right.out,
            "auto_shoot      60 of  60\ncompose         40 of  40\ndenoise3d      120 of 120\n"
            "rnr             30 of  30\nuv_denoise      60 of  60\nuv_run_smooth   40 of  40\n"
            "all            350 of 350\n");
  // Another Gaussian is not the library's fault; another sum is.
  const Outcome wrong = run("verify", ZAVRI_ALTERED_ENVIRONMENT);
  EXPECT_EQ(wrong.status, 1);
  expect_in(wrong.out, "wrong: gave bright=7: auto_shoot image_width=100 ");
  expect_in(wrong.out, "\nrnr             30 of  30\n");
}

TEST(DeviceProgram, ProbesTheScalerThatIsLoaded) {
  expect_in(run("probe").out, "\npictures of a workstation: those of this device\n");
  const Outcome altered = run("probe", ZAVRI_ALTERED_ENVIRONMENT);
  EXPECT_EQ(altered.status, 0);
  expect_in(altered.out, "border 1        reflected, b a | a b c");
  expect_in(altered.out, "corners aligned");
  expect_in(altered.out,
            "not those of this device: radial noise reduction "
            "(fcvFilterGaussian5x5u8), bilinear resize (fcvScaleu8), poly resize");
}

// The form alone.
TEST(DeviceProgram, BenchPrintsATableOrJsonLines) {
  const std::string small = "bench --size 1920x1088 --seconds 0.1 --threads 1";
  const Outcome table = run(small);
  EXPECT_EQ(table.status, 0);
  expect_in(table.out, "milliseconds per megapixel of 1920x1088, ");
  const std::string json = run(small + " --json").out;
  std::istringstream lines(json);
  size_t count = 0;
  for (std::string line; std::getline(lines, line) && line.find("\"size\"") == line.npos; ++count) {
    char name[64];
    int threads = 0, runs = 0, end = 0;
    double milliseconds = 0, ratio = 0;
    sscanf(line.c_str(),
           "{\"operation\": \"%63[^\"]\", \"threads\": %d, \"ms_per_megapixel\": %lf, "
           "\"times_memcpy\": %lf, \"runs\": %d}%n",
           name, &threads, &milliseconds, &ratio, &runs, &end);
    ASSERT_EQ(static_cast<size_t>(end), line.size()) << line;
    EXPECT_EQ(threads, 1);
    EXPECT_GT(milliseconds, 0);
    EXPECT_GE(runs, 3);
    expect_in(table.out, std::string("\n") + name + ' ');
  }
  EXPECT_EQ(count, 20u);
  const std::string two = run("bench --size 1920x1088 --seconds 0.1 --threads 2 --json").out;
  EXPECT_EQ(two.find("\"compose\", \"threads\": 2"), two.npos);  // it runs on its caller's thread
  expect_in(json, "}\n{\"size\": \"1920x1088\", \"mhz_least\": ");
}

TEST(DeviceProgram, WrongArgumentsAreNamed) {
  const std::pair<const char*, const char*> kCases[] = {
      {"", "no command; there are bench, probe and verify"},
      {"test", "no command 'test'; there are bench, probe and verify"},
      {"verify --json", "verify takes no argument, not '--json'"},
      {"bench 3", "bench has no argument '3'; see --help"},
      {"bench --size", "--size: needs a value"},
      {"bench --size 1920x1081",
       "--size: '1920x1081' should be WxH, multiples of 8 from 480 to 6144, 2 megapixels or more"},
      {"bench --threads 5", "--threads: '5' should be a number from 1 to 4"},
      {"bench --threads 1.5", "--threads: '1.5' is no whole number"},
      {"bench --seconds 1s", "--seconds: '1s' should be a number from 0.1 to 3600"},
  };
  for (const auto& [arguments, message] : kCases) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.out, std::string("zavri-device: ") + message + '\n');
  }
  EXPECT_EQ(run("bench --help").status, 0);
}

}  // namespace
}  // namespace zavri::device
