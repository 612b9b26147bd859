#include "richtext/ApplicationFonts.h"

#include "platform/Logging.h"
#include "richtext/FontRegistry.h"
#include "richtext/IconFont.h"

#include <QFontDatabase>
#include <QStringList>

namespace {

struct BundledFace {
    const char *sheetName; // as the style sheets write it
    const char *file;      // under :/fonts
    int weight;
    bool italic;
};

constexpr BundledFace bundledFaces[] = {
    {"OpenSans", "open-sans/OpenSans-Regular.ttf", 400, false},
    {"OpenSans-Light", "open-sans/OpenSans-Light.ttf", 300, false},
    {"OpenSans-Semibold", "open-sans/OpenSans-Semibold.ttf", 600, false},
    {"OpenSans-Bold", "open-sans/OpenSans-Bold.ttf", 700, false},
    {"OpenSans-Extrabold", "open-sans/OpenSans-ExtraBold.ttf", 800, false},
    {"OpenSans-Italic", "open-sans/OpenSans-Italic.ttf", 400, true},
    {"OpenSans-BoldItalic", "open-sans/OpenSans-BoldItalic.ttf", 700, true},
    {"Velmora-Icons", "Velmora-Icons.ttf", 400, false},
};

// The family a bundled file declares, or empty when it could not be loaded.
QString loadFamily(const char *file)
{
    const QString path = QStringLiteral(":/fonts/") + QString::fromLatin1(file);
    const int id = QFontDatabase::addApplicationFont(path);
    const QStringList families = id < 0 ? QStringList() : QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty())
        qCCritical(lcRichText) << "The bundled font" << path << "could not be loaded";
    return families.value(0);
}

bool registerOnce()
{
    bool complete = true;
    FontRegistry &registry = FontRegistry::shared();
    for (const BundledFace &face : bundledFaces) {
        const QString family = loadFamily(face.file);
        if (family.isEmpty()) {
            complete = false;
            continue;
        }
        registry.registerFace(QString::fromLatin1(face.sheetName), FontFace{family, face.weight, face.italic});
    }
    // Runs with no font of their own start from the system font, which here is Open Sans.
    if (const auto regular = registry.face(QStringLiteral("OpenSans")))
        registry.registerFace(FontRegistry::systemFontName(), *regular);
    return complete;
}

}

bool registerApplicationFonts()
{
    static const bool complete = registerOnce();
    return complete;
}
