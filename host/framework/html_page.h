// A report as sections of facts and tables, and its form as one HTML page that needs no other file and prints
// well. It knows nothing of what it reports.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace banddesk::host {

struct ReportTable {
  std::vector<std::string> header;
  std::vector<std::vector<std::string>> rows;
  std::size_t textColumns = 1;  // the first ones hold text, the others numbers
};

struct ReportSection {
  std::string title;
  std::vector<std::pair<std::string, std::string>> facts;
  std::vector<ReportTable> tables;
  std::string note;  // shown below, if there is one
};

struct ReportDocument {
  std::string title;
  std::string subtitle;
  std::vector<ReportSection> sections;
};

// Text as it may stand in HTML, also between quotes.
std::string escapedHtml(std::string_view text);
std::string htmlPage(const ReportDocument& document);

}  // namespace banddesk::host
