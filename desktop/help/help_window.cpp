#include "desktop/help/help_window.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextTable>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/dialogs/dialog_parts.h"

namespace banddesk::desktop {
namespace {

QToolButton* addTool(QBoxLayout& line, const QString& text, const QIcon& icon) {
  auto* button = new QToolButton;
  button->setText(text);
  button->setIcon(icon);
  button->setToolTip(text);
  button->setAccessibleName(text);
  button->setAutoRaise(true);
  line.addWidget(button);
  return button;
}

// Markdown says nothing of a table's lines and margins.
void layOutTables(const QTextDocument& document, int margin) {
  for (QTextFrame* frame : document.rootFrame()->childFrames()) {
    auto* table = qobject_cast<QTextTable*>(frame);
    if (table == nullptr) continue;
    QTextTableFormat format = table->format();
    format.setCellPadding(margin);
    format.setCellSpacing(0);
    format.setBorderCollapse(true);
    format.setBorder(1);
    format.setTopMargin(margin);
    format.setBottomMargin(margin);
    table->setFormat(format);
  }
}

}  // namespace

HelpWindow::HelpWindow(const QString& folder, QWidget* parent)
    : QWidget(parent, Qt::Window),
      folder_(folder),
      pages_(guidePages(folder)),
      contents_(new QListWidget(this)),
      browser_(new QTextBrowser(this)),
      search_(new QLineEdit(this)) {
  setWindowTitle(QStringLiteral("Banddesk Guide"));
  contents_->setAccessibleName(QStringLiteral("Contents"));
  browser_->setAccessibleName(QStringLiteral("Guide"));
  browser_->setOpenExternalLinks(true);
  browser_->document()->setDocumentMargin(fontMetrics().averageCharWidth() * 2);
  for (const GuidePage& page : pages_) contents_->addItem(page.title);

  auto* splitter = new QSplitter;
  splitter->addWidget(contents_);
  splitter->addWidget(browser_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({sizeInText(*this, 28, 1).width(), sizeInText(*this, 90, 1).width()});
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(makeToolLine());
  layout->addWidget(splitter, 1);
  resize(sizeInText(*this, 120, 40));

  connect(contents_, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row < 0) return;
    const QUrl page = QUrl::fromLocalFile(QDir(folder_).filePath(pages_[row].file));
    if (browser_->source() != page) browser_->setSource(page, QTextDocument::MarkdownResource);
  });
  connect(browser_, &QTextBrowser::sourceChanged, this, [this](const QUrl& page) {
    layOutTables(*browser_->document(), fontMetrics().averageCharWidth());
    markContents(page);
  });
  connect(new QShortcut(QKeySequence::Cancel, this), &QShortcut::activated, this, &QWidget::close);
}

QLayout* HelpWindow::makeToolLine() {
  auto* line = new QHBoxLayout;
  QToolButton* back = addTool(*line, QStringLiteral("Back"), style()->standardIcon(QStyle::SP_ArrowBack));
  QToolButton* forward =
      addTool(*line, QStringLiteral("Forward"), style()->standardIcon(QStyle::SP_ArrowForward));
  back->setEnabled(false);
  forward->setEnabled(false);
  back->setShortcut(QKeySequence::Back);
  forward->setShortcut(QKeySequence::Forward);
  connect(back, &QToolButton::clicked, browser_, &QTextBrowser::backward);
  connect(forward, &QToolButton::clicked, browser_, &QTextBrowser::forward);
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
  connect(browser_, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
  line->addStretch();

  search_->setPlaceholderText(QStringLiteral("Find in page"));
  search_->setAccessibleName(search_->placeholderText());
  search_->setClearButtonEnabled(true);
  line->addWidget(search_);
  QToolButton* previous =
      addTool(*line, QStringLiteral("Previous"), style()->standardIcon(QStyle::SP_ArrowUp));
  QToolButton* next = addTool(*line, QStringLiteral("Next"), style()->standardIcon(QStyle::SP_ArrowDown));
  previous->setShortcut(QKeySequence::FindPrevious);
  next->setShortcut(QKeySequence::FindNext);
  connect(previous, &QToolButton::clicked, this, [this] { find(QTextDocument::FindBackward); });
  connect(next, &QToolButton::clicked, this, [this] { find({}); });
  connect(search_, &QLineEdit::returnPressed, this, [this] { find({}); });
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, search_, [this] {
    search_->setFocus();
    search_->selectAll();
  });
  return line;
}

void HelpWindow::showTopic(const std::string& topic) {
  const GuidePlace place = placeOf(topic, folder_);
  browser_->setSource(QUrl::fromLocalFile(QDir(folder_).filePath(place.file)),
                      QTextDocument::MarkdownResource);
  show();
  goTo(place.heading);
  browser_->setFocus();
  raise();
  activateWindow();
}

void HelpWindow::goTo(const QString& heading) {
  if (heading.isEmpty()) return;
  for (QTextBlock block = browser_->document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0 || block.text() != heading) continue;
    // From the end back up, so that the heading comes to stand at the top.
    browser_->moveCursor(QTextCursor::End);
    browser_->setTextCursor(QTextCursor(block));
    return;
  }
}

void HelpWindow::markContents(const QUrl& page) {
  const QString file = page.fileName();
  const auto known = std::ranges::find_if(pages_, [&](const GuidePage& each) { return each.file == file; });
  contents_->setCurrentRow(known == pages_.end() ? -1 : static_cast<int>(known - pages_.begin()));
}

// Round the end of the page.
void HelpWindow::find(QTextDocument::FindFlags flags) {
  const QString wanted = search_->text();
  if (wanted.isEmpty() || browser_->find(wanted, flags)) return;
  const QTextCursor before = browser_->textCursor();
  browser_->moveCursor(flags.testFlag(QTextDocument::FindBackward) ? QTextCursor::End : QTextCursor::Start);
  if (browser_->find(wanted, flags)) return;
  browser_->setTextCursor(before);
  QApplication::beep();
}

HelpDesk::~HelpDesk() { delete window_; }

HelpWindow& HelpDesk::show(const std::string& topic) {
  QWidget* modal = QApplication::activeModalWidget();
  HelpWindow* window = modal == nullptr ? window_.data() : modal->findChild<HelpWindow*>();
  if (window == nullptr) window = new HelpWindow(folder_, modal);
  if (modal == nullptr) window_ = window;
  window->showTopic(topic);
  return *window;
}

}  // namespace banddesk::desktop
