// A user at the screen: real mouse and keys through the display server, and eyes. It lives in a thread of its
// own, because dialogs keep the thread of the widgets busy until they are answered.
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>

namespace banddesk::road {

class User {
 public:
  // Pictures go to the folder.
  explicit User(QString pictures) : pictures_(std::move(pictures)) {}

  // Runs it in the thread of the widgets and waits for it.
  static void look(const std::function<void()>& work);
  template <class Value>
  static Value see(const std::function<Value()>& work) {
    Value value{};
    look([&] { value = work(); });
    return value;
  }

  // Waits until it holds; a failure of the test if it does not for a long time.
  void until(const char* what, const std::function<bool()>& holds);

  void key(const QString& keys);  // "ctrl+s"
  void type(const QString& text);
  void clickAt(QPoint where, int button = 1, int times = 1, const QString& held = {});
  void click(const std::function<QWidget*()>& widget);
  void drag(QPoint from, QPoint to);
  // So long that the next press is no double click.
  static void pause();
  void picture(const QString& name);

  void untilDialog(const QString& title);
  void untilNoDialog();

 private:
  static void send(const QStringList& arguments);

  QString pictures_;
  int taken_ = 0;
};

// The visible button with that text, ampersands left out: in the dialog that is open, or else anywhere.
QWidget* buttonNamed(const QString& text);

}  // namespace banddesk::road
