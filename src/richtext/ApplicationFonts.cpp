#include "richtext/ApplicationFonts.h"

#include "platform/Logging.h"
#include "richtext/FontRegistry.h"

#include <QFontDatabase>

void registerApplicationFonts()
{
    const QString openSans = QStringLiteral("Open Sans");
    if (!QFontDatabase::families().contains(openSans)) {
        qCWarning(lcRichText) << "Open Sans is not installed; styled text falls back to the label font";
        return;
    }
    struct Name {
        const char *name;
        int weight;
        bool italic;
    };
    static const Name names[] = {
        {"OpenSans", 400, false},       {"OpenSans-Light", 300, false},  {"OpenSans-Semibold", 600, false},
        {"OpenSans-Bold", 700, false},  {"OpenSans-Extrabold", 800, false}, {"OpenSans-Italic", 400, true},
        {"OpenSans-BoldItalic", 700, true},
    };
    FontRegistry &registry = FontRegistry::shared();
    for (const Name &n : names)
        registry.registerFace(QString::fromLatin1(n.name), FontFace{openSans, n.weight, n.italic});
    registry.registerFace(FontRegistry::systemFontName(), FontFace{openSans, 400, false});
}
