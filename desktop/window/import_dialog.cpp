#include "desktop/window/import_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/file_dialog.h"
#include "host/import/read_files.h"
#include "host/import/report_text.h"

namespace banddesk::desktop {
namespace {

QString folderKey() { return QStringLiteral("importFolder"); }

void addDyes(QComboBox& box) {
  for (const host::import::Dye dye : host::import::allDyes)
    box.addItem(QStringLiteral("Dye %1").arg(QLatin1Char(host::import::letterOf(dye))),
                static_cast<int>(dye));
}

std::optional<host::import::Dye> chosenDye(const QComboBox& box) {
  const int dye = box.currentData().toInt();
  return dye >= 0 ? std::optional(static_cast<host::import::Dye>(dye)) : std::nullopt;
}

std::vector<std::filesystem::path> pathsOf(const QListWidget& list) {
  std::vector<std::filesystem::path> paths;
  paths.reserve(static_cast<std::size_t>(list.count()));
  for (int i = 0; i < list.count(); ++i) paths.emplace_back(toText(list.item(i)->text()));
  return paths;
}

}  // namespace

QStringList ImportDialog::askFiles(QWidget* parent) {
  QStringList files =
      askOpenFiles(parent, QStringLiteral("Import Peak Tables"), QSettings().value(folderKey()).toString(),
                   QStringLiteral("Peak tables (*.txt *.csv *.tsv *.tab *.xlsx);;All files (*)"));
  if (!files.isEmpty()) QSettings().setValue(folderKey(), QFileInfo(files.constFirst()).absolutePath());
  return files;
}

ImportDialog::ImportDialog(const host::HostStudyService& study, const QStringList& files, QWidget* parent)
    : QDialog(parent),
      study_(study),
      files_(new QListWidget(this)),
      ladder_(new QComboBox(this)),
      dye_(new QComboBox(this)),
      again_(new QCheckBox(QStringLiteral("Read files that were imported before &once more"), this)),
      report_(new QPlainTextEdit(this)) {
  setWindowTitle(QStringLiteral("Import Peak Tables"));
  setHelpTopic(*this, QStringLiteral("files"));
  files_->setAccessibleName(QStringLiteral("Files"));
  files_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  ladder_->addItem(QStringLiteral("None: read all dyes"), -1);
  addDyes(*ladder_);
  dye_->addItem(QStringLiteral("Not chosen: such tables are refused"), -1);
  addDyes(*dye_);
  connect(dye_, &QComboBox::currentIndexChanged, this, [this] { look(); });
  report_->setReadOnly(true);
  report_->setAccessibleName(QStringLiteral("What the tables hold"));
  report_->setTabChangesFocus(true);

  auto* add = new QPushButton(QStringLiteral("&Add..."), this);
  auto* remove = new QPushButton(QStringLiteral("&Remove"), this);
  connect(add, &QPushButton::clicked, this, [this] { addFiles(askFiles(this)); });
  connect(remove, &QPushButton::clicked, this, [this] { removeChosen(); });
  auto* fileButtons = new QVBoxLayout;
  fileButtons->addWidget(add);
  fileButtons->addWidget(remove);
  fileButtons->addStretch();
  auto* fileRow = new QHBoxLayout;
  fileRow->addWidget(files_, 1);
  fileRow->addLayout(fileButtons);

  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Size &standard, to leave out:"), ladder_);
  form->addRow(QStringLiteral("Tables &without a dye column:"), dye_);
  form->addRow(again_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  import_ = buttons->addButton(QStringLiteral("&Import"), QDialogButtonBox::AcceptRole);
  import_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* column = new QVBoxLayout(this);
  column->addLayout(fileRow, 2);
  column->addLayout(form);
  column->addWidget(report_, 3);
  column->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 30);
  addFiles(files);
  import_->setFocus();
}

void ImportDialog::addFiles(const QStringList& files) {
  for (const QString& file : files) {
    if (files_->findItems(file, Qt::MatchExactly).isEmpty()) files_->addItem(file);
  }
  look();
}

void ImportDialog::removeChosen() {
  qDeleteAll(files_->selectedItems());
  look();
}

void ImportDialog::look() {
  import_->setEnabled(false);
  report_->clear();
  if (files_->count() == 0) return;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  try {
    const auto files = pathsOf(*files_);
    host::requireNotTheStudy(study_, files);
    // All dyes are looked at, since the standard's may be among them.
    auto wanted = options();
    wanted.ladder.reset();
    propose(host::import::readFiles(files, wanted).report);
    import_->setEnabled(true);
  } catch (const std::exception& error) {
    report_->setPlainText(toQString(error.what()));
  }
  QApplication::restoreOverrideCursor();
}

void ImportDialog::propose(const host::import::Report& report) {
  report_->setPlainText(toQString(host::import::reportText(report)));
  if (report.ladder) ladder_->setCurrentIndex(ladder_->findData(static_cast<int>(report.ladder->dye)));
}

host::import::Options ImportDialog::options() const {
  host::import::Options options;
  options.ladder = chosenDye(*ladder_);
  options.dye = chosenDye(*dye_);
  return options;
}

host::ImportRequest ImportDialog::request() const {
  host::ImportRequest request;
  request.files = pathsOf(*files_);
  request.options = options();
  request.again = again_->isChecked();
  return request;
}

}  // namespace banddesk::desktop
