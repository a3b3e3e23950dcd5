#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zavri::tools {

// One number that the page shows large, such as "Texture kept 32.66 dB, before 31.39 dB".
struct PageScore {
  std::string name;
  std::string unit;     // "dB"
  std::string meaning;  // how the number is computed, in a short sentence
  double value = 0;
  int digits = 2;
  bool higher_is_better = true;
  std::optional<double> baseline = {};  // the number that the value is judged by
  std::string baseline_name = "before";
  // Where the value may lie, such as a bootstrap's 5th and 95th percentile.
  std::optional<double> low = {};
  std::optional<double> high = {};
};

// Columns [x, x + width) and rows [y, y + height) of the whole picture.
struct PageRegion {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

// The page is this wide on a large screen, and two parts of this size stand beside each other. A
// whole picture need not be wider, and a part at 3:1 has a third of these numbers, which are even.
constexpr int kPageWidth = 1120;
constexpr int kPagePartWidth = 540;
constexpr int kPagePartHeight = 396;

// Two versions of a picture, or of a part of it, under a slider. The bytes are those of PNG or JPEG
// files of `width` x `height` pixels.
struct PageComparison {
  std::string caption;
  std::vector<uint8_t> before;
  std::vector<uint8_t> after;
  std::vector<uint8_t> clean;  // a third version to hold the result against; empty: there is none
  int width = 0;
  int height = 0;
  int scale = 0;      // screen pixels for each pixel: 1, 3 ..; 0 fits the picture to the page
  PageRegion region;  // which part it is; for the whole picture, its own size
  std::optional<double> gained;  // luma PSNR of the result over that of `before`, in dB
};

// How many of the other frames agreed with the reference, 0..3, at each place.
struct PageAgreement {
  std::string caption;
  std::vector<uint8_t> map;  // a grey PNG of `width` x `height` pixels, agreement_grey(count) each
  int width = 0;
  int height = 0;
  std::vector<double> shares;  // percent of places with 0, 1 .. agreeing frames
};

// The grey level that stands for so many agreeing frames in the map of a PageAgreement.
constexpr uint8_t agreement_grey(int frames) { return static_cast<uint8_t>(frames * 85); }

enum class PageMark { kLine, kSteps, kPoints, kBars };

struct PageSeries {
  std::string name;
  PageMark mark = PageMark::kLine;
  std::vector<double> x;         // ascending, except for points
  std::vector<double> y;         // NaN leaves a gap
  std::vector<double> low = {};  // empty, or the lower and upper edge of a band about y
  std::vector<double> high = {};
  std::vector<std::string> labels = {};  // empty, or what the cursor tells of each point
  bool baseline = false;                 // what the others are held against: dashed and grey
  bool follows = false;                  // goes with the one before, and has its colour
};

struct PageAxis {
  std::string label;
  std::string unit;  // may be empty where the label is a count
  bool from_zero = false;
  bool doubling = false;  // a logarithmic axis to the base 2
};

struct PagePlot {
  std::string title;
  std::string note;
  PageAxis x;
  PageAxis y;
  std::vector<PageSeries> series;
};

struct PageColumn {
  std::string name;
  std::string unit;
  int digits = 2;  // behind the point
};

// A number, or a text. Infinity is a number.
using PageCell = std::variant<double, std::string>;

struct PageTable {
  std::string title;
  std::string note;
  std::vector<PageColumn> columns;
  std::vector<std::vector<PageCell>> rows;
  std::optional<size_t> marked = {};  // the row that the summary speaks of
};

// What a page tells of a run, a sweep or a tune. Parts that are empty do not show.
struct ReportPage {
  std::string title;
  std::string summary;               // what came out, in a sentence or two
  std::string command;               // makes the page again
  std::string program;               // "zavri 0.1.0"
  std::vector<std::string> remarks;  // what went wrong or was done otherwise than asked
  std::vector<PageScore> scores;
  // The whole picture first; its parts are shown behind it, the worst loss first.
  std::vector<PageComparison> comparisons;
  std::vector<PageAgreement> agreements;
  std::vector<PagePlot> plots;
  std::vector<PageTable> tables;
  std::vector<std::string> log_lines;
};

// Why the program cannot make pages, and what would help; empty where it can.
std::string page_obstacle();

// One HTML file that needs nothing else. There must be no page_obstacle().
std::string to_html(const ReportPage& page);

}  // namespace zavri::tools
