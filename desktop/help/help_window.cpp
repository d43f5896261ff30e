#include "desktop/help/help_window.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextTable>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/base/help_topic.h"
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

// The browser shows pictures at their full width only: those that are wider than the page are made to fit,
// from the file each time, so that they grow with the window again.
void fitPictures(const QTextBrowser& browser, const QDir& folder) {
  QTextDocument& document = *browser.document();
  const double scale = browser.devicePixelRatioF();
  const double room = browser.viewport()->width() - 2 * document.documentMargin();
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      if (!part.fragment().charFormat().isImageFormat()) continue;
      const QTextImageFormat format = part.fragment().charFormat().toImageFormat();
      QImage picture(folder.filePath(format.name()));
      if (picture.isNull() || room < 1) continue;
      if (picture.width() > room) {
        picture =
            picture.scaledToWidth(std::min(picture.width(), qRound(room * scale)), Qt::SmoothTransformation);
        picture.setDevicePixelRatio(picture.width() / room);
      }
      document.addResource(QTextDocument::ImageResource, document.baseUrl().resolved(QUrl(format.name())),
                           picture);
    }
  }
  document.markContentsDirty(0, document.characterCount());
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
  // With a bar that comes and goes, pictures that fit the page's width would fit neither way.
  browser_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  browser_->document()->setDocumentMargin(fontMetrics().averageCharWidth() * 2);
  for (const GuidePage& page : pages_) contents_->addItem(page.title);

  auto* splitter = new QSplitter;
  splitter->addWidget(contents_);
  splitter->addWidget(browser_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({sizeInText(*this, 28, 1).width(), sizeInText(*this, 110, 1).width()});
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(makeToolLine());
  layout->addWidget(splitter, 1);
  resize(sizeInText(*this, 140, 44));

  connect(contents_, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row < 0) return;
    const QUrl page = QUrl::fromLocalFile(QDir(folder_).filePath(pages_[row].file));
    if (browser_->source() != page) browser_->setSource(page, QTextDocument::MarkdownResource);
  });
  connect(browser_, &QTextBrowser::sourceChanged, this, [this](const QUrl& page) {
    layOutTables(*browser_->document(), fontMetrics().averageCharWidth());
    fitPictures(*browser_, QDir(folder_));
    markContents(page);
  });
  browser_->viewport()->installEventFilter(this);
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

bool HelpWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) fitPictures(*browser_, QDir(folder_));
  return QWidget::eventFilter(watched, event);
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

HelpDesk::HelpDesk(QString folder) : folder_(std::move(folder)) { qApp->installEventFilter(this); }

HelpDesk::~HelpDesk() { delete window_; }

bool HelpDesk::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_F1) return false;
  const std::string topic = helpTopicAt(qobject_cast<QWidget*>(watched));
  if (topic.empty()) return false;
  show(topic);
  return true;
}

HelpWindow& HelpDesk::show(const std::string& topic) {
  QWidget* modal = QApplication::activeModalWidget();
  HelpWindow* window = modal == nullptr ? window_.data() : modal->findChild<HelpWindow*>();
  if (window == nullptr) window = new HelpWindow(folder_, modal);
  if (modal == nullptr) window_ = window;
  window->showTopic(topic);
  return *window;
}

}  // namespace banddesk::desktop
