#include "platform/DerivedKeys.h"

#include <QFile>
#include <QHash>

#include <openssl/evp.h>

#include <atomic>
#include <mutex>

namespace {
// The key derivation of this SQLCipher's format 3: PBKDF2-HMAC-SHA1, 64,000 rounds, a 32-byte key
// over the 16-byte salt that opens the file.
constexpr int saltSize = 16;
constexpr int keySize = 32;
constexpr int rounds = 64000;

std::mutex cacheMutex;
QHash<QByteArray, QByteArray> cache; // passphrase + salt -> hex of the derived key
std::atomic<int> derivations{0};

std::optional<QByteArray> saltOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray salt = file.read(saltSize);
    if (salt.size() != saltSize)
        return std::nullopt;
    return salt;
}
}

QString DerivedKeys::keyStatement(const QString &path, const QString &passphrase)
{
    const QString plain = QStringLiteral("PRAGMA KEY='") + passphrase + QStringLiteral("'");
    const std::optional<QByteArray> salt = saltOf(path);
    if (!salt)
        return plain;
    const QByteArray secret = passphrase.toUtf8();
    const QByteArray cacheKey = secret + '\0' + *salt;
    QByteArray hex;
    {
        std::lock_guard lock(cacheMutex);
        hex = cache.value(cacheKey);
    }
    if (hex.isEmpty()) {
        unsigned char key[keySize];
        if (PKCS5_PBKDF2_HMAC_SHA1(secret.constData(), int(secret.size()),
                                   reinterpret_cast<const unsigned char *>(salt->constData()), saltSize, rounds,
                                   keySize, key) != 1)
            return plain;
        ++derivations;
        hex = QByteArray(reinterpret_cast<const char *>(key), keySize).toHex();
        std::lock_guard lock(cacheMutex);
        cache.insert(cacheKey, hex);
    }
    return QStringLiteral("PRAGMA KEY=\"x'") + QString::fromLatin1(hex) + QStringLiteral("'\"");
}

int DerivedKeys::derivationCount() { return derivations.load(); }
