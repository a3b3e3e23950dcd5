// Threshold tables, sweeps and tuning, as a user runs them.
#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/program.h"
#include "tools/error.h"
#include "tools/images/files.h"

namespace zavri::tools {
namespace {

using Json = nlohmann::json;

class Tuning : public Zavri {
 protected:
  void write(const std::string& name, const std::string& text) {
    std::ofstream(path(name)) << text;
  }

  Outcome done(const std::string& arguments) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, kDone) << arguments << ": " << outcome.err;
    return outcome;
  }
  Json json(const std::string& arguments) {
    const Json report = Json::parse(done(arguments + " --json").out, nullptr, false);
    expect_plain(report);
    return report;
  }
};

TEST_F(Tuning, TablesOfThresholdsAreTakenFromTextJsonAndC) {
  write("both.json", R"({"mode": "whole", "thresh_table": [[10, 0], [20, 30]],
                         "thresh_luma_table": [[10, 9], [20, 90]]})");
  write("list.json", "[[10, 0], [20, 30]]");
  write("both.c",
        "/* thresh_table[] of a phone; */\n"
        "static const T_GainThreshPoint thresh_table[] = {{10, 0}, {20, 30}};\n"
        "static const T_GainThreshPoint threshY_table[2] = {{10, 9},\n  {20, 90}};\n");
  write("other.c", "int thresh_table[] = {{10, 0}};\n");
  const std::string info = "info --thresholds --size 4000x3000 ";
  const Json in_text = json(info + "--thresh-table 10:0,20:30 --thresh-luma-table 10:9,20:90");
  EXPECT_EQ(in_text["chroma"].back()["used"], Json({24}));
  EXPECT_EQ(in_text["luma"].back()["used"], Json({74}));
  for (const std::string file : {"@both.json", "@both.c"}) {
    EXPECT_EQ(json(info + "--thresh-table " + file + " --thresh-luma-table " + file), in_text);
  }
  EXPECT_EQ(json(info + "--thresh-table @list.json"), json(info + "--thresh-table 10:0,20:30"));

  std::string long_table = "0:0";
  for (int gain = 1; gain < 256; ++gain) long_table += ',' + std::to_string(gain) + ":1";
  save(random_frame(64, 48, 1), path("a_64x48.nv12"));
  const std::string two = " a_64x48.nv12 a_64x48.nv12 -o b.png";
  struct {
    std::string arguments;
    const char* part;
  } const kCases[] = {
      {info + "--thresh-table 10:0,9:6", "10:0,9:6: gains ascend, but 9 stands behind 10; an exa"},
      {info + "--thresh-table 10:0,10:6", "10 stands behind 10"},
      {info + "--thresh-luma-table 10:256", "--thresh-luma-table 10:256: points are a gain and"},
      {info + "--thresh-table 10", "points are"},
      {info + "--thresh-table 10:0,", "points are"},
      {info + "--thresh-table 010:0", "points are"},
      {info + "--thresh-table " + long_table, "256 points, where at most 255"},
      {info + "--thresh-luma-table @none.c", "none.c"},
      {info + "--thresh-luma-table @other.c", "there is no thresh_luma_table in JSON"},
      {info + "--gain 9:8", "--gain 9:8: takes A or A:B"},
      {"info --thresh-table 10:0", "--thresholds: is needed"},
      {"info --size 64x48", "--size: goes with raw frames"},
      {"denoise --thresh 3 --thresh-table 10:0" + two, "--thresh-table: needs --thresh auto"},
      // The parts of a table in a step are no further values.
      {"replay --then denoise:auto,thresh-table=10:0,9:6,gain=3" + two, "9 stands behind 10"},
  };
  for (const auto& c : kCases) {
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, kBadInput) << c.arguments;
    EXPECT_NE(outcome.err.find(c.part), std::string::npos) << c.arguments << ": " << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  }
}

// What `info` tells without a frame is what a merge tells that it used, given or built in.
TEST_F(Tuning, UsedThresholdsAreThoseOfTheLibrary) {
  save(random_frame(1632, 1232, 1), path("a_1632x1232.nv12"));
  const std::string both = " a_1632x1232.nv12 a_1632x1232.nv12 -o out.nv12 --force ";
  const std::string info = "info --thresholds --size 1632x1232";
  for (const std::string table : {"", " --thresh-table 10:7,11:200,15:90,30:255"}) {
    const Json rows = json(info + " --gain 0:255" + table)["chroma"];
    for (const int gain : {5, 10, 11, 14, 15, 29, 30, 255}) {
      const auto row = std::find_if(rows.begin(), rows.end(), [=](const Json& r) {
        return r["gain"] <= gain && r["to"] >= gain;
      });
      ASSERT_NE(row, rows.end());
      const Json merged = json("denoise --gain " + std::to_string(gain) + table + both);
      EXPECT_EQ((*row)["used"][0], merged["thresh"]) << gain << table;
    }
  }
  const Json requests = json(info)["requests"];
  EXPECT_EQ(requests[0], Json({{"request", 1}, {"to", 6}, {"used", {0}}}));
  EXPECT_EQ(requests.back()["used"], Json({15}));
  const std::string replay = "replay --then denoise:thresh-table=10:0,20:90,gain=15" + both;
  const Outcome verbose = run(replay + "--verbose --quiet");
  EXPECT_NE(verbose.err.find("gain:15, thresh:6, "), std::string::npos) << verbose.err;
}

}  // namespace
}  // namespace zavri::tools
