#include "richtext/FontRegistry.h"

FontRegistry &FontRegistry::shared()
{
    static FontRegistry registry;
    return registry;
}

FontRegistry::FontRegistry()
{
    // The system font always exists; the interface layer may point it at another family.
    m_faces.insert(systemFontName(), FontFace{QStringLiteral("Open Sans"), 400, false});
}

void FontRegistry::registerFace(const QString &name, const FontFace &face)
{
    QWriteLocker lock(&m_lock);
    m_faces.insert(name, face);
}

std::optional<FontFace> FontRegistry::face(const QString &name) const
{
    QReadLocker lock(&m_lock);
    const auto it = m_faces.constFind(name);
    if (it == m_faces.constEnd())
        return std::nullopt;
    return *it;
}
