// Asks which of the unsaved items are to be saved.
#pragma once

#include <QWidget>
#include <optional>
#include <string>
#include <vector>

namespace banddesk::desktop {

enum class SaveOccasion { Saving, Closing };

// Modal. The descriptions of the items to save, in the order in which they were given; none when the user
// closes without saving. Nothing: the user takes the saving or closing itself back.
std::optional<std::vector<std::string>> askWhatToSave(const std::vector<std::string>& descriptions,
                                                      SaveOccasion occasion, QWidget* parent);

}  // namespace banddesk::desktop
