#include "personal/Fortunes.h"

#include "platform/Logging.h"
#include "platform/Shuffle.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

bool Fortunes::load(const QByteArray &json, QString *error)
{
    m_lists.clear();
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parse);
    if (!document.isObject()) {
        *error = parse.error != QJsonParseError::NoError ? parse.errorString() : QStringLiteral("not an object of lists");
        return false;
    }
    QHash<QString, QStringList> lists;
    const QJsonObject languages = document.object();
    for (auto it = languages.begin(); it != languages.end(); ++it) {
        if (!it.value().isArray() || it.value().toArray().isEmpty()) {
            *error = QStringLiteral("\"%1\" is not a list of sentences").arg(it.key());
            return false;
        }
        QStringList sentences;
        for (const QJsonValue &sentence : it.value().toArray()) {
            if (!sentence.isString() || sentence.toString().trimmed().isEmpty()) {
                *error = QStringLiteral("\"%1\" holds something that is not a sentence").arg(it.key());
                return false;
            }
            sentences.append(sentence.toString());
        }
        shuffle(sentences);
        lists.insert(it.key(), sentences);
    }
    m_lists = lists;
    return true;
}

bool Fortunes::loadFile(const QString &path)
{
    QFile file(path);
    QString error;
    if (!file.open(QIODevice::ReadOnly))
        error = file.errorString();
    else if (load(file.readAll(), &error))
        return true;
    qCWarning(lcApp).noquote() << "No fortunes from" << path << ":" << error;
    return false;
}

void Fortunes::shaken(double seconds)
{
    if (m_shakes.size() >= shakesKept)
        m_shakes.removeFirst();
    m_shakes.append(seconds);
}

std::optional<QString> Fortunes::next(const QString &language, const QString &warning)
{
    const auto list = m_lists.find(language);
    if (list == m_lists.end())
        return std::nullopt;
    if (m_shakes.size() >= shakesKept) {
        const auto [earliest, latest] = std::minmax_element(m_shakes.cbegin(), m_shakes.cend());
        if (*latest - *earliest < warningWindowSeconds) {
            m_shakes.clear();
            return warning;
        }
    }
    const QString sentence = list->takeFirst();
    list->append(sentence);
    return sentence;
}
