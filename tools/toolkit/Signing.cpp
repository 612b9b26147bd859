#include "Signing.h"

#include "CatalogueWriter.h"
#include "platform/Signatures.h"
#include "update/SignedFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
QByteArray keyLine(const QByteArray &tag, const QByteArray &key) { return tag + key.toBase64() + '\n'; }

bool writeText(const QString &path, const QByteArray &text, bool ownerOnly, QString *error)
{
    return writeAtomically(path, error, [&](const QString &temporary) {
        QFile file(temporary);
        return file.open(QIODevice::WriteOnly) && (!ownerOnly || file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
            && file.write(text) == text.size();
    });
}
}

bool writeKeyPair(const QString &directory, QString *error)
{
    const QDir dir(directory);
    if (!QDir().mkpath(directory)) {
        *error = QStringLiteral("can't create %1").arg(directory);
        return false;
    }
    if (dir.exists(SignedFiles::secretKeyFile)) {
        *error = QStringLiteral("%1 holds a key already; a new pair would orphan what it signed").arg(dir.filePath(SignedFiles::secretKeyFile));
        return false;
    }
    const Signatures::KeyPair pair = Signatures::generateKeyPair();
    if (pair.secretKey.isEmpty()) {
        *error = QStringLiteral("the crypto library made no key");
        return false;
    }
    return writeText(dir.filePath(SignedFiles::secretKeyFile), keyLine(SignedFiles::secretTag, pair.secretKey), true, error)
        && writeText(dir.filePath(SignedFiles::publicKeyFile), keyLine(SignedFiles::publicTag, pair.publicKey), false, error);
}

QByteArray signFile(const QString &path, const QString &name, const QDate &date, const QByteArray &secretKey, QString *error,
                    const std::optional<QDate> &from)
{
    const QByteArray hash = Signatures::sha256OfFile(path);
    if (hash.isEmpty()) {
        *error = QStringLiteral("can't read %1").arg(path);
        return {};
    }
    const QByteArray message = SignedFiles::signedMessage(name, date, from, QFileInfo(path).size(), hash);
    const QByteArray signature = Signatures::sign(message, secretKey);
    if (signature.isEmpty()) {
        *error = QStringLiteral("not a secret signing key");
        return {};
    }
    return message + "key: " + Signatures::publicKeyFor(secretKey).toBase64() + "\nsignature: " + signature.toBase64() + '\n';
}

bool signPublishedFile(const QString &path, const QDate &date, const QByteArray &secretKey, QString *error, const QString &publishedPath,
                       const std::optional<QDate> &from)
{
    const QString published = publishedPath.isEmpty() ? path : publishedPath;
    const QByteArray text = signFile(path, QFileInfo(published).fileName(), date, secretKey, error, from);
    return !text.isEmpty() && writeText(published + SignedFiles::suffix, text, false, error);
}
