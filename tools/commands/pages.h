#pragma once

#include <string>

#include "tools/console.h"
#include "tools/report/page.h"

namespace zavri::tools {

// Does prepare_output() for a page. Throws as well where the program cannot make pages.
void prepare_page(const std::string& path, Console& console);

// Writes the page, with the program and the command line that make it again.
void write_page(ReportPage page, const std::string& path, const Console& console);

}  // namespace zavri::tools
