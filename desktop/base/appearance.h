// Light or dark: the palette of the whole program, as the user or the system wants it.
#pragma once

#include <QPalette>

namespace banddesk::desktop {

enum class Appearance { System, Light, Dark };

// Before the first choice, for System to go back to.
void rememberSystemAppearance();
void apply(Appearance appearance);
// As the user chose it last.
Appearance chosenAppearance();
void choose(Appearance appearance);

QPalette darkPalette();

}  // namespace banddesk::desktop
