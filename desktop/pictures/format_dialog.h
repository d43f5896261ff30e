// Writes a table for other programs: which format, with which groups, and what the files will look like.
#pragma once

#include <QDialog>
#include <memory>

#include "desktop/pictures/picture_context.h"
#include "host/formats/format.h"
#include "host/framework/plain_table.h"

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace banddesk::desktop {

class FormatDialog final : public QDialog {
  Q_OBJECT

 public:
  // Groups are those of the pictures to begin with, and become theirs when the files are written.
  FormatDialog(std::shared_ptr<const host::PlainTable> table, PictureContext& context, const QString& name,
               QWidget* parent);

  void chooseFormat(std::string_view name);
  // The files as they would be written beside this name. Raises an Error where the table does not fit.
  host::formats::Parts parts(const QString& fileName) const;
  // All files, or none.
  void writeTo(const QString& path) const;

 private:
  const host::formats::Format& format() const;
  host::statistics::BandMatrix bands() const;
  GroupSource groups() const;
  void askGroupFile();
  void look();
  void showParts(const host::formats::Parts& parts, const QString& fileName);
  void save();

  std::shared_ptr<const host::PlainTable> table_;
  PictureContext& context_;
  QString name_;
  QListWidget* formats_;
  QLabel* about_;
  QComboBox* groupKind_;
  QLineEdit* groupText_;
  QPushButton* groupFile_;
  QDoubleSpinBox* missingBelow_;
  QLabel* trouble_;
  QTabWidget* preview_;
  QPushButton* save_;
};

}  // namespace banddesk::desktop
