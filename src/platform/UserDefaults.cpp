#include "platform/UserDefaults.h"

#include "platform/Logging.h"
#include "platform/Paths.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <optional>

namespace {
std::unique_ptr<UserDefaults> standardDefaults;
std::mutex standardMutex;

// QSettings keeps '/' as a group separator; settings keys never contain one, but a stray one
// must not silently land in a group, so it is escaped.
QString storageKey(const QString &key)
{
    QString escaped = key;
    return escaped.replace(QLatin1Char('/'), QLatin1String("%2F"));
}
}

UserDefaults::UserDefaults(const QString &filePath, QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
}

UserDefaults::~UserDefaults() = default;

UserDefaults &UserDefaults::standard()
{
    QMutexLocker lock(&standardMutex);
    if (!standardDefaults) {
        const QString support = Paths::applicationSupport();
        standardDefaults = std::make_unique<UserDefaults>(support + QStringLiteral("/UserDefaults.ini"));
        // A deployment may pin settings by dropping a JSON object beside the store.
        QFile forced(support + QStringLiteral("/Forced.json"));
        if (forced.open(QIODevice::ReadOnly))
            standardDefaults->setForcedValues(QJsonDocument::fromJson(forced.readAll()).object().toVariantMap());
    }
    return *standardDefaults;
}

void UserDefaults::setStandard(std::unique_ptr<UserDefaults> defaults)
{
    QMutexLocker lock(&standardMutex);
    standardDefaults = std::move(defaults);
}

void UserDefaults::registerDefaults(const QVariantMap &defaults)
{
    QMutexLocker lock(&m_mutex);
    for (auto it = defaults.begin(); it != defaults.end(); ++it)
        m_registered.insert(it.key(), it.value());
}

bool UserDefaults::registerDefaultsFromFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcPlatform) << "No registered defaults at" << path;
        return false;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject()) {
        qCWarning(lcPlatform) << "Registered defaults at" << path << "are not a JSON object:" << error.errorString();
        return false;
    }
    registerDefaults(document.object().toVariantMap());
    return true;
}

void UserDefaults::setForcedValues(const QVariantMap &forced)
{
    QMutexLocker lock(&m_mutex);
    m_forced = forced;
}

QVariant UserDefaults::objectForKey(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    if (m_forced.contains(key))
        return m_forced.value(key);
    const QVariant stored = m_settings->value(storageKey(key));
    if (stored.isValid())
        return stored;
    return m_registered.value(key);
}

namespace {
// A stored value read as a bool: the store writes bools as text, so "true"/"false" and numbers
// count; anything else is of the wrong type.
std::optional<bool> asBool(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return std::nullopt;
}
}

// A value of the wrong type for what is asked reads as the registered default, as if the key
// held nothing: a damaged or hand-edited store never turns a switch on by accident.
bool UserDefaults::boolForKey(const QString &key) const
{
    if (const std::optional<bool> value = asBool(objectForKey(key)))
        return *value;
    QMutexLocker lock(&m_mutex);
    return asBool(m_registered.value(key)).value_or(false);
}

int UserDefaults::integerForKey(const QString &key) const
{
    bool ok = false;
    const int value = objectForKey(key).toInt(&ok);
    if (ok)
        return value;
    QMutexLocker lock(&m_mutex);
    return m_registered.value(key).toInt();
}

double UserDefaults::doubleForKey(const QString &key) const
{
    bool ok = false;
    const double value = objectForKey(key).toDouble(&ok);
    if (ok)
        return value;
    QMutexLocker lock(&m_mutex);
    return m_registered.value(key).toDouble();
}

QString UserDefaults::stringForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.canConvert<QString>() ? value.toString() : QString();
}

QDateTime UserDefaults::dateForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QDateTime ? value.toDateTime() : QDateTime();
}

QList<int> UserDefaults::intArrayForKey(const QString &key) const
{
    QList<int> result;
    const QVariant value = objectForKey(key);
    // The INI store gives a one-element list back as a plain value; a list of one is still a list.
    const QVariantList list = value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList
        ? value.toList()
        : (value.isValid() && !value.toString().isEmpty() ? QVariantList{value} : QVariantList{});
    for (const QVariant &item : list) {
        bool ok = false;
        const int number = item.toInt(&ok);
        if (ok)
            result.append(number);
    }
    return result;
}

QVariantMap UserDefaults::dictionaryForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QVariantMap ? value.toMap() : QVariantMap();
}

void UserDefaults::setObject(const QVariant &value, const QString &key)
{
    {
        QMutexLocker lock(&m_mutex);
        if (m_forced.contains(key))
            return;
        if (!value.isValid())
            m_settings->remove(storageKey(key));
        else
            m_settings->setValue(storageKey(key), value);
        m_settings->sync();
    }
    emit keyChanged(key);
}

void UserDefaults::setIntArray(const QList<int> &value, const QString &key)
{
    QVariantList list;
    for (int number : value)
        list.append(number);
    setObject(list, key);
}

void UserDefaults::removeObjectForKey(const QString &key)
{
    setObject(QVariant(), key);
}

QVariantMap UserDefaults::dictionaryRepresentation() const
{
    QMutexLocker lock(&m_mutex);
    QVariantMap all = m_registered;
    for (const QString &stored : m_settings->allKeys()) {
        QString key = stored;
        key.replace(QLatin1String("%2F"), QLatin1String("/"));
        all.insert(key, m_settings->value(stored));
    }
    for (auto it = m_forced.begin(); it != m_forced.end(); ++it)
        all.insert(it.key(), it.value());
    return all;
}

bool UserDefaults::objectIsForcedForKey(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    return m_forced.contains(key);
}
