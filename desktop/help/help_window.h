// The guide in a window: contents at the left, the page at the right, back and forward, search in the page.
// Nothing is fetched from a network; a link that leads there opens in the user's browser.
#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QTextBrowser>
#include <string>

#include "desktop/help/guide.h"

namespace banddesk::desktop {

class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  HelpWindow(const QString& folder, QWidget* parent);

  // Shows the window in front with the page that answers for the topic; an empty one is the start.
  void showTopic(const std::string& topic);

  const QTextBrowser& browser() const { return *browser_; }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  QLayout* makeToolLine();
  void goTo(const QString& heading);
  void markContents(const QUrl& page);
  void find(QTextDocument::FindFlags flags);

  QString folder_;
  QList<GuidePage> pages_;
  QListWidget* contents_;
  QTextBrowser* browser_;
  QLineEdit* search_;
};

// The help of one program: a window of its own, but within a modal window when one is open, which would block
// any other.
class HelpDesk final : public QObject {
 public:
  explicit HelpDesk(QString folder = guideFolder());
  ~HelpDesk() override;

  // The window that shows the topic.
  HelpWindow& show(const std::string& topic);

 private:
  // F1 in windows that have no command for it: dialogs.
  bool eventFilter(QObject* watched, QEvent* event) override;

  QString folder_;
  QPointer<HelpWindow> window_;
};

}  // namespace banddesk::desktop
