#include "desktop/pictures/picture_page.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QMenu>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/file_dialog.h"
#include "desktop/pictures/picture_file.h"
#include "desktop/views/figure_size_dialog.h"

namespace banddesk::desktop {

PicturePage::PicturePage(const PictureSubject& subject, QWidget* parent)
    : QWidget(parent),
      context_(subject.context),
      caption_(subject.caption),
      follower_(new TableFollower(subject.host, subject.analysis, subject.context.selection(), this)),
      work_(new BackgroundWork(this)),
      tools_(new QToolBar(this)),
      trouble_(new QLabel(this)),
      state_(new QLabel(this)),
      progress_(new QProgressBar(this)),
      progressLine_(new QWidget(this)),
      cancel_(new QPushButton(this)),
      view_(new DrawingView(this)) {
  setAccessibleName(caption_);
  setHelpTopic(*this, QStringLiteral("pictures"));
  trouble_->setWordWrap(true);
  for (QLabel* label : {trouble_, state_}) label->setTextFormat(Qt::PlainText);
  auto* column = new QVBoxLayout(this);
  column->addWidget(tools_);
  column->addWidget(trouble_);
  column->addWidget(progressLine_);
  column->addWidget(view_, 1);
  column->addWidget(state_);
  makeTools();
  makeProgressLine();
  tell({});
  connect(follower_, &TableFollower::changed, this, [this] { tableChanged(); });
  connect(work_, &BackgroundWork::progressed, this,
          [this] { progress_->setValue(static_cast<int>(work_->share() * progress_->maximum())); });
  connect(work_, &BackgroundWork::failed, this, [this](const Error& error) {
    tell(toQString(error.description()));
    showState();
  });
  connect(view_, &DrawingView::clicked, this, [this](const Hit& hit, bool adds) { click(hit, adds); });
  connect(view_, &DrawingView::doubleClicked, this, [this](const Hit& hit) { doubleClicked(hit); });
  connect(view_, &DrawingView::encircled, this,
          [this](const auto& samples, bool adds) { encircle(samples, adds, {}); });
  connect(view_, &DrawingView::pointed, this, [this](const Hit& hit, const QPoint& where) {
    const QString text = describe(hit);
    text.isEmpty() ? QToolTip::hideText() : QToolTip::showText(where, text.toHtmlEscaped(), view_);
  });
  connections_.push_back(context_.selection().Changed.connect([this] { showEmphasis(); }));
  connections_.push_back(context_.GroupsChanged.connect([this] { redraw(); }));
}

void PicturePage::start() {
  guarded([this] { follower_->look(); });
}

// The table may have been opened since.
void PicturePage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  start();
}

// ---- tools

void PicturePage::makeTools() {
  tools_->setAccessibleName(QStringLiteral("Picture tools"));
  firstCommonTool_ = tools_->addSeparator();
  makeGroupMenu();
  tools_->addSeparator();
  const auto add = [this](const QString& text, const QString& tip, const std::function<void()>& work) {
    QAction* action = tools_->addAction(text);
    action->setToolTip(tip);
    connect(action, &QAction::triggered, this, work);
    return action;
  };
  add(QStringLiteral("Show &All"), QStringLiteral("The whole picture (Home; Ctrl and the wheel zoom)"),
      [this] { view_->showAll(); });
  add(QStringLiteral("&Export..."), QStringLiteral("Writes the picture as PNG, SVG or PDF"),
      [this] { exportAsked(); });
  QAction* copy = add(QStringLiteral("&Copy Picture"), QStringLiteral("To the clipboard (Ctrl+C)"), [this] {
    guarded([this] { QApplication::clipboard()->setImage(pictureImage(view_->drawing(), font(), {})); });
  });
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
}

