#include "desktop/quality/quality_panel.h"

#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "host/grid/grid_control.h"
#include "host/quality/line_figures.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

constexpr std::size_t kLinesShown = 200;
constexpr int kPlaceRole = Qt::UserRole + 1;

constexpr std::array<const char*, 7> kFigures = {
    "Samples",        "Bins",       "With a single fragment", "Fragments per filled cell",
    "Mean bin width", "Widest bin", "Information content"};

QString number(std::size_t value) { return QString::number(value); }

QString decimal(const std::optional<double>& value, int places, const char* unit = "") {
  return value ? QString::number(*value, 'f', places) + QLatin1String(unit) : QStringLiteral("-");
}

// "D1-100.25": as much of the mean size as tells bins apart.
QString shortBin(const std::string& name) {
  const QString whole = toQString(name);
  const auto dash = whole.indexOf(QLatin1Char('-'));
  return whole.left(dash + 1) + QString::number(whole.mid(dash + 1).toDouble(), 'f', 2);
}

QString percent(const std::optional<double>& value) {
  return value ? QString::number(*value * 100, 'f', 2) + QStringLiteral(" %") : QStringLiteral("-");
}

QTreeWidgetItem* addLine(QTreeWidget& list, const QStringList& texts, std::int32_t place) {
  auto* line = new QTreeWidgetItem(&list, texts);
  line->setData(0, kPlaceRole, place);
  for (int column = 1; column < texts.size(); ++column) line->setTextAlignment(column, Qt::AlignRight);
  line->setToolTip(0, texts.constFirst().toHtmlEscaped());
  return line;
}

}  // namespace

QualityPanel::QualityPanel(QWidget* parent)
    : QWidget(parent), suffix_(new QLineEdit(this)), replicates_(new QLabel(this)) {
  setHelpTopic(*this, QStringLiteral("quality"));
  auto* form = new QFormLayout;
  for (const char* name : kFigures) {
    figures_.push_back(new QLabel(QStringLiteral("-"), this));
    figures_.back()->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(QLatin1String(name), figures_.back());
  }
  suffix_->setPlaceholderText(QStringLiteral("such as b"));
  suffix_->setToolTip(
      QStringLiteral("A sample whose name ends so is compared with the one of the same name without it"));
  form->addRow(QStringLiteral("Replicates en&d in"), suffix_);
  form->addRow(replicates_);
  replicates_->setWordWrap(true);
  bins_ = makeList({QStringLiteral("Bin"), QStringLiteral("Samples"), QStringLiteral("Doubled"),
                    QStringLiteral("Width"), QStringLiteral("Differ")},
                   QStringLiteral("Worst bins"));
  samples_ = makeList({QStringLiteral("Sample"), QStringLiteral("Bins"), QStringLiteral("Doubled"),
                       QStringLiteral("Distance"), QStringLiteral("Error")},
                      QStringLiteral("Worst samples"));
  pairs_ = makeList({QStringLiteral("Sample"), QStringLiteral("Replicate"), QStringLiteral("Error"),
                     QStringLiteral("Differ")},
                    QStringLiteral("Replicates"));
  auto* tabs = new QTabWidget(this);
  for (QTreeWidget* list : {bins_, samples_, pairs_}) tabs->addTab(list, list->accessibleName());
  tabs->setDocumentMode(true);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(tabs, 1);

  changes_.setSingleShot(true);
  changes_.setInterval(250);
  connect(&changes_, &QTimer::timeout, this, [this] { look(); });
  connect(suffix_, &QLineEdit::textChanged, this, [this] { changes_.start(); });
}

QTreeWidget* QualityPanel::makeList(const QStringList& header, const QString& name) {
  auto* list = new QTreeWidget(this);
  list->setHeaderLabels(header);
  list->setRootIsDecorated(false);
  list->setUniformRowHeights(true);
  list->setAccessibleName(name);
  list->header()->setStretchLastSection(false);
  list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  for (int column = 1; column < header.size(); ++column)
    list->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  // Only what the user does to a line points at it: a list that gets the focus makes a line current by
  // itself.
  const auto point = [this, list](const QTreeWidgetItem* line) {
    const std::int32_t place = line->data(0, kPlaceRole).toInt();
    list == bins_ ? Q_EMIT binChosen(place) : Q_EMIT sampleChosen(place);
  };
  connect(list, &QTreeWidget::itemClicked, this, point);
  connect(list, &QTreeWidget::itemActivated, this, point);
  return list;
}

