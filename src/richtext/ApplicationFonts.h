#pragma once

// Registers the font names the style sheets use ("OpenSans-Bold", ...) with the faces they
// stand for, for the families this machine has. Call once the GUI application exists.
void registerApplicationFonts();