void PicturePage::makeGroupMenu() {
  auto* button = new QToolButton(this);
  button->setText(QStringLiteral("&Groups"));
  button->setAccessibleName(QStringLiteral("Groups"));
  button->setToolTip(QStringLiteral("Which samples belong together: colours and marks in all pictures"));
  button->setPopupMode(QToolButton::InstantPopup);
  button->setFocusPolicy(Qt::TabFocus);
  auto* menu = new QMenu(button);
  const auto add = [&](const char* text, const std::function<void()>& work) {
    connect(menu->addAction(QString::fromLatin1(text)), &QAction::triggered, this, work);
  };
  add("From a &File...", [this] { askGroupFile(); });
  add("By Name &Pattern...", [this] { askGroupPattern(); });
  add("&None", [this] { context_.setGroups({}); });
  button->setMenu(menu);
  tools_->addWidget(button);
}

void PicturePage::makeProgressLine() {
  auto* line = new QHBoxLayout(progressLine_);
  line->setContentsMargins(0, 0, 0, 0);
  progress_->setRange(0, 1000);
  progress_->setFormat(QStringLiteral("Calculating: %p %"));
  line->addWidget(progress_, 1);
  line->addWidget(cancel_);
  connect(cancel_, &QPushButton::clicked, this, [this] {
    if (!work_->isRunning()) return recalculate();
    work_->cancel();
    showState();
  });
}

void PicturePage::addOption(const QString& label, QWidget* widget) {
  if (!label.isEmpty()) {
    auto* name = new QLabel(label, this);
    name->setBuddy(widget);
    tools_->insertWidget(firstCommonTool_, name);
  }
  widget->setAccessibleName(QString(label).remove(QLatin1Char('&')));
  tools_->insertWidget(firstCommonTool_, widget);
}

QComboBox* PicturePage::addChoice(const QString& label, const QStringList& items,
                                  void (PicturePage::*changed)()) {
  auto* box = new QComboBox(this);
  box->addItems(items);
  box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  connect(box, &QComboBox::currentIndexChanged, this, changed);
  addOption(label, box);
  return box;
}

QCheckBox* PicturePage::addCheck(const QString& text, const QString& tip, bool isChecked,
                                 void (PicturePage::*changed)()) {
  auto* box = new QCheckBox(text, this);
  box->setChecked(isChecked);
  box->setToolTip(tip);
  connect(box, &QCheckBox::toggled, this, changed);
  tools_->insertWidget(firstCommonTool_, box);
  return box;
}

// ---- groups

void PicturePage::askGroupFile() {
  const QString file = askOpenFile(this, QStringLiteral("Groups of the Samples"), {},
                                   QStringLiteral("Text: sample, tab, group (*.txt *.tsv);;All files (*)"));
  if (!file.isEmpty()) context_.setGroups({GroupSource::Kind::File, toText(file)});
}

void PicturePage::askGroupPattern() {
  bool isGiven = false;
  const QString before = context_.groups().kind == GroupSource::Kind::Pattern
                             ? toQString(context_.groups().text)
                             : QStringLiteral("^([A-Za-z]+)");
  const QString pattern =
      QInputDialog::getText(this, QStringLiteral("Groups of the Samples"),
                            QStringLiteral("A regular expression. What its first round brackets match in a "
                                           "sample's name is the sample's group:"),
                            QLineEdit::Normal, before, &isGiven);
  if (isGiven && !pattern.isEmpty()) context_.setGroups({GroupSource::Kind::Pattern, toText(pattern)});
}

// ---- the table and what is calculated from it

void PicturePage::tableChanged() {
  if (follower_->table() && isOutOfDate()) return recalculate();
  showState();
}

void PicturePage::recalculate() {
  const auto table = follower_->table();
  if (!table) return showState();
  guarded([&] {
    requireSound(table->bands);
    work_->start([this, table, work = calculation(table)](const host::statistics::Progress& progress) {
      return [this, table, answer = work(progress)] {
        if (answer) answer();
        take(table);
      };
    });
  });
  showState();
}

void PicturePage::take(const std::shared_ptr<const Table>& table) {
  shown_ = table;
  redraw();
  showState();
}

// Groups that do not fit this table leave it without.
void PicturePage::redraw() {
  if (!shown_) return;
  bands_ = shown_->bands;
  guarded([this] { context_.groups().applyTo(bands_); });
  guarded([this] { view_->setDrawing(draw(*shown_, bands_)); }, trouble_->text());
  showEmphasis();
}

// ---- what is selected

