// A report of the reporting service as it is read, printed and kept as a file. The page needs no other file
// and fetches nothing.
#pragma once

#include <QDialog>

class QTextBrowser;

namespace banddesk::desktop {

class ReportWindow final : public QDialog {
  Q_OBJECT
 public:
  ReportWindow(const QString& title, const QString& htmlPage, QWidget* parent);

 private:
  void print();
  void save();

  QString name_;
  QString html_;
  QTextBrowser* text_;
};

}  // namespace banddesk::desktop
