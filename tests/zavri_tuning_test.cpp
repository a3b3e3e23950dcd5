// Threshold tables, sweeps and tuning, as a user runs them.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/program.h"
#include "tools/error.h"
#include "tools/images/files.h"

namespace zavri::tools {
namespace {

using Json = nlohmann::json;

// Two megapixels, the smallest frame with thresholds above 0. Waves that become finer to the right,
// and in colour: texture of which a burst can lose something.
Picture waves() {
  Picture picture(1632, 1232);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      uint8_t* const rgb = &picture.rgb[3 * (static_cast<size_t>(y) * picture.width + x)];
      const double fine = 20 * std::sin(x * x / 3000.0) * std::sin(y / 4.0);
      rgb[0] = static_cast<uint8_t>(120 + 60.0 * x / picture.width + fine);
      rgb[1] = static_cast<uint8_t>(110 + 50.0 * y / picture.height + fine);
      rgb[2] = static_cast<uint8_t>(130 + 40 * std::sin(x / 90.0) + fine);
    }
  }
  return picture;
}

// Rows without what differs from run to run.
std::vector<Json> rows_in(const std::string& json_lines) {
  std::vector<Json> rows;
  for (size_t begin = 0, end; (end = json_lines.find('\n', begin)) != std::string::npos;
       begin = end + 1) {
    rows.push_back(Json::parse(json_lines.substr(begin, end - begin)));
    EXPECT_EQ(rows.back().erase("milliseconds"), 1U);
  }
  return rows;
}

class Tuning : public Zavri {
 protected:
  // The frames as a phone's dumps of this layout.
  void make_padded_dumps() {
    constexpr size_t kPhoneStride = 1664;
    constexpr size_t kPhoneScanlines = 1248;
    std::filesystem::create_directory(path("dumps"));
    for (int k = 0; k < 4; ++k) {
      const std::string name = std::to_string(k);
      const Frame frame = load_frame(path("moving/frame" + name + "_1632x1232.nv12"), {});
      Frame padded(
          1632, 1232, ChromaOrder::kUv,
          {kPhoneStride, kPhoneStride * kPhoneScanlines, kPhoneStride * kPhoneScanlines * 3 / 2});
      for (int y = 0; y < 1232; ++y) std::copy_n(frame.luma_row(y), 1632, padded.luma_row(y));
      for (int y = 0; y < 616; ++y) std::copy_n(frame.chroma_row(y), 1632, padded.chroma_row(y));
      save(padded, path("dumps/" + name + ".yuv"));
    }
  }

  void make_moving_burst() {
    save(waves(), path("waves.png"));
    done("burst waves.png --sensor-gain 16 --shake 0.5 --object -o moving");
  }

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

TEST_F(Tuning, SweepsGoOnAndSpreadOverProcesses) {
  make_moving_burst();
  const std::string sweep =
      "sweep denoise moving/frame* --reference moving/clean* --mask moving/mask* "
      "--mode whole,chroma --thresh-luma auto --thresh ";
  const std::string all = "20:60:20,21";  // 20 and 21 are used as the same
  const Outcome whole = done(sweep + all + " -o rows.jsonl");
  EXPECT_EQ(whole.err, "zavri: 2 combinations do the same as others and were left out\n");
  const std::vector<Json> rows = rows_in(text_of("rows.jsonl"));
  ASSERT_EQ(rows.size(), 6U);
  EXPECT_EQ(rows[5]["used_thresh"], 9);
  EXPECT_GT(rows[4]["chroma_noise_removed"], rows[0]["chroma_noise_removed"]);
  EXPECT_EQ(rows[1]["luma_noise_removed"], 0);  // chroma alone was merged
  EXPECT_GT(rows[4]["luma_ghost_error"], rows[1]["luma_ghost_error"]);

  // A file that ends within a line.
  const std::string text = text_of("rows.jsonl");
  const size_t third = text.find('\n', text.find('\n') + 1) + 1;
  write("part.jsonl", text.substr(0, third + 20));
  done(sweep + all + " -o part.jsonl");
  EXPECT_EQ(rows_in(text_of("part.jsonl")), rows);
  EXPECT_EQ(text_of("part.jsonl").substr(0, third), text.substr(0, third));

  // CSV goes on as well, at a terminal with the time that is left.
  done(sweep + "20,60 -o rows.csv");
  const Outcome terminal =
      run_command("script -qec \"" ZAVRI_COMMAND " " + sweep + all + " -o rows.csv\" typescript");
  EXPECT_NE(terminal.out.find("sweep: 2 of 2, 0 s left"), std::string::npos) << terminal.out;
  std::filesystem::remove(path("typescript"));
  const std::string csv = text_of("rows.csv");
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 7);
  EXPECT_EQ(csv.rfind("burst,thresh,thresh_luma,mode,luma_noise_removed,", 0), 0U) << csv;
  for (const char* other : {"20:40:20 -o rows.csv", "20:60:20,21 --gain 9 -o rows.csv"}) {
    const Outcome refused = run(sweep + other);
    EXPECT_EQ(refused.status, kBadInput);
    EXPECT_NE(refused.err.find("-o rows.csv: has rows of another sweep"), std::string::npos);
  }
  EXPECT_EQ(text_of("rows.csv"), csv);