void PicturePage::showEmphasis() {
  if (!shown_) return;
  const StudySelection& selection = context_.selection();
  std::set<std::size_t> samples;
  for (std::size_t i = 0; i < shown_->results.size(); ++i) {
    if (selection.results().contains(shown_->results[i])) samples.insert(i);
  }
  std::optional<std::size_t> locus;
  for (std::size_t i = 0; i < shown_->bins.size(); ++i) {
    if (selection.bin() == StudySelection::BinPlace{follower_->analysis().get(), shown_->bins[i].bin})
      locus = i;
  }
  view_->setEmphasis(std::move(samples), locus);
  showState();
}

std::set<std::size_t> PicturePage::samplesAt(const Hit& hit) const {
  return hit.sample ? std::set{*hit.sample} : std::set<std::size_t>();
}

void PicturePage::click(const Hit& hit, bool adds) {
  if (!shown_) return;
  const std::set<std::size_t> samples = samplesAt(hit);
  std::optional<StudySelection::BinPlace> bin;
  if (hit.locus) {
    bin = {follower_->analysis().get(), shown_->bins[*hit.locus].bin};
    guarded([&] { follower_->show(bin->bin, hit.sample ? shown_->results[*hit.sample] : 0); });
  }
  encircle(samples, adds || (samples.empty() && hit.locus), bin);
}

void PicturePage::encircle(const std::set<std::size_t>& samples, bool adds,
                           std::optional<StudySelection::BinPlace> bin) {
  if (!shown_) return;
  StudySelection& selection = context_.selection();
  std::set<std::int32_t> results;
  if (adds) results = selection.results();
  for (const std::size_t sample : samples) results.insert(shown_->results[sample]);
  guarded([&] { selection.set(std::move(results), bin); });
}

QString PicturePage::describe(const Hit& hit) const {
  if (!hit.name.empty()) return toQString(hit.name);
  QStringList parts;
  if (hit.sample && *hit.sample < bands_.samples.size()) parts << toQString(bands_.samples[*hit.sample]);
  if (hit.locus && *hit.locus < bands_.loci.size()) parts << toQString(bands_.loci[*hit.locus].name());
  return parts.join(QStringLiteral(", "));
}

// ---- what the page says

void PicturePage::showState() {
  const bool waits = follower_->table() && isOutOfDate() && trouble().isEmpty();
  progressLine_->setVisible(work_->isRunning() || waits);
  progress_->setVisible(work_->isRunning());
  cancel_->setText(work_->isRunning() ? QStringLiteral("Cancel") : QStringLiteral("Calculate"));
  QStringList parts;
  if (shown_)
    parts << counted(shown_->bands.samples.size(), "sample", "samples")
          << counted(shown_->bands.loci.size(), "bin", "bins");
  const std::size_t selected = context_.selection().results().size();
  if (selected > 0) parts << QStringLiteral("%1 selected").arg(selected);
  if (!follower_->isOpen())
    parts << (shown_ ? QStringLiteral("the table is closed: this is how it was")
                     : QStringLiteral("the table is closed: open the analysis"));
  else if (isOutOfDate() && !work_->isRunning())
    parts << (shown_ ? QStringLiteral("out of date: the table has changed since")
                     : QStringLiteral("not calculated"));
  state_->setText(parts.join(QStringLiteral(", ")));
}

void PicturePage::tell(const QString& trouble) {
  trouble_->setText(trouble);
  trouble_->setVisible(!trouble.isEmpty());
}

// What is called from the toolkit ends here.
void PicturePage::guarded(const std::function<void()>& work, const QString& before) {
  try {
    tell(before);
    work();
  } catch (...) {
    tell(toQString(currentError().description()));
  }
}

void PicturePage::exportAsked() {
  const auto size = askFigureSize(this, view_->drawing().width, view_->drawing().height);
  if (!size) return;
  QString suggestion = caption_;
  suggestion.replace(QLatin1Char('/'), QLatin1Char('_'));
  const QString file =
      askSaveFile(this, QStringLiteral("Export Picture"), suggestion + size->ending, size->filter());
  if (!file.isEmpty()) guarded([&] { writePicture(view_->drawing(), font(), file, *size); });
}

}  // namespace banddesk::desktop
