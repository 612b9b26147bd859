#include "BarColorPicture.h"

#include <algorithm>

namespace BarColorPicture {

const QString bmphdr = QStringLiteral(
    "Qk2OAAAAAAAAAIoAAAB8AAAAAQAAAAEAAAABACAAAwAAAAQAAAAXAAAAFwAAAAAAAAAAAAAAAAAA/wAA/wAA/wAA/wAAAEJHUnMA"
    "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAACAAAAAAAAAAAAAAAAAAAA");

QString base64encode(int r, int g, int b, int a)
{
    const char bytes[4] = {char(a), char(b), char(g), char(r)};
    return QString::fromLatin1(QByteArray(bytes, 4).toBase64());
}

QByteArray picture(const QColor &color)
{
    // Truncated, not rounded: the bar shows the colour the fade computed, byte for byte.
    const auto channel = [](float value) { return std::clamp(int(value * 255), 0, 255); };
    const QString text = bmphdr + base64encode(channel(color.redF()), channel(color.greenF()), channel(color.blueF()), channel(color.alphaF()));
    const auto decoded = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? *decoded : QByteArray();
}

}
