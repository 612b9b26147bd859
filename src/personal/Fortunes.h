#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The fortune-cookie sentences: one shuffled list per language, handed out in that order and
// round again, and the recent shakes, so that seven within 30 seconds earn a warning instead.
class Fortunes
{
public:
    // Reads {"es": [...], "en": [...]} and shuffles each list. False, with nothing loaded and a
    // reason, for anything else (lists of texts only; an empty list would stop the rotation).
    bool load(const QByteArray &json, QString *error);
    // The same from a file or resource; a failure is logged once and leaves no fortunes.
    bool loadFile(const QString &path);

    // A shake at `seconds`: the latest seven are kept.
    void shaken(double seconds);
    const QList<double> &shakes() const { return m_shakes; }

    // What the sheet shows next in `language`: nothing (keep the former text) without a list for
    // it; the warning, with the count started afresh, after seven shakes within 30 seconds;
    // otherwise the next sentence, which goes to the back of the list.
    std::optional<QString> next(const QString &language, const QString &warning);

    bool hasList(const QString &language) const { return m_lists.contains(language); }

    static constexpr int shakesKept = 7;
    static constexpr double warningWindowSeconds = 30.0;

private:
    QHash<QString, QStringList> m_lists;
    QList<double> m_shakes;
};
