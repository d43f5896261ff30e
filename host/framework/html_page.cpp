#include "host/framework/html_page.h"

namespace banddesk::host {
namespace {

// Headers repeat on every sheet, and no line is cut in two.
constexpr std::string_view kStyle = R"css(
:root { color-scheme: light; }
body { font: 14px/1.45 "DejaVu Sans", Arial, sans-serif; color: #1c2530; margin: 2em auto; max-width: 70em; padding: 0 1em; }
h1 { font-size: 1.6em; margin: 0; }
h1 + p { color: #5a6672; margin: .2em 0 1.5em; }
h2 { font-size: 1.15em; border-bottom: 2px solid #d5dbe1; padding-bottom: .2em; margin: 1.8em 0 .6em; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .15em 1.5em; margin: 0; }
dt { color: #5a6672; }
dd { margin: 0; }
table { border-collapse: collapse; margin: .6em 0; font-variant-numeric: tabular-nums; font-size: .92em; }
th, td { padding: .2em .6em; border-bottom: 1px solid #e3e8ec; text-align: right; vertical-align: top; }
th { border-bottom: 2px solid #aab4be; background: #f3f5f7; }
.text { text-align: left; overflow-wrap: anywhere; }
.wide { overflow-x: auto; }
.note { color: #5a6672; font-size: .92em; }
@media print {
  @page { margin: 15mm; }
  body { font-size: 9pt; margin: 0; max-width: none; padding: 0; }
  h2 { break-after: avoid; }
  thead { display: table-header-group; }
  tr { break-inside: avoid; }
  .wide { overflow: visible; }
  table { font-size: 8pt; }
  th { background: none; }
}
)css";

void appendCells(std::string& html, const char* tag, const std::vector<std::string>& cells,
                 std::size_t textColumns) {
  html += "<tr>";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    html.append("<").append(tag).append(i < textColumns ? " class=\"text\">" : ">");
    html.append(escapedHtml(cells[i])).append("</").append(tag).append(">");
  }
  html += "</tr>\n";
}

void appendTable(std::string& html, const ReportTable& table) {
  html += "<div class=\"wide\"><table>\n<thead>\n";
  appendCells(html, "th", table.header, table.textColumns);
  html += "</thead>\n<tbody>\n";
  for (const auto& row : table.rows) appendCells(html, "td", row, table.textColumns);
  html += "</tbody>\n</table></div>\n";
}

void appendSection(std::string& html, const ReportSection& section) {
  html.append("<section>\n<h2>").append(escapedHtml(section.title)).append("</h2>\n");
  if (!section.facts.empty()) {
    html += "<dl>\n";
    for (const auto& [name, value] : section.facts)
      html.append("<dt>")
          .append(escapedHtml(name))
          .append("</dt><dd>")
          .append(escapedHtml(value))
          .append("</dd>\n");
    html += "</dl>\n";
  }
  for (const ReportTable& table : section.tables) appendTable(html, table);
  if (!section.note.empty())
    html.append("<p class=\"note\">").append(escapedHtml(section.note)).append("</p>\n");
  html += "</section>\n";
}

}  // namespace

std::string escapedHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        // Other control characters have no place in HTML.
        escaped += static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t' ? ' ' : c;
    }
  }
  return escaped;
}

std::string htmlPage(const ReportDocument& document) {
  std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>";
  html.append(escapedHtml(document.title)).append("</title>\n<style>").append(kStyle);
  html.append("</style>\n</head>\n<body>\n<h1>").append(escapedHtml(document.title)).append("</h1>\n<p>");
  html.append(escapedHtml(document.subtitle)).append("</p>\n");
  for (const ReportSection& section : document.sections) appendSection(html, section);
  return html += "</body>\n</html>\n";
}

}  // namespace banddesk::host
