#include "desktop/window/page_area.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStyle>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/base/qt_text.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

// More tabs do without buttons to close them: each would cost the bar a pass over all tabs.
constexpr int kTabsWithButtons = 100;
constexpr std::size_t kTabsAtOnce = 8;  // more change out of sight

// A tab takes an ampersand for an accelerator.
QString captionOf(const host::HostPage& page) {
  return toQString(page.Caption()).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// A bar that does not measure its tabs while very many of them come or go.
class PageTabs final : public QTabBar {
 public:
  using QTabBar::QTabBar;
  bool isChanging = false;

 protected:
  QSize tabSizeHint(int index) const override {
    return isChanging ? QSize(1, 1) : QTabBar::tabSizeHint(index);
  }
  QSize minimumTabSizeHint(int index) const override {
    return isChanging ? QSize(1, 1) : QTabBar::minimumTabSizeHint(index);
  }
};

}  // namespace

PageArea::PageArea(host::Host& host, MakeWidget makeWidget, QWidget* parent)
    : QTabWidget(parent), host_(host), makeWidget_(std::move(makeWidget)) {
  setTabBar(new PageTabs(this));
  setTabsClosable(true);
  setMovable(true);
  setDocumentMode(true);
  setElideMode(Qt::ElideRight);
  tabBar()->setAccessibleName(QStringLiteral("Pages"));
  followPages();
  connect(this, &QTabWidget::tabCloseRequested, this, [this](int index) {
    if (const auto page = pageOf(widget(index))) Q_EMIT closeChosen(page);
  });
  connect(this, &QTabWidget::currentChanged, this, [this] {
    if (isChanging_) return;
    fillCurrent();
    Q_EMIT pageChanged();
  });
  tabBar()->installEventFilter(this);
  tabBar()->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(tabBar(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    if (const int index = tabBar()->tabAt(at); index >= 0) runMenu(index, tabBar()->mapToGlobal(at));
  });
  later_.setSingleShot(true);
  connect(&later_, &QTimer::timeout, this, [this] { settle(); });
}

PageArea::~PageArea() {
  connections_.clear();
  disconnect();  // tabs that go are no news any more
}

void PageArea::followPages() {
  host::PageWatch& watch = host_.pages().watch;
  connections_.push_back(watch.Shown.connect([this](host::HostPage& page) { show(page); }));
  connections_.push_back(watch.Ended.connect([this](const host::HostPage& page) { end(page); }));
  connections_.push_back(watch.Replaced.connect(
      [this](const host::HostPage& former, host::HostPage& page) { replace(former, page); }));
  connections_.push_back(watch.Changed.connect([this](const host::HostPage& page) { change(page); }));
  connections_.push_back(watch.UserActed.connect([this](const host::HostPage&) { Q_EMIT pageChanged(); }));
}

std::shared_ptr<host::HostPage> PageArea::sharedPage(const host::HostPage& page) const {
  for (const auto& open : host_.pages().openPages()) {
    if (open.get() == &page) return open;
  }
  return nullptr;
}

std::shared_ptr<host::HostPage> PageArea::currentPage() const { return pageOf(currentWidget()); }

std::shared_ptr<host::HostPage> PageArea::pageOf(const QWidget* content) const {
  for (const auto& [page, tab] : tabs_) {
    if (content != nullptr && (tab.frame == content || tab.content == content)) return sharedPage(*page);
  }
  return nullptr;
}

QWidget* PageArea::contentOf(const host::HostPage& page) {
  addWaiting();
  const auto found = tabs_.find(&page);
  if (found == tabs_.end()) return nullptr;
  if (const auto open = sharedPage(page)) fill(*open);
  return found->second.content;
}

void PageArea::show(host::HostPage& page) {
  if (std::ranges::find(waiting_, &page) != waiting_.end()) return;
  if (tabs_.contains(&page)) return bringToFront(page);
  waiting_.push_back(&page);
  // The controls of the plug-in's pages need their widgets at once.
  if (page.control())
    settle();
  else
    later_.start(0);
}

