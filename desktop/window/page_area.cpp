#include "desktop/window/page_area.h"

#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTabBar>
#include <QVBoxLayout>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

// A tab takes an ampersand for an accelerator.
QString captionOf(const host::HostPage& page) {
  return toQString(page.Caption()).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace

PageArea::PageArea(host::Host& host, MakeWidget makeWidget, QWidget* parent)
    : QTabWidget(parent), host_(host), makeWidget_(std::move(makeWidget)) {
  setTabsClosable(true);
  setMovable(true);
  setDocumentMode(true);
  setElideMode(Qt::ElideRight);
  tabBar()->setAccessibleName(QStringLiteral("Pages"));
  host_.pages().watch = {[this](host::HostPage& page) { show(page); },
                         [this](host::HostPage& page) { end(page); },
                         [this](host::HostPage& page) { change(page); },
                         [this](const host::HostPage&) {
                           if (onCurrent) onCurrent();
                         }};
  connect(this, &QTabWidget::tabCloseRequested, this, [this](int index) {
    if (const auto page = pageOf(widget(index)); page && onClose) onClose(page);
  });
  connect(this, &QTabWidget::currentChanged, this, [this] {
    if (onCurrent) onCurrent();
  });
}

PageArea::~PageArea() {
  host_.pages().watch = {};
  onCurrent = nullptr;
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

QWidget* PageArea::contentOf(const host::HostPage& page) const {
  const auto found = tabs_.find(&page);
  return found == tabs_.end() ? nullptr : found->second.content;
}

void PageArea::show(host::HostPage& page) {
  if (const auto found = tabs_.find(&page); found != tabs_.end()) {
    setCurrentWidget(found->second.frame);
    return;
  }
  guarded([&] {
    auto frame = std::make_unique<QWidget>();
    Tab tab{frame.get(), nullptr, makeWidget_(page, frame.get())};
    auto* column = new QVBoxLayout(tab.frame);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    makeBar(tab, page);
    column->addWidget(tab.bar);
    column->addWidget(tab.content, 1);
    tabs_[&page] = tab;
    const int index = addTab(frame.release(), captionOf(page));
    setTabToolTip(index, toQString(page.Caption()).toHtmlEscaped());
    setCurrentIndex(index);
    tab.content->setFocus();
  });
}

void PageArea::makeBar(Tab& tab, const host::HostPage& page) {
  tab.bar = new QWidget(tab.frame);
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
    if (const auto open = sharedPage(*failed); open && onReopen) onReopen(open);
  });
  connect(dismiss, &QPushButton::clicked, tab.bar, &QWidget::hide);
  tab.bar->hide();
}

void PageArea::showFailure(const QString& what) {
  const auto page = currentPage();
  if (!page || page->DefinitionName() != "AFLP") return;
  const Tab& tab = tabs_.at(page.get());
  tab.bar->findChild<QLabel*>(QStringLiteral("failure"))
      ->setText(
          QStringLiteral("Something on this page failed: %1 The table may be incomplete or locked until the "
                         "page is opened again.")
              .arg(what.endsWith(QLatin1Char('.')) ? what : what + QLatin1Char('.')));
  tab.bar->show();
}

void PageArea::end(const host::HostPage& page) {
  const auto found = tabs_.find(&page);
  if (found == tabs_.end()) return;
  QWidget* frame = found->second.frame;
  tabs_.erase(found);
  removeTab(indexOf(frame));
  // The page may end at a click on one of its own widgets.
  frame->deleteLater();
}

void PageArea::change(const host::HostPage& page) {
  const auto found = tabs_.find(&page);
  if (found == tabs_.end()) return;
  const int index = indexOf(found->second.frame);
  setTabText(index, captionOf(page));
  setTabToolTip(index, toQString(page.Caption()).toHtmlEscaped());
  if (onCurrent) onCurrent();
}

}  // namespace banddesk::desktop
