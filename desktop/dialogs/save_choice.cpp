#include "desktop/dialogs/save_choice.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/dialog_parts.h"

namespace banddesk::desktop {
namespace {

class SaveChoiceDialog final : public QDialog {
 public:
  SaveChoiceDialog(const std::vector<std::string>& descriptions, SaveOccasion occasion, QWidget* parent)
      : QDialog(parent), descriptions_(descriptions), list_(new QListWidget(this)) {
    const bool isClosing = occasion == SaveOccasion::Closing;
    setWindowTitle(isClosing ? QStringLiteral("Close Study") : QStringLiteral("Save Study"));
    setHelpTopic(*this, QStringLiteral("save"));
    for (const std::string& description : descriptions) {
      auto* item = new QListWidgetItem(toQString(description), list_);
      item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
      item->setCheckState(Qt::Checked);
    }
    list_->setAccessibleName(QStringLiteral("Unsaved items"));
    list_->setTextElideMode(Qt::ElideMiddle);
    auto* label =
        new QLabel(isClosing ? QStringLiteral("These changes are not saved. What is left unchecked is lost.")
                             : QStringLiteral("Save these changes:"));
    label->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(list_, 1);
    layout->addWidget(makeChoices(isClosing));
    resize(sizeInText(*this, 80, 18));
  }

  std::vector<std::string> chosen() const {
    std::vector<std::string> chosen;
    if (!saves_) return chosen;
    for (int row = 0; row < list_->count(); ++row) {
      if (list_->item(row)->checkState() != Qt::Checked) continue;
      chosen.push_back(descriptions_[static_cast<std::size_t>(row)]);
    }
    return chosen;
  }

 private:
  QDialogButtonBox* makeChoices(bool isClosing) {
    auto* box = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    box->button(QDialogButtonBox::Save)->setDefault(true);
    // Without an item to save there would only be the other two.
    connect(list_, &QListWidget::itemChanged, this,
            [this, box] { box->button(QDialogButtonBox::Save)->setEnabled(!chosen().empty()); });
    if (!isClosing) return box;
    QPushButton* discard = box->addButton(QStringLiteral("&Don't Save"), QDialogButtonBox::DestructiveRole);
    connect(discard, &QPushButton::clicked, this, [this] {
      saves_ = false;
      accept();
    });
    return box;
  }

  const std::vector<std::string>& descriptions_;
  QListWidget* list_;
  bool saves_ = true;
};

}  // namespace

std::optional<std::vector<std::string>> askWhatToSave(const std::vector<std::string>& descriptions,
                                                      SaveOccasion occasion, QWidget* parent) {
  SaveChoiceDialog dialog(descriptions, occasion, parent);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.chosen();
}

}  // namespace banddesk::desktop
