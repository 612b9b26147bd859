#pragma once

#include <QDate>
#include <QString>

#include <optional>

// Naming rules of the files the catalogue store deals with.
namespace CatalogueFiles {
// A file of Documents is a candidate catalogue when its lower-cased name starts with "velmora"
// and ends with ".db", or ends with ".vmr" (a file the user copied in).
bool isCandidateName(const QString &fileName);
// "velmora-<yyyyMMdd>.db": the name a new catalogue is stored under.
QString catalogueFileName(QDate versionDate);
// A patch file's two dates, from a name ending in "<from>-<to>.db".
struct PatchDates {
    QString from;
    QString to;
};
std::optional<PatchDates> patchDates(const QString &fileName);
}