void PageArea::settle() {
  later_.stop();
  removeEnded();
  addWaiting();
  fillCurrent();
  Q_EMIT pageChanged();
}

void PageArea::changeTabs(std::size_t howMany, const std::function<void()>& change) {
  const QScopedValueRollback changing(isChanging_, true);
  const bool isMany = howMany > kTabsAtOnce;
  auto& bar = static_cast<PageTabs&>(*tabBar());
  if (isMany) hide();
  bar.isChanging = isMany;
  change();
  bar.isChanging = false;
  setTabsClosable(count() <= kTabsWithButtons);
  if (isMany) setVisible(true);
}

// The last of them comes to the front.
void PageArea::addWaiting() {
  if (waiting_.empty()) return;
  const auto pages = std::exchange(waiting_, {});
  if (count() + static_cast<int>(pages.size()) > kTabsWithButtons) setTabsClosable(false);
  changeTabs(pages.size(), [&] {
    for (host::HostPage* page : pages) add(*page);
  });
  if (tabs_.contains(pages.back())) bringToFront(*pages.back());
}

void PageArea::removeEnded() {
  if (ended_.empty()) return;
  const auto frames = std::exchange(ended_, {});
  changeTabs(frames.size(), [&] {
    for (QWidget* frame : frames) {
      removeTab(indexOf(frame));
      // The page may have ended at a click on one of its own widgets.
      frame->deleteLater();
    }
  });
}

QWidget* PageArea::makeFrame(host::HostPage& page) {
  auto frame = std::make_unique<QWidget>();
  auto* column = new QVBoxLayout(frame.get());
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  tabs_[&page].frame = frame.get();
  if (page.control()) fill(page);
  if (page.control() && tabs_[&page].content == nullptr) return tabs_.erase(&page), nullptr;
  return frame.release();
}

void PageArea::add(host::HostPage& page) {
  QWidget* const frame = makeFrame(page);
  if (frame == nullptr) return;
  setTabToolTip(addTab(frame, captionOf(page)), toQString(page.Caption()).toHtmlEscaped());
}

void PageArea::fill(host::HostPage& page) {
  Tab& tab = tabs_.at(&page);
  if (tab.content != nullptr) return;
  guarded([&] {
    tab.content = makeWidget_(page, tab.frame);
    static_cast<QVBoxLayout*>(tab.frame->layout())->addWidget(tab.content, 1);
    tab.content->show();  // now, and not when the layout comes to it
  });
}

void PageArea::fillCurrent() {
  const auto page = currentPage();
  if (!page || tabs_.at(page.get()).content != nullptr) return;
  fill(*page);
  QWidget* content = tabs_.at(page.get()).content;
  const QWidget* focus = QApplication::focusWidget();
  if (content != nullptr && (focus == nullptr || isAncestorOf(focus))) content->setFocus();
}

void PageArea::bringToFront(host::HostPage& page) {
  const Tab& tab = tabs_.at(&page);
  setCurrentWidget(tab.frame);
  fill(page);
  if (tab.content != nullptr) tab.content->setFocus();
}

// ---- closing by the tabs

bool PageArea::eventFilter(QObject* watched, QEvent* event) {
  if (watched != tabBar() || event->type() != QEvent::MouseButtonRelease)
    return QTabWidget::eventFilter(watched, event);
  const auto* mouse = static_cast<QMouseEvent*>(event);
  if (mouse->button() != Qt::MiddleButton) return false;
  const int index = tabBar()->tabAt(mouse->position().toPoint());
  if (index >= 0) Q_EMIT tabCloseRequested(index);
  return true;
}

