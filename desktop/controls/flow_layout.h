// Lays blocks side by side and goes on in a further line where the width ends. All blocks of a line are as
// high as its highest.
#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace banddesk::desktop {

class FlowLayout final : public QLayout {
  Q_OBJECT

 public:
  FlowLayout(QWidget* parent, int horizontalGap, int verticalGap);
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override;
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  // The height below `top` that the blocks take in that width; places them if told.
  int lay(const QRect& rect, bool place) const;

  std::vector<std::unique_ptr<QLayoutItem>> items_;
  int horizontalGap_;
  int verticalGap_;
};

}  // namespace banddesk::desktop