void QualityPanel::follow(const std::shared_ptr<host::HostPage>& page) {
  const bool isTable = page && page->DefinitionName() == names::kResultsPage && page->control();
  if (isTable && page_.lock() == page) return;
  page_.reset();
  repaints_ = {};
  isOutdated_ = true;
  if (isTable) {
    page_ = page;
    if (auto* grid = page->control()->Controls().find<host::GridControl>(names::kGrid))
      repaints_ = grid->Repaint.connect([this] {
        isOutdated_ = true;
        if (isVisible()) changes_.start();
      });
  }
  if (isVisible()) look();
}

void QualityPanel::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (isOutdated_) look();
}

void QualityPanel::look() {
  isOutdated_ = false;
  const auto page = page_.lock();
  if (!page || !page->control()) return show({});
  try {
    const auto analysis = cast<AFLP>(page->bound(), "AFLP");
    const auto results = cast<IAFLPResultsPage>(page->control(), "AFLPResultsPage");
    show(host::shownTable(*analysis, *results));
  } catch (const Error&) {
    // A table that a failure left half built has no quality; the failure stands in the list.
    show({});
  }
}

void QualityPanel::setFigure(int index, const QString& value) {
  figures_[static_cast<std::size_t>(index)]->setText(value);
}

void QualityPanel::show(const host::ShownTable& table) {
  const std::string suffix = toText(suffix_->text().trimmed());
  host::Replicates replicates;
  if (!suffix.empty()) replicates = host::replicatesOfRuns(table.samples, suffix);
  const host::TableQuality quality = host::qualityOf(table.view(), replicates.pairs);
  setFigure(0, number(quality.samples));
  setFigure(1, number(quality.bins));
  setFigure(2, number(quality.singleFragmentBins));
  setFigure(3, decimal(quality.fragmentsPerFilledCell, 4));
  setFigure(4, decimal(quality.meanWidth, 3, " nt"));
  setFigure(5, decimal(quality.largestWidth, 3, " nt"));
  setFigure(6, decimal(quality.informationContent, 4));
  showBins(table, replicates);
  showSamples(table, replicates);
  showPairs(table, quality, replicates);
}

void QualityPanel::showBins(const host::ShownTable& table, const host::Replicates& replicates) {
  const QSignalBlocker quiet(bins_);
  bins_->clear();
  const auto figures = host::worstBins(table.view(), replicates.pairs);
  for (std::size_t i = 0; i < std::min(kLinesShown, figures.size()); ++i) {
    const host::BinFigures& bin = figures[i];
    addLine(*bins_,
            {shortBin(table.bins[bin.bin]), number(bin.filledCells), number(bin.doubledCells),
             decimal(bin.width, 2),
             replicates.pairs.empty() ? QStringLiteral("-") : number(bin.replicates.differing)},
            table.rows[bin.bin]);
  }
}

void QualityPanel::showSamples(const host::ShownTable& table, const host::Replicates& replicates) {
  const QSignalBlocker quiet(samples_);
  samples_->clear();
  const auto figures = host::worstSamples(table.view(), replicates.pairs);
  for (std::size_t i = 0; i < std::min(kLinesShown, figures.size()); ++i) {
    const host::SampleFigures& sample = figures[i];
    addLine(*samples_,
            {toQString(table.samples[sample.sample]), number(sample.filledCells), number(sample.doubledCells),
             decimal(sample.distance, 3), percent(sample.replicates.jaccardError())},
            table.columns[sample.sample]);
  }
}

void QualityPanel::showPairs(const host::ShownTable& table, const host::TableQuality& quality,
                             const host::Replicates& replicates) {
  const QSignalBlocker quiet(pairs_);
  pairs_->clear();
  if (suffix_->text().trimmed().isEmpty()) return replicates_->clear();
  if (!quality.replicates || replicates.pairs.empty())
    return replicates_->setText(QStringLiteral("No shown sample's name ends so beside one without it."));
  const host::ReplicateQuality& of = *quality.replicates;
  replicates_->setText(QStringLiteral("%1. Jaccard error: %2 on average, standard deviation %3; all pairs "
                                      "pooled %4. Mismatch error: %5")
                           .arg(counted(replicates.pairs.size(), "pair", "pairs"))
                           .arg(percent(of.jaccardError.mean), percent(of.jaccardError.deviation),
                                percent(of.overall.jaccardError()), percent(of.overall.mismatchError())));
  for (const host::PairQuality& pair : quality.replicates->pairs) {
    addLine(*pairs_,
            {toQString(table.samples[pair.samples.first]), toQString(table.samples[pair.samples.second]),
             percent(pair.agreement.jaccardError()), number(pair.agreement.differing)},
            table.columns[pair.samples.first]);
  }
}

}  // namespace banddesk::desktop
