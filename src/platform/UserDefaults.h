#pragma once

#include <QDateTime>
#include <QList>
#include <QMutex>
#include <mutex>
#include <QObject>
#include <QVariantMap>

#include <memory>

class QSettings;

// The persisted settings store. A value is looked up in three layers: forced values (set by a
// deployment and not changeable by the app), then what the user's actions stored, then the
// registered defaults read from resources/Defaults.json at launch. Every write is synced at
// once, because nothing is saved when the app goes away.
class UserDefaults : public QObject
{
    Q_OBJECT
public:
    explicit UserDefaults(const QString &filePath, QObject *parent = nullptr);
    ~UserDefaults() override;

    // The process-wide store under Paths::applicationSupport(). Tests install a fresh one.
    static UserDefaults &standard();
    static void setStandard(std::unique_ptr<UserDefaults> defaults);

    void registerDefaults(const QVariantMap &defaults);
    // Reads a JSON object from `path` (a file or a Qt resource); false if it can't.
    bool registerDefaultsFromFile(const QString &path);
    void setForcedValues(const QVariantMap &forced);

    QVariant objectForKey(const QString &key) const;
    bool boolForKey(const QString &key) const;
    int integerForKey(const QString &key) const;
    double doubleForKey(const QString &key) const;
    QString stringForKey(const QString &key) const;
    QDateTime dateForKey(const QString &key) const;
    QList<int> intArrayForKey(const QString &key) const;
    QVariantMap dictionaryForKey(const QString &key) const;

    void setObject(const QVariant &value, const QString &key);
    void setBool(bool value, const QString &key) { setObject(value, key); }
    void setInteger(int value, const QString &key) { setObject(value, key); }
    void setDouble(double value, const QString &key) { setObject(value, key); }
    void setString(const QString &value, const QString &key) { setObject(value, key); }
    void setDate(const QDateTime &value, const QString &key) { setObject(value, key); }
    void setIntArray(const QList<int> &value, const QString &key);
    void removeObjectForKey(const QString &key);

    QVariantMap dictionaryRepresentation() const;
    bool objectIsForcedForKey(const QString &key) const;

signals:
    void keyChanged(const QString &key);

private:
    mutable std::mutex m_mutex;
    std::unique_ptr<QSettings> m_settings;
    QVariantMap m_registered;
    QVariantMap m_forced;
};
