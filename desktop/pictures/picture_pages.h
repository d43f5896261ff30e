// The pictures of a table, each a page under the common tools.
#pragma once

#include <QDoubleSpinBox>
#include <QSpinBox>

#include "desktop/pictures/picture_page.h"
#include "host/pictures/gel.h"
#include "host/statistics/bootstrap.h"
#include "host/statistics/ordination.h"

namespace banddesk::desktop {

// The samples on two axes of their principal coordinates.
class ScatterPage final : public PicturePage {
  Q_OBJECT

 public:
  ScatterPage(const PictureSubject& subject, QWidget* parent);

 private:
  BackgroundWork::Work calculation(std::shared_ptr<const Table> table) override;
  host::pictures::Drawing draw(const Table& table, const Bands& bands) const override;
  void fillAxes();

  std::optional<host::statistics::Ordination> ordination_;
  QComboBox* measure_;
  QCheckBox* squareRoot_;
  QComboBox* across_;
  QComboBox* up_;
};

class DendrogramPage final : public PicturePage {
  Q_OBJECT

 public:
  DendrogramPage(const PictureSubject& subject, QWidget* parent);

 private:
  BackgroundWork::Work calculation(std::shared_ptr<const Table> table) override;
  host::pictures::Drawing draw(const Table& table, const Bands& bands) const override;
  std::set<std::size_t> samplesAt(const Hit& hit) const override;
  void doubleClicked(const Hit& hit) override;

  host::statistics::Tree tree_;
  std::optional<double> cophenetic_;
  std::set<std::size_t> collapsed_;
  QComboBox* method_;
  QComboBox* measure_;
  QSpinBox* bootstraps_;
};

// The table in the order of its dendrogram.
class HeatMapPage final : public PicturePage {
  Q_OBJECT

 public:
  HeatMapPage(const PictureSubject& subject, QWidget* parent);

 private:
  BackgroundWork::Work calculation(std::shared_ptr<const Table> table) override;
  host::pictures::Drawing draw(const Table& table, const Bands& bands) const override;
  std::set<std::size_t> samplesAt(const Hit& hit) const override;

  host::statistics::Tree tree_;
  QComboBox* cells_;
  QComboBox* measure_;
};

// Fragments of the chosen dyes that the samples of a table have, in bins or not.
using LaneFragments = std::vector<std::vector<host::pictures::GelFragment>>;

class HistogramPage final : public PicturePage {
  Q_OBJECT

 public:
  HistogramPage(const PictureSubject& subject, QWidget* parent);

 private:
  BackgroundWork::Work calculation(std::shared_ptr<const Table> table) override;
  host::pictures::Drawing draw(const Table& table, const Bands& bands) const override;

  LaneFragments fragments_;
  QComboBox* what_;
  QDoubleSpinBox* width_;
  DyeBoxes dyes_;
};

class PlatePage final : public PicturePage {
  Q_OBJECT

 public:
  PlatePage(const PictureSubject& subject, QWidget* parent);

 private:
  BackgroundWork::Work calculation(std::shared_ptr<const Table> table) override;
  host::pictures::Drawing draw(const Table& table, const Bands& bands) const override;

  LaneFragments fragments_;
  QComboBox* figure_;
  DyeBoxes dyes_;
};

class GelPage final : public PicturePage {
  Q_OBJECT

 public:
  GelPage(const PictureSubject& subject, QWidget* parent);

 private:
  BackgroundWork::Work calculation(std::shared_ptr<const Table> table) override;
  host::pictures::Drawing draw(const Table& table, const Bands& bands) const override;
  std::vector<std::size_t> order(const Bands& bands) const;

  LaneFragments fragments_;
  std::vector<std::size_t> treeOrder_;
  QComboBox* order_;
  DyeBoxes dyes_;
  QCheckBox* hasBins_;
  QCheckBox* isSmallOnTop_;
  QSpinBox* black_;
};

}  // namespace banddesk::desktop
