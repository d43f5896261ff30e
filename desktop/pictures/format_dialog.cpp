#include "desktop/pictures/format_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/dialog_parts.h"
#include "desktop/dialogs/file_dialog.h"
#include "desktop/views/plot_export.h"

namespace banddesk::desktop {
namespace {

using namespace host::formats;

constexpr qsizetype kLinesShown = 60;
constexpr qsizetype kLetters = 400;  // of a line

// The first lines, each no longer than is of use.
QString beginningOf(const std::string& content) {
  if (content.find('\0') != std::string::npos)
    return QStringLiteral("A spreadsheet of %1 bytes.").arg(content.size());
  const QString text = toQString(std::string_view(content).substr(0, kLinesShown * kLetters * 4));
  QStringList lines = text.split(QLatin1Char('\n')).mid(0, kLinesShown);
  for (QString& line : lines) {
    if (line.size() > kLetters) line = line.left(kLetters) + QChar(0x2026);
  }
  return lines.join(QLatin1Char('\n'));
}

QString aboutMissing(Missing missing) {
  switch (missing) {
    case Missing::Written:
      return QStringLiteral("Missing bands have a code of the format's.");
    case Missing::LeftOut:
      return QStringLiteral("A sample whose band is missing is left out of the bin's count.");
    case Missing::Refused:
      return QStringLiteral("It has no code for missing bands.");
  }
  return {};
}

QString pathOf(const Part& part, const QString& out) {
  return toQString(host::formats::pathOf(part, toText(out)).string());
}

}  // namespace

FormatDialog::FormatDialog(std::shared_ptr<const host::PlainTable> table, PictureContext& context,
                           const QString& name, QWidget* parent)
    : QDialog(parent),
      table_(std::move(table)),
      context_(context),
      name_(name),
      formats_(new QListWidget(this)),
      about_(new QLabel(this)),
      groupKind_(new QComboBox(this)),
      groupText_(new QLineEdit(this)),
      groupFile_(new QPushButton(QStringLiteral("C&hoose..."), this)),
      missingBelow_(new QDoubleSpinBox(this)),
      trouble_(new QLabel(this)),
      preview_(new QTabWidget(this)) {
  setWindowTitle(QStringLiteral("Files for Other Programs"));
  setHelpTopic(*this, QStringLiteral("formats"));
  for (const Format& format : allFormats()) formats_->addItem(toQString(format.title));
  formats_->setAccessibleName(QStringLiteral("Formats"));
  for (QLabel* label : {about_, trouble_}) {
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
  }
  groupKind_->addItems({QStringLiteral("All samples are one"), QStringLiteral("From a file"),
                        QStringLiteral("By name pattern")});
  groupKind_->setCurrentIndex(static_cast<int>(context_.groups().kind));
  groupText_->setText(toQString(context_.groups().text));
  groupText_->setAccessibleName(QStringLiteral("File or pattern"));
  missingBelow_->setRange(0, 100000);
  missingBelow_->setDecimals(0);
  missingBelow_->setSuffix(QStringLiteral(" RFU"));
  missingBelow_->setSpecialValueText(QStringLiteral("none"));
  missingBelow_->setToolTip(QStringLiteral("Bands whose highest fragment is lower count as not known"));
  preview_->setAccessibleName(QStringLiteral("Preview"));

  auto* groups = new QHBoxLayout;
  groups->addWidget(groupKind_);
  groups->addWidget(groupText_, 1);
  groups->addWidget(groupFile_);
  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Groups:"), groups);
  form->addRow(QStringLiteral("Missing &below:"), missingBelow_);
  auto* right = new QVBoxLayout;
  right->addWidget(about_);
  right->addLayout(form);
  right->addWidget(trouble_);
  right->addWidget(preview_, 1);
  auto* line = new QHBoxLayout;
  line->addWidget(formats_);
  line->addLayout(right, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  save_ = buttons->addButton(QStringLiteral("&Save..."), QDialogButtonBox::ActionRole);
  auto* column = new QVBoxLayout(this);
  column->addLayout(line, 1);
  column->addWidget(buttons);
  formats_->setMaximumWidth(fontMetrics().averageCharWidth() * 44);
  resize(sizeInText(*this, 140, 36));

  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(save_, &QPushButton::clicked, this, [this] { save(); });
  connect(formats_, &QListWidget::currentRowChanged, this, [this] { look(); });
  connect(groupKind_, &QComboBox::currentIndexChanged, this, [this] { look(); });
  connect(groupText_, &QLineEdit::textChanged, this, [this] { look(); });
  connect(missingBelow_, &QDoubleSpinBox::valueChanged, this, [this] { look(); });
  connect(groupFile_, &QPushButton::clicked, this, [this] { askGroupFile(); });
  formats_->setCurrentRow(0);
}

void FormatDialog::chooseFormat(std::string_view name) {
  const auto all = allFormats();
  const auto found = std::ranges::find(all, name, &Format::name);
  formats_->setCurrentRow(static_cast<int>(found - all.begin()));
}

const Format& FormatDialog::format() const {
  return allFormats()[static_cast<std::size_t>(std::max(formats_->currentRow(), 0))];
}

GroupSource FormatDialog::groups() const {
  return {static_cast<GroupSource::Kind>(groupKind_->currentIndex()), toText(groupText_->text())};
}

host::statistics::BandMatrix FormatDialog::bands() const {
  host::statistics::BandMatrix bands = table_->bands;
  for (std::size_t cell = 0; cell < bands.cells.size(); ++cell) {
    if (bands.cells[cell] == Band::Present &&
        static_cast<double>(table_->heights[cell]) < missingBelow_->value())
      bands.cells[cell] = Band::Missing;
  }
  groups().applyTo(bands);
  return bands;
}

Parts FormatDialog::parts(const QString& fileName) const {
  return write(format(), bands(), toText(QFileInfo(fileName).fileName()));
}

void FormatDialog::askGroupFile() {
  const QString file = askOpenFile(this, QStringLiteral("Groups of the Samples"), {},
                                   QStringLiteral("Text: sample, tab, group (*.txt *.tsv);;All files (*)"));
  if (!file.isEmpty()) groupText_->setText(file);
}

// ---- what is shown

void FormatDialog::look() {
  const Format& chosen = format();
  about_->setText(QStringLiteral("%1. On the command line: %2. %3%4. %5")
                      .arg(toQString(chosen.title), toQString(chosen.name),
                           toQString(chosen.note()).left(1).toUpper(), toQString(chosen.note()).mid(1),
                           aboutMissing(chosen.missing)));
  groupText_->setEnabled(groupKind_->currentIndex() > 0);
  groupFile_->setEnabled(groups().kind == GroupSource::Kind::File);
  QString trouble;
  Parts made;
  const QString fileName = name_ + toQString(chosen.ending);
  try {
    made = parts(fileName);
  } catch (...) {
    trouble = toQString(currentError().description());
  }
  trouble_->setText(trouble);
  trouble_->setVisible(!trouble.isEmpty());
  save_->setEnabled(trouble.isEmpty());
  showParts(made, fileName);
}

void FormatDialog::showParts(const Parts& parts, const QString& fileName) {
  while (preview_->count() > 0) delete preview_->widget(0);
  for (const Part& part : parts) {
    auto* text = new QPlainTextEdit(beginningOf(part.content), preview_);
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    preview_->addTab(text, QFileInfo(pathOf(part, fileName)).fileName());
  }
}

// ---- writing

void FormatDialog::writeTo(const QString& path) const {
  std::vector<std::unique_ptr<QSaveFile>> files;
  for (const Part& part : parts(path)) {
    auto& file = *files.emplace_back(std::make_unique<QSaveFile>(pathOf(part, path)));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(part.content.data(), static_cast<qint64>(part.content.size())) < 0 || !file.flush())
      raiseUnwritable(file);
  }
  for (const auto& file : files) {
    if (!file->commit()) raiseUnwritable(*file);
  }
}

void FormatDialog::save() {
  const Format& chosen = format();
  const QString path =
      askSaveFile(this, windowTitle(), name_ + toQString(chosen.ending),
                  QStringLiteral("%1 (*%2)").arg(toQString(chosen.name), toQString(chosen.ending)));
  if (path.isEmpty()) return;
  try {
    QStringList others;
    for (const Part& part : parts(path)) {
      const QString other = pathOf(part, path);
      if (other != path && QFileInfo::exists(other)) others << other;
    }
    if (!others.isEmpty() &&
        QMessageBox::question(
            this, windowTitle(),
            QStringLiteral("Files that belong to it exist already and will be replaced:\n%1")
                .arg(others.join(QLatin1Char('\n'))),
            QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok)
      return;
    writeTo(path);
    context_.setGroups(groups());
  } catch (...) {
    QMessageBox::warning(this, windowTitle(), toQString(currentError().description()));
  }
}

}  // namespace banddesk::desktop