void PageArea::runMenu(int index, const QPoint& where) {
  const auto page = pageOf(widget(index));
  if (!page) return;
  QMenu menu(this);
  const QAction* close = menu.addAction(QStringLiteral("&Close"));
  QAction* others = menu.addAction(QStringLiteral("Close &Others"));
  others->setEnabled(count() > 1);
  const QAction* all = menu.addAction(QStringLiteral("Close &All"));
  const QAction* taken = menu.exec(where);
  if (taken == close) Q_EMIT closeChosen(page);
  if (taken == others) closeAll(page.get());
  if (taken == all) closeAll(nullptr);
}

// The user may want to stay on a page; the rest stays open then.
void PageArea::closeAll(const host::HostPage* except) {
  const auto open = host_.pages().openPages();
  for (const auto& page : open) {
    if (page.get() == except || !tabs_.contains(page.get())) continue;
    Q_EMIT closeChosen(page);
    if (tabs_.contains(page.get())) return;
  }
}

// In the same tab, in front if that was in front.
void PageArea::replace(const host::HostPage& former, host::HostPage& page) {
  const auto found = tabs_.find(&former);
  if (found == tabs_.end()) return;
  const int index = indexOf(found->second.frame);
  const bool isInFront = currentIndex() == index;
  if (QWidget* const frame = makeFrame(page)) {
    setTabToolTip(insertTab(index, frame, captionOf(page)), toQString(page.Caption()).toHtmlEscaped());
    if (isInFront) bringToFront(page);
  }
  end(former);
  removeEnded();
}

void PageArea::makeBar(Tab& tab, const host::HostPage& page) {
  tab.bar = new QWidget(tab.frame);
  static_cast<QVBoxLayout*>(tab.frame->layout())->insertWidget(0, tab.bar);
  auto* row = new QHBoxLayout(tab.bar);
  auto* icon = new QLabel(tab.bar);
  icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(fontMetrics().height()));
  auto* label = new QLabel(tab.bar);
  label->setObjectName(QStringLiteral("failure"));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  auto* reopen = new QPushButton(QStringLiteral("&Reopen the page"), tab.bar);
  auto* dismiss = new QPushButton(QStringLiteral("Dismiss"), tab.bar);
  row->addWidget(icon);
  row->addWidget(label, 1);
  row->addWidget(reopen);
  row->addWidget(dismiss);
  const host::HostPage* failed = &page;
  connect(reopen, &QPushButton::clicked, this, [this, failed] {
    if (const auto open = sharedPage(*failed)) Q_EMIT reopenChosen(open);
  });
  connect(dismiss, &QPushButton::clicked, tab.bar, &QWidget::hide);
}

void PageArea::showFailure(const QString& what) {
  const auto page = currentPage();
  if (!page || page->DefinitionName() != names::kResultsPage) return;
  showFailure(*page, QStringLiteral(
                         "Something on this page failed: %1 The table may be incomplete or locked until the "
                         "page is opened again.")
                         .arg(what.endsWith(QLatin1Char('.')) ? what : what + QLatin1Char('.')));
}

void PageArea::showFailure(const host::HostPage& page, const QString& line) {
  const auto found = tabs_.find(&page);
  if (found == tabs_.end()) return;
  Tab& tab = found->second;
  if (tab.bar == nullptr) makeBar(tab, page);
  tab.bar->findChild<QLabel*>(QStringLiteral("failure"))->setText(line);
  tab.bar->show();
}

void PageArea::end(const host::HostPage& page) {
  std::erase(waiting_, &page);
  const auto found = tabs_.find(&page);
  if (found == tabs_.end()) return;
  ended_.push_back(found->second.frame);
  tabs_.erase(found);
  later_.start(0);
}

void PageArea::change(const host::HostPage& page) {
  const auto found = tabs_.find(&page);
  if (found == tabs_.end()) return;
  const int index = indexOf(found->second.frame);
  setTabText(index, captionOf(page));
  setTabToolTip(index, toQString(page.Caption()).toHtmlEscaped());
  Q_EMIT pageChanged();
}

}  // namespace banddesk::desktop
