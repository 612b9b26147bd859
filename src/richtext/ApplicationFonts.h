#pragma once

// Loads the bundled fonts (Open Sans in its seven faces and Velmora-Icons) and registers the
// names the style sheets use ("OpenSans-Bold", "Velmora-Icons", ...) with the faces they stand
// for. Call once the GUI application exists; later calls do nothing. Answers false when a
// bundled font could not be loaded.
bool registerApplicationFonts();
