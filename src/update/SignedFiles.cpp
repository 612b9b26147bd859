#include "update/SignedFiles.h"

#include "catalogue/CatalogueDates.h"
#include "platform/Logging.h"
#include "platform/Signatures.h"

#include <QDir>
#include <QFile>

namespace SignedFiles {

namespace {
const QByteArray header = "velmora-signature 1";
constexpr qsizetype maxKeyFile = 1024;
}

QByteArray signedMessage(const QString &name, const QDate &date, const QByteArray &sha256)
{
    return header + "\nname: " + name.toUtf8() + "\ndate: " + CatalogueDates::formatCompact(date).toLatin1() + "\nsha256: " + sha256.toHex()
        + '\n';
}

std::optional<Signature> parse(const QByteArray &text, QString *why)
{
    const QList<QByteArray> lines = text.trimmed().split('\n');
    if (lines.size() != 6 || lines.first().trimmed() != header) {
        *why = QStringLiteral("not a signature file");
        return std::nullopt;
    }
    Signature signature;
    const auto field = [&lines](int index, const char *name) {
        const QByteArray line = lines.at(index).trimmed();
        const QByteArray prefix = QByteArray(name) + ": ";
        return line.startsWith(prefix) ? std::optional<QByteArray>(line.mid(prefix.size())) : std::nullopt;
    };
    const auto name = field(1, "name"), date = field(2, "date"), hash = field(3, "sha256"), key = field(4, "key"), value = field(5, "signature");
    if (!name || !date || !hash || !key || !value) {
        *why = QStringLiteral("a signature file with a missing line");
        return std::nullopt;
    }
    signature.name = QString::fromUtf8(*name);
    signature.date = CatalogueDates::parseCompact(QString::fromLatin1(*date)).value_or(QDate());
    signature.sha256 = QByteArray::fromHex(*hash);
    signature.publicKey = QByteArray::fromBase64(*key);
    signature.signature = QByteArray::fromBase64(*value);
    if (!signature.date.isValid() || signature.sha256.size() != 32) {
        *why = QStringLiteral("a signature file with a malformed date or hash");
        return std::nullopt;
    }
    return signature;
}

QString check(const QByteArray &signatureText, const QByteArray &sha256, const QString &expectedName,
              const std::optional<QDate> &expectedDate, const QList<QByteArray> &trustedKeys, QDate *signedDate)
{
    QString why;
    const auto signature = parse(signatureText, &why);
    if (!signature)
        return why;
    if (signature->name != expectedName)
        return QStringLiteral("the signature is for %1, not %2").arg(signature->name, expectedName);
    if (expectedDate && signature->date != *expectedDate)
        return QStringLiteral("the signature is for the date %1, not %2")
            .arg(CatalogueDates::formatCompact(signature->date), CatalogueDates::formatCompact(*expectedDate));
    if (signature->sha256 != sha256)
        return QStringLiteral("the file's bytes are not the ones signed");
    if (!trustedKeys.contains(signature->publicKey))
        return QStringLiteral("signed by a key this app doesn't trust");
    if (!Signatures::verify(signedMessage(signature->name, signature->date, signature->sha256), signature->signature, signature->publicKey))
        return QStringLiteral("the signature doesn't hold");
    if (signedDate)
        *signedDate = signature->date;
    return {};
}

QByteArray readKeyFile(const QString &path, bool secret, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxKeyFile) {
        *error = QStringLiteral("can't read the key %1").arg(path);
        return {};
    }
    const QByteArray line = file.readAll().trimmed();
    const QByteArray &tag = secret ? secretTag : publicTag;
    const QByteArray key = line.startsWith(tag) ? QByteArray::fromBase64(line.mid(tag.size())) : QByteArray();
    if (key.size() != 32) {
        *error = QStringLiteral("%1 is not a %2 key").arg(path, secret ? QStringLiteral("secret") : QStringLiteral("public"));
        return {};
    }
    return key;
}

QStringList builtInKeys()
{
    return QStringLiteral(VELMORA_TRUSTED_KEYS).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

QList<QByteArray> trustedKeys(const QString &trustedKeysDirectory)
{
    QList<QByteArray> keys;
    for (const QString &key : builtInKeys())
        if (const QByteArray raw = QByteArray::fromBase64(key.trimmed().toLatin1()); raw.size() == 32)
            keys.append(raw);
    const QDir dir(trustedKeysDirectory);
    for (const QString &name : dir.entryList({QStringLiteral("*.pub")}, QDir::Files, QDir::Name)) {
        QString error;
        const QByteArray key = readKeyFile(dir.filePath(name), false, &error);
        if (key.isEmpty())
            qCWarning(lcUpdate).noquote() << "Skipping a trusted key:" << error;
        else
            keys.append(key);
    }
    return keys;
}

}
