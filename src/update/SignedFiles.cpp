#include "update/SignedFiles.h"

#include "catalogue/CatalogueDates.h"
#include "platform/Signatures.h"

#include <QDir>
#include <QFile>

namespace SignedFiles {

namespace {
const QByteArray header = "velmora-signature 2";
constexpr qsizetype maxKeyFile = 1024;

QByteArray dateText(const QDate &date) { return CatalogueDates::formatCompact(date).toLatin1(); }
}

QByteArray signedMessage(const QString &name, const QDate &date, const std::optional<QDate> &from, qint64 size, const QByteArray &sha256)
{
    QByteArray message = header + "\nname: " + name.toUtf8() + "\ndate: " + dateText(date) + '\n';
    if (from)
        message += "from: " + dateText(*from) + '\n';
    return message + "size: " + QByteArray::number(size) + "\nsha256: " + sha256.toHex() + '\n';
}

std::optional<Signature> parse(const QByteArray &text, QString *why)
{
    const QList<QByteArray> lines = text.trimmed().split('\n');
    if (text.size() > maximumSignatureBytes || lines.first().trimmed() != header) {
        *why = QStringLiteral("not a signature file");
        return std::nullopt;
    }
    // Each field once, in this order; "from" only on a patch's signature.
    static const QList<QByteArray> order = {"name", "date", "from", "size", "sha256", "key", "signature"};
    QHash<QByteArray, QByteArray> fields;
    qsizetype next = 0;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines.at(i).trimmed();
        const qsizetype colon = line.indexOf(": ");
        const qsizetype at = colon > 0 ? order.indexOf(line.left(colon), next) : -1;
        if (at < 0) {
            *why = QStringLiteral("a signature file with a line out of place");
            return std::nullopt;
        }
        fields.insert(order.at(at), line.mid(colon + 2));
        next = at + 1;
    }
    for (const char *required : {"name", "date", "size", "sha256", "key", "signature"})
        if (!fields.contains(required)) {
            *why = QStringLiteral("a signature file with a missing line");
            return std::nullopt;
        }
    Signature signature;
    signature.name = QString::fromUtf8(fields.value("name"));
    signature.date = CatalogueDates::parseCompact(QString::fromLatin1(fields.value("date"))).value_or(QDate());
    if (fields.contains("from"))
        signature.from = CatalogueDates::parseCompact(QString::fromLatin1(fields.value("from"))).value_or(QDate());
    bool sized = false;
    signature.size = fields.value("size").toLongLong(&sized);
    signature.sha256 = QByteArray::fromHex(fields.value("sha256"));
    signature.publicKey = QByteArray::fromBase64(fields.value("key"));
    signature.signature = QByteArray::fromBase64(fields.value("signature"));
    if (!signature.date.isValid() || (signature.from && !signature.from->isValid()) || !sized || signature.size < 0
        || signature.sha256.size() != 32) {
        *why = QStringLiteral("a signature file with a malformed date, size or hash");
        return std::nullopt;
    }
    return signature;
}

std::optional<Signature> checkBeforeTransfer(const QByteArray &signatureText, const Expected &expected,
                                             const QList<QByteArray> &trustedKeys, QString *why)
{
    auto signature = parse(signatureText, why);
    if (!signature)
        return std::nullopt;
    const auto refuse = [&](const QString &reason) {
        *why = reason;
        return std::nullopt;
    };
    if (signature->name != expected.name)
        return refuse(QStringLiteral("the signature is for %1, not %2").arg(signature->name, expected.name));
    if (expected.date && signature->date != *expected.date)
        return refuse(QStringLiteral("the signature is for the date %1, not %2")
                          .arg(CatalogueDates::formatCompact(signature->date), CatalogueDates::formatCompact(*expected.date)));
    if (expected.from && signature->from != expected.from)
        return refuse(QStringLiteral("the signature is for a patch from %1, not from %2")
                          .arg(signature->from ? CatalogueDates::formatCompact(*signature->from) : QStringLiteral("nothing"),
                               CatalogueDates::formatCompact(*expected.from)));
    if (!trustedKeys.contains(signature->publicKey))
        return refuse(QStringLiteral("signed by a key this app doesn't trust"));
    const QByteArray message = signedMessage(signature->name, signature->date, signature->from, signature->size, signature->sha256);
    if (!Signatures::verify(message, signature->signature, signature->publicKey))
        return refuse(QStringLiteral("the signature doesn't hold"));
    why->clear();
    return signature;
}

QString checkBytes(const Signature &signature, qint64 size, const QByteArray &sha256)
{
    if (size != signature.size)
        return QStringLiteral("the file has %1 bytes, not the %2 signed").arg(size).arg(signature.size);
    if (sha256 != signature.sha256)
        return QStringLiteral("the file's bytes are not the ones signed");
    return {};
}

QString check(const QByteArray &signatureText, qint64 size, const QByteArray &sha256, const Expected &expected,
              const QList<QByteArray> &trustedKeys, QDate *signedDate)
{
    QString why;
    const auto signature = checkBeforeTransfer(signatureText, expected, trustedKeys, &why);
    if (!signature)
        return why;
    if (const QString fault = checkBytes(*signature, size, sha256); !fault.isEmpty())
        return fault;
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
    const QByteArray encoded = line.startsWith(tag) ? line.mid(tag.size()) : QByteArray();
    // Strict base64: a key with one character wrong must not decode to some other 32 bytes.
    const auto decoded = QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() != 32 || decoded.decoded.toBase64() != encoded) {
        *error = QStringLiteral("%1 is not a %2 key").arg(path, secret ? QStringLiteral("secret") : QStringLiteral("public"));
        return {};
    }
    return decoded.decoded;
}

QStringList builtInKeys()
{
    return QStringLiteral(VELMORA_TRUSTED_KEYS).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

Trust trustedKeys(const QString &trustedKeysDirectory)
{
    Trust trust;
    for (const QString &key : builtInKeys()) {
        const QByteArray raw = QByteArray::fromBase64(key.trimmed().toLatin1());
        if (raw.size() == 32)
            trust.keys.append(raw);
        else
            trust.problems.append(QStringLiteral("the built-in key \"%1\" is not a key").arg(key.left(60)));
    }
    const QDir dir(trustedKeysDirectory);
    for (const QString &name : dir.entryList({QStringLiteral("*.pub")}, QDir::Files, QDir::Name)) {
        QString error;
        const QByteArray key = readKeyFile(dir.filePath(name), false, &error);
        if (key.isEmpty())
            trust.problems.append(error);
        else
            trust.keys.append(key);
    }
    return trust;
}

}
