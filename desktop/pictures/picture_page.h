// The pictures of a table as widgets. What all have in common stands here: they follow the table, calculate
// in a thread beside the window's, share the study's selection and groups, and are written to files.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolBar>
#include <QWidget>
#include <array>
#include <memory>

#include "desktop/pictures/background_work.h"
#include "desktop/pictures/drawing_view.h"
#include "desktop/pictures/table_follower.h"

namespace banddesk::desktop {

// The widget of a page that is a picture of an analysis, by its name; null for any other page. Host and
// context outlive it.
QWidget* makePicturePage(host::Host& host, host::HostPage& page, PictureContext& context, QWidget* parent);

// Of what a page shows a picture.
struct PictureSubject {
  host::Host& host;
  std::shared_ptr<AFLP> analysis;
  PictureContext& context;
  QString caption;
};

class PicturePage : public QWidget {
  Q_OBJECT

 public:
  PicturePage(const PictureSubject& subject, QWidget* parent);

  DrawingView& view() const { return *view_; }
  const BackgroundWork& work() const { return *work_; }
  QString trouble() const { return trouble_->text(); }
  // The picture does not show the table as it is.
  bool isOutOfDate() const { return shown_ != follower_->table(); }
  // Reads the table and draws it, again whenever it changes.
  void start();

 protected:
  using Table = host::PlainTable;
  using Bands = host::statistics::BandMatrix;
  using Hit = host::pictures::Hit;
  using Progress = host::statistics::Progress;

  // What has to be calculated before it is drawn, from the options as they are now; the answer keeps the
  // result. It gets the table without groups.
  virtual BackgroundWork::Work calculation(std::shared_ptr<const Table> table) = 0;
  // The table that was calculated, and its bands with the groups as they are now.
  virtual host::pictures::Drawing draw(const Table& table, const Bands& bands) const = 0;
  // The samples that a click means.
  virtual std::set<std::size_t> samplesAt(const Hit& hit) const;
  virtual void doubleClicked(const Hit&) {}

  // With other options: all anew, or only drawn.
  void recalculate();
  void redraw();

  QComboBox* addChoice(const QString& label, const QStringList& items, void (PicturePage::*changed)());
  QCheckBox* addCheck(const QString& text, const QString& tip, bool isChecked,
                      void (PicturePage::*changed)());
  void addOption(const QString& label, QWidget* widget);
  // All dyes, all checked.
  using DyeBoxes = std::array<QCheckBox*, host::kDyeCount>;
  DyeBoxes addDyeBoxes(void (PicturePage::*changed)());
  const AFLP& analysis() const { return *follower_->analysis(); }
  void showEvent(QShowEvent* event) override;

 private:
  void makeTools();
  void makeGroupMenu();
  void makeProgressLine();
  void askGroupFile();
  void askGroupPattern();
  void exportAsked();
  void tableChanged();
  void take(const std::shared_ptr<const Table>& table);
  void showEmphasis();
  void showState();
  void tell(const QString& trouble);
  void guarded(const std::function<void()>& work, const QString& before = {});
  void click(const Hit& hit, bool adds);
  void encircle(const std::set<std::size_t>& samples, bool adds, std::optional<StudySelection::BinPlace> bin);
  QString describe(const Hit& hit) const;

  PictureContext& context_;
  QString caption_;
  TableFollower* follower_;
  BackgroundWork* work_;
  QToolBar* tools_;
  QAction* firstCommonTool_ = nullptr;  // options of a picture stand before it
  QLabel* trouble_;
  QLabel* state_;
  QProgressBar* progress_;
  QWidget* progressLine_;
  QPushButton* cancel_;  // or starts it again
  DrawingView* view_;
  std::shared_ptr<const Table> shown_;  // what is drawn
  Bands bands_;                         // the same with groups
  Connections connections_;
};

}  // namespace banddesk::desktop
