#include "tools/report/page.h"

#include "tools/error.h"
#include "tools/report/page_json.h"
#include "tools/report/page_template.h"

namespace zavri::tools {

std::string to_html(const ReportPage& page) {
  if (kPageHead.empty()) {
    throw Error(
        "report: built without the page's libraries; run scripts/fetch-report-assets and "
        "build again");
  }
  std::string html(kPageHead);
  html += to_json(page);
  html += kPageTail;
  return html;
}

}  // namespace zavri::tools
