#include "tools/report/page.h"

#include "tools/report/page_json.h"
#include "tools/report/page_template.h"

namespace zavri::tools {

std::string page_obstacle() {
  if (!kPageHead.empty()) return "";
  return "reports: the program was built without their libraries; run "
         "scripts/fetch-report-assets and build again";
}

std::string to_html(const ReportPage& page) {
  std::string html(kPageHead);
  html += to_json(page);
  html += kPageTail;
  return html;
}

}  // namespace zavri::tools
