#pragma once

// Registers every screen of the application with the Storyboard registry, once. Screens whose
// own issue hasn't landed yet are registered as placeholders under their real identifiers, so
// the code that opens them is already the final code.
void registerApplicationScenes();
