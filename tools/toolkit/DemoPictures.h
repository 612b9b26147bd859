#pragma once

#include <QByteArray>
#include <QList>

#include <random>

// Pictures for the demo catalogue that read as a guide's photographs: a dish on a table in warm
// light for places and galleries, a terrace at dusk for promotions, a bright banner for ads.
// JPEG bytes, deterministic for the generator's state.
namespace DemoPictures {
QByteArray dish(std::mt19937 &random, int width, int height);
QByteArray terrace(std::mt19937 &random, int width, int height);
QByteArray banner(std::mt19937 &random, int width, int height);
}
