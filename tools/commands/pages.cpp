#include "tools/commands/pages.h"

#include <zavricustpro/base.h>

#include "tools/command_line.h"
#include "tools/error.h"

namespace zavri::tools {

void prepare_page(const std::string& path, Console& console) {
  prepare_output(path, console, check_file);
  if (const std::string obstacle = page_obstacle(); !obstacle.empty()) throw Error(obstacle);
}

void write_page(ReportPage page, const std::string& path, const Console& console) {
  page.command = console.command;
  page.program = "zavri " ZAVRI_VERSION;
  const std::string html = to_html(page);
  write_file(path, Bytes(html.begin(), html.end()));
}

}  // namespace zavri::tools
