// The page on which a new analysis gets its first settings, with the OK and Cancel that end it.
#pragma once

#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/pages/bound_page.h"

namespace banddesk::desktop {

class ParamsPageWidget final : public BoundPage {
  Q_OBJECT

 public:
  ParamsPageWidget(host::Host& host, host::HostPage& page, WidgetRegistry& registry, PageActions actions,
                   QWidget* parent);

 protected:
  bool takesKey(int key) override;

 private:
  QWidget* makeParameters(QWidget* parent);
  QWidget* makeDyes(QWidget* parent);
  QLayout* makeButtons(QWidget* parent);
  QWidget* shown(const std::string& control) const;

  QPushButton* ok_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QPushButton* help_ = nullptr;
};

}  // namespace banddesk::desktop