  // A line for each point, as the documents run them.
  done(sweep + all + " --plan >plan.txt");
  const Outcome ran = run_command("PATH=$(dirname " ZAVRI_COMMAND
                                  "):$PATH parallel --jobs 2 <plan.txt >points.jsonl");
  EXPECT_EQ(ran.status, 0) << ran.err;
  done(sweep + all + " --collect points.jsonl -o collected.jsonl");
  EXPECT_EQ(rows_in(text_of("collected.jsonl")), rows);
  write("points.jsonl", text.substr(0, third));
  const Outcome missing = run(sweep + all + " --collect points.jsonl");
  EXPECT_EQ(missing.status, kBadInput);
  EXPECT_NE(missing.err.find("4 of 6 rows are missing; the first is of zavri sweep"),
            std::string::npos)
      << missing.err;
}

TEST_F(Tuning, FindsThresholdsThatLeaveNoGhostsAndSaysWhenNothingTells) {
  make_moving_burst();
  const Json tuned = json("tune denoise 16=moving -o tables.json --report page.html");
  EXPECT_EQ(tuned["advice"], "merge chroma alone");
  const std::vector<Json> by_gain = tuned["by_gain"];
  ASSERT_EQ(by_gain.size(), 3U);
  EXPECT_GT(by_gain[2]["worth"], by_gain[1]["worth"]);
  const auto ghosts = [](const Json& row) {
    return row["luma_ghost_error"].get<double>() + row["chroma_ghost_error"].get<double>();
  };
  EXPECT_LE(ghosts(by_gain[2]), ghosts(by_gain[1]));
  EXPECT_NE(text_of("page.html").find("Tuning of the multi-frame denoise"), std::string::npos);

  // What was found is what the next denoise does, and what the score was of.
  const std::string settings = " --gain 16 --mode chroma --thresh-table @tables.json";
  const Json merged = json("denoise moving/frame* -o out.y4m" + settings);
  const Json row =
      json("sweep denoise moving/frame* --reference moving/clean* --mask moving/mask*" +
           settings)["points"][0];
  EXPECT_EQ(row["used_thresh"], merged["thresh"]);
  EXPECT_EQ(row["chroma_noise_removed"], by_gain[2]["chroma_noise_removed"]);

  done("burst waves.png --sensor-gain 16 -o still");
  done("burst waves.png --sensor-gain 16 -o phone");
  std::filesystem::remove(path("phone/clean_1632x1232.nv12"));
  for (const char* burst : {"16=still", "16=phone"}) {
    const Json still = json(std::string("tune denoise ") + burst);
    EXPECT_NE(still["advice"].get<std::string>().find("static bursts do not tell"),
              std::string::npos)
        << burst;
    EXPECT_FALSE(still.contains("thresh_table"));
  }
}

#ifdef ZAVRI_COMPILE_HOST
TEST_F(Tuning, TablesOfPaddedDumpsCompileAndGiveTheProgramsBytes) {
  make_moving_burst();
  make_padded_dumps();
  const std::string layout = " --size 1632x1232 --stride 1664 --scanlines 1248 ";
  const Json tuned = json("tune denoise 16=dumps -o tables.h" + layout);
  ASSERT_EQ(tuned["mode"], "chroma") << tuned["advice"];
  EXPECT_EQ(text_of("tables.h"), tuned["c"]);
  done("denoise dumps/0.yuv dumps/1.yuv dumps/2.yuv dumps/3.yuv --gain 16 --mode chroma" + layout +
       "--thresh-table @tables.h -o out.yuv");
  const Outcome called = run_command(
      ZAVRI_COMPILE_HOST
      " '-DZAVRI_TABLES=\"tables.h\"' && ./tuned_host chroma 1632 1232 1664 1248 called.yuv "
      "dumps/0.yuv dumps/1.yuv dumps/2.yuv dumps/3.yuv");
  ASSERT_EQ(called.status, 0) << called.err;
  EXPECT_TRUE(text_of("called.yuv") == text_of("out.yuv"));
  EXPECT_FALSE(text_of("called.yuv") == text_of("dumps/0.yuv"));
}
#endif

TEST_F(Tuning, FindsWeightsForTheChromaDenoise) {
  make_moving_burst();
  const Json tuned = json("tune chroma 16=moving -o weights.c");
  ASSERT_EQ(tuned["weight_table"].size(), tuned["threshold"].get<size_t>()) << tuned["advice"];
  const Json row = json("sweep chroma moving/frame* --reference moving/clean* --mask moving/mask*" +
                        (" --weights weights.c --taps " + tuned["taps"].dump()) + " --threshold " +
                        tuned["threshold"].dump())["points"][0];
  EXPECT_EQ(row["chroma_noise_removed"], tuned["by_gain"][2]["chroma_noise_removed"]);
  EXPECT_GT(tuned["by_gain"][2]["worth"], tuned["by_gain"][1]["worth"]);
}

}  // namespace
}  // namespace zavri::tools
