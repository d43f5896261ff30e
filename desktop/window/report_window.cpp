#include "desktop/window/report_window.h"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSaveFile>
#include <QTextBrowser>

#include "desktop/base/help_topic.h"
#include "desktop/dialogs/file_dialog.h"

namespace banddesk::desktop {

ReportWindow::ReportWindow(const QString& title, const QString& htmlPage, QWidget* parent)
    : QDialog(parent), name_(title), html_(htmlPage), text_(new QTextBrowser(this)) {
  setWindowTitle(QStringLiteral("Report - ") + title);
  setHelpTopic(*this, QStringLiteral("export"));
  setAttribute(Qt::WA_DeleteOnClose);
  text_->setOpenLinks(false);
  text_->setAccessibleName(QStringLiteral("Report"));
  text_->setHtml(htmlPage);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  const auto* printButton = buttons->addButton(QStringLiteral("&Print..."), QDialogButtonBox::ActionRole);
  const auto* saveButton = buttons->addButton(QStringLiteral("&Save As..."), QDialogButtonBox::ActionRole);
  connect(printButton, &QPushButton::clicked, this, [this] { print(); });
  connect(saveButton, &QPushButton::clicked, this, [this] { save(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
  auto* column = new QVBoxLayout(this);
  column->addWidget(text_, 1);
  column->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 45);
}

void ReportWindow::print() {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(name_);
  QPrintPreviewDialog preview(&printer, this);
  connect(&preview, &QPrintPreviewDialog::paintRequested, this,
          [this](QPrinter* paper) { text_->print(paper); });
  preview.exec();
}

void ReportWindow::save() {
  QString suggestion = name_;
  suggestion.replace(QLatin1Char('/'), QLatin1Char('_'));
  const QString path = askSaveFile(this, QStringLiteral("Save Report"), suggestion + QStringLiteral(".html"),
                                   QStringLiteral("Web page (*.html)"));
  if (path.isEmpty()) return;
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(html_.toUtf8()) >= 0 && file.commit()) return;
  QMessageBox::warning(this, windowTitle(), path + QStringLiteral(": ") + file.errorString());
}

}  // namespace banddesk::desktop
