// Brings the pages of a print job onto paper or into a PDF, one after the other, so that a job of thousands
// of pages takes no more memory than one page.
#pragma once

#include <QPageLayout>
#include <QPagedPaintDevice>
#include <functional>

#include "desktop/print/print_layout.h"

namespace banddesk::desktop {

// How the table lies on the paper.
struct PaperChoice {
  QPageLayout page;
  double scale = 1;  // of the table, 0: as large as fits on one page in width, and not above 1

  QSizeF paperPoints() const { return page.fullRect(QPageLayout::Point).size(); }
};

// The job divided for that paper, and the scale that came out of it.
struct PaperLayout {
  PaperLayout(const host::PrintJob& job, const PaperChoice& choice);
  double scale;
  PrintLayout layout;
};

// A4 or Letter by the locale, across where the table is wider than the page.
PaperChoice usualPaper(const host::PrintJob& job);

// Told of each page that is done; false ends the output.
using PageProgress = std::function<bool(std::size_t done)>;

enum class OutputEnd { Done, Stopped, Failed };

// The pages first..last; the device has the page layout of `paper` already.
OutputEnd writePages(QPagedPaintDevice& device, const PaperLayout& paper, std::size_t first, std::size_t last,
                     const PageProgress& progress);

// Replaces the file only when all of it is written; otherwise the text says what went wrong.
OutputEnd writePdf(const QString& path, const host::PrintJob& job, const PaperChoice& choice,
                   const PageProgress& progress, QString& error);

}  // namespace banddesk::desktop
