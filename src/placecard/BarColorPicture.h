#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>

// The card's bar takes its colour as a one-pixel bitmap: a constant BMP header (BITMAPV5, 32
// bits, BI_BITFIELDS) followed by the pixel's four bytes. The header is a whole number of base64
// groups, so the pixel's base64 text is appended to it and the joined text decodes to the file.
namespace BarColorPicture {

// The first 138 bytes of the 142-byte file, in base64 without padding (184 characters).
extern const QString bmphdr;

// The pixel's bytes in file order (alpha, blue, green, red), in base64 (8 characters).
QString base64encode(int r, int g, int b, int a);

// The whole file for `color`, each channel truncated to 0..255; empty if the text won't decode.
QByteArray picture(const QColor &color);

}
