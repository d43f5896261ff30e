// One page of a print job on the screen, as it will be on paper. It draws the page that shows and no other.
#pragma once

#include <QScrollArea>
#include <memory>

#include "desktop/print/page_output.h"

namespace banddesk::desktop {

class PagePreview final : public QScrollArea {
  Q_OBJECT

 public:
  explicit PagePreview(QWidget* parent);

  // Both outlive what is shown of them.
  void setPaper(const PaperChoice& choice, const PaperLayout& paper);
  void showPage(std::size_t page);
  // The whole page fits into the view, or just its width.
  void setWholePage(bool isWhole);

 private:
  class Sheet;
  void resizeEvent(QResizeEvent* event) override;
  void fit();

  Sheet* sheet_;
  bool isWhole_ = true;
};

}  // namespace banddesk::desktop
