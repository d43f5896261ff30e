#include "host/import/report_text.h"

#include <fmt/format.h>
#include <iterator>

namespace banddesk::host::import {

std::string reasonText(const LeftOut& leftOut) {
  if (leftOut.quotes.empty()) return leftOut.reason;
  return fmt::format("{}: \"{}\"", leftOut.reason, fmt::join(leftOut.quotes, "\", \""));
}

namespace {

using Text = fmt::memory_buffer;

void appendPeaks(Text& text, const FileReport& file) {
  const char* between = "";
  for (const Dye dye : allDyes) {
    const std::size_t count = file.peaks[indexOf(dye)];
    if (count == 0) continue;
    fmt::format_to(std::back_inserter(text), "{}{} {}", between, letterOf(dye), count);
    between = ", ";
  }
  if (*between == '\0') text.append(std::string_view("none"));
}

void appendLeftOut(Text& text, const LeftOut& leftOut) {
  const bool more = leftOut.count > leftOut.firstLines.size();
  fmt::format_to(std::back_inserter(text), "  left out: {} ({}), {} {}{}\n", leftOut.count,
                 reasonText(leftOut), leftOut.count == 1 ? "line" : "lines",
                 fmt::join(leftOut.firstLines, ", "), more ? ", ..." : "");
}

void appendFile(Text& text, const FileReport& file) {
  fmt::format_to(std::back_inserter(text), "{}: {}", file.file.string(), file.form);
  if (file.rows != 0) {
    fmt::format_to(std::back_inserter(text), "; {} rows, {} samples, peaks: ", file.rows, file.samples);
    appendPeaks(text, file);
  }
  text.push_back('\n');
  for (const LeftOut& leftOut : file.leftOut) appendLeftOut(text, leftOut);
  for (const std::string& note : file.notes) fmt::format_to(std::back_inserter(text), "  {}\n", note);
}

}  // namespace

std::string reportText(const Report& report) {
  Text text;
  for (const FileReport& file : report.files) appendFile(text, file);
  if (!report.dyeNames.empty()) fmt::format_to(std::back_inserter(text), "{}\n", report.dyeNames);
  if (report.ladder)
    fmt::format_to(
        std::back_inserter(text),
        "dye {} looks like the size standard: {} sizes are common to nearly all samples ({:.0f} % of its "
        "peaks, spread {:.2f} nt)\n",
        letterOf(report.ladder->dye), report.ladder->commonSizes, 100 * report.ladder->shareOfPeaks,
        report.ladder->spreadNt);
  return fmt::to_string(text);
}

}  // namespace banddesk::host::import
