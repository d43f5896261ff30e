// Where a print job goes: the user sees the pages as they will be, chooses paper and scale, and prints them,
// saves them as a PDF, or leaves it. One window, because the number of pages and the look of the first one
// are what decides. A PDF needs no printer.
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QSpinBox>
#include <memory>

#include "desktop/print/page_preview.h"

namespace banddesk::desktop {

class PrintDialog final : public QDialog {
  Q_OBJECT

 public:
  // The job outlives the dialog. It is accepted when the pages were printed or saved.
  PrintDialog(const host::PrintJob& job, QWidget* parent);

 private:
  QLayout* makePaperLine();
  QLayout* makePageLine();
  QLayout* makeButtonLine();
  void divide();
  void turnTo(int page);
  void print();
  void savePdf();
  OutputEnd run(std::size_t pages, const std::function<OutputEnd(const PageProgress&)>& write);

  const host::PrintJob& job_;
  PaperChoice choice_;
  std::unique_ptr<PaperLayout> paper_;
  QComboBox* size_;
  QComboBox* orientation_;
  QComboBox* scale_;
  QSpinBox* page_;
  QLabel* pages_;
  PagePreview* preview_;
};

}  // namespace banddesk::desktop
