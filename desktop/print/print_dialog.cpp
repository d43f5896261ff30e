#include "desktop/print/print_dialog.h"

#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/dialog_parts.h"
#include "desktop/dialogs/message_box.h"
#include "desktop/dialogs/save_dialog.h"

namespace banddesk::desktop {
namespace {

constexpr std::array<QPageSize::PageSizeId, 5> kSizes = {QPageSize::A4, QPageSize::A3, QPageSize::A2,
                                                         QPageSize::Letter, QPageSize::Legal};
constexpr std::array<double, 5> kScales = {1, 0.8, 0.65, 0.5, 0};  // the last one: one page wide

QString titleOf(const host::PrintJob& job) {
  return job.header.empty() ? QString() : toQString(job.header.front().style.value.value_or(std::string()));
}

template <class Layout>
void addLabelled(Layout& layout, const QString& text, QWidget* widget) {
  auto* label = new QLabel(text);
  label->setBuddy(widget);
  layout.addWidget(label);
  layout.addWidget(widget);
}

}  // namespace

PrintDialog::PrintDialog(const host::PrintJob& job, QWidget* parent)
    : QDialog(parent),
      job_(job),
      choice_(usualPaper(job)),
      size_(new QComboBox(this)),
      orientation_(new QComboBox(this)),
      scale_(new QComboBox(this)),
      page_(new QSpinBox(this)),
      pages_(new QLabel(this)),
      preview_(new PagePreview(this)) {
  setWindowTitle(QStringLiteral("Print Grid"));
  setHelpTopic(*this, QStringLiteral("export"));
  setSizeGripEnabled(true);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(makePaperLine());
  layout->addWidget(preview_, 1);
  layout->addLayout(makePageLine());
  layout->addLayout(makeButtonLine());
  resize(sizeInText(*this, 110, 42));
  divide();
}

QLayout* PrintDialog::makePaperLine() {
  for (const QPageSize::PageSizeId id : kSizes) size_->addItem(QPageSize::name(id));
  size_->setCurrentIndex(choice_.page.pageSize().id() == QPageSize::Letter ? 3 : 0);
  orientation_->addItems({QStringLiteral("Portrait"), QStringLiteral("Landscape")});
  orientation_->setCurrentIndex(choice_.page.orientation() == QPageLayout::Landscape ? 1 : 0);
  for (const double scale : kScales) {
    scale_->addItem(scale > 0 ? QStringLiteral("%1 %").arg(scale * 100) : QStringLiteral("One page wide"));
  }
  auto* line = new QHBoxLayout;
  addLabelled(*line, QStringLiteral("Pa&per:"), size_);
  addLabelled(*line, QStringLiteral("&Orientation:"), orientation_);
  addLabelled(*line, QStringLiteral("Sca&le:"), scale_);
  line->addStretch();
  for (QComboBox* box : {size_, orientation_, scale_}) {
    connect(box, &QComboBox::currentIndexChanged, this, [this] { divide(); });
  }
  return line;
}

QLayout* PrintDialog::makePageLine() {
  auto* line = new QHBoxLayout;
  auto* previous = addButton(*line, QStringLiteral("P&revious"), [this] { page_->stepDown(); });
  addLabelled(*line, QStringLiteral("Pa&ge:"), page_);
  line->addWidget(pages_);
  auto* next = addButton(*line, QStringLiteral("&Next"), [this] { page_->stepUp(); });
  line->addStretch();
  auto* view = new QComboBox;
  view->addItems({QStringLiteral("Whole page"), QStringLiteral("Page width")});
  addLabelled(*line, QStringLiteral("&View:"), view);
  page_->setObjectName(QStringLiteral("page"));
  page_->setAccessibleName(QStringLiteral("Page number"));
  page_->setKeyboardTracking(false);
  connect(page_, &QSpinBox::valueChanged, this, [this, previous, next](int page) {
    turnTo(page);
    previous->setEnabled(page > page_->minimum());
    next->setEnabled(page < page_->maximum());
  });
  previous->setEnabled(false);
  connect(view, &QComboBox::currentIndexChanged, this,
          [this](int index) { preview_->setWholePage(index == 0); });
  return line;
}

QLayout* PrintDialog::makeButtonLine() {
  auto* line = new QHBoxLayout;
  line->addStretch();
  QPushButton* printing = addButton(*line, QStringLiteral("&Print\u2026"), [this] { print(); });
  QPushButton* saving = addButton(*line, QStringLiteral("&Save as PDF\u2026"), [this] { savePdf(); });
  saving->setObjectName(QStringLiteral("pdf"));
  addButton(*line, QStringLiteral("Cancel"), [this] { reject(); });
  const bool hasPrinter = !QPrinterInfo::availablePrinterNames().isEmpty();
  printing->setEnabled(hasPrinter);
  if (!hasPrinter) printing->setToolTip(QStringLiteral("No printer is set up on this computer."));
  (hasPrinter ? printing : saving)->setDefault(true);
  return line;
}

void PrintDialog::divide() {
  choice_.page.setPageSize(QPageSize(kSizes[static_cast<std::size_t>(size_->currentIndex())]));
  choice_.page.setOrientation(orientation_->currentIndex() == 0 ? QPageLayout::Portrait
                                                                : QPageLayout::Landscape);
  choice_.scale = kScales[static_cast<std::size_t>(scale_->currentIndex())];
  auto paper = std::make_unique<PaperLayout>(job_, choice_);
  preview_->setPaper(choice_, *paper);
  paper_ = std::move(paper);
  const PrintLayout& layout = paper_->layout;
  QString text = QStringLiteral("of %L1").arg(layout.pageCount());
  if (layout.pagesAcross() > 1) {
    text += QStringLiteral(" (%L1 across, %L2 down)").arg(layout.pagesAcross()).arg(layout.pagesDown());
  }
  pages_->setText(text);
  page_->setRange(1, static_cast<int>(layout.pageCount()));
  turnTo(page_->value());
}

void PrintDialog::turnTo(int page) { preview_->showPage(static_cast<std::size_t>(page) - 1); }

OutputEnd PrintDialog::run(std::size_t pages, const std::function<OutputEnd(const PageProgress&)>& write) {
  QProgressDialog progress(QStringLiteral("Writing pages"), QStringLiteral("Cancel"), 0,
                           static_cast<int>(pages), this);
  progress.setWindowModality(Qt::WindowModal);
  return write([&](std::size_t done) {
    progress.setValue(static_cast<int>(done));
    return !progress.wasCanceled();
  });
}

void PrintDialog::print() {
  QPrinter printer(QPrinter::HighResolution);
  printer.setPageLayout(choice_.page);
  printer.setDocName(titleOf(job_));
  if (job_.isBlackWhite) printer.setColorMode(QPrinter::GrayScale);
  QPrintDialog dialog(&printer, this);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange);
  dialog.setMinMax(1, page_->maximum());
  if (dialog.exec() != QDialog::Accepted) return;
  // The user may have chosen another paper there.
  const PaperChoice chosen{printer.pageLayout(), choice_.scale};
  const PaperLayout paper(job_, chosen);
  std::size_t first = 0;
  std::size_t last = paper.layout.pageCount() - 1;
  if (printer.printRange() == QPrinter::PageRange) {
    first = std::min(last, static_cast<std::size_t>(std::max(printer.fromPage(), 1)) - 1);
    last = std::clamp(static_cast<std::size_t>(std::max(printer.toPage(), 1)) - 1, first, last);
  }
  const OutputEnd end = run(last - first + 1, [&](const PageProgress& progress) {
    const OutputEnd written = writePages(printer, paper, first, last, progress);
    if (written == OutputEnd::Stopped) printer.abort();
    return written;
  });
  if (end == OutputEnd::Failed) showWarning(QStringLiteral("The printer took no page."), this);
  if (end == OutputEnd::Done) accept();
}

void PrintDialog::savePdf() {
  ui::SaveDialog request("pdf");
  request.DialogTitle = "Save as PDF";
  request.FileName = toText(titleOf(job_));
  request.Filter = "PDF (*.pdf)|*.pdf";
  request.FilterIndex = 1;
  request.Flags = ui::kOverwritePrompt;
  const auto answer = askWhereToSave(request, this);
  if (!answer) return;
  QString error;
  const QString path = toQString(answer->fileName);
  const OutputEnd end = run(paper_->layout.pageCount(), [&](const PageProgress& progress) {
    return writePdf(path, job_, choice_, progress, error);
  });
  if (end == OutputEnd::Failed) {
    showWarning(QStringLiteral("%1 could not be written: %2").arg(path, error), this);
  }
  if (end == OutputEnd::Done) accept();
}

}  // namespace banddesk::desktop
