#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>

#include <optional>

// Detached signatures of what an update server publishes. Beside every published FILE lies
// FILE.sig, a few lines of text:
//
//   velmora-signature 1
//   name: velmora-20261201.db
//   date: 20261201
//   sha256: <64 hex digits of the file's bytes>
//   key: <the signing public key, base64>
//   signature: <Ed25519 over the first four lines, base64>
//
// The signature covers the bytes (by their hash), the file's name and its date, so it can't be
// moved to another file nor replayed for an older one: the reader says which name and date it
// expects, and the catalogue's own date must agree.
namespace SignedFiles {

inline const QString suffix = QStringLiteral(".sig");

struct Signature {
    QString name;
    QDate date;
    QByteArray sha256;
    QByteArray publicKey;
    QByteArray signature;
};

QByteArray signedMessage(const QString &name, const QDate &date, const QByteArray &sha256);
std::optional<Signature> parse(const QByteArray &text, QString *why);

// Why `signatureText` doesn't vouch for bytes with hash `sha256` published as `expectedName`
// (and for `expectedDate`, when given) by one of `trustedKeys`; empty when it does. The date
// signed is written to `signedDate`.
QString check(const QByteArray &signatureText, const QByteArray &sha256, const QString &expectedName,
              const std::optional<QDate> &expectedDate, const QList<QByteArray> &trustedKeys, QDate *signedDate = nullptr);

// Key files: one line, "velmora-secret-key <base64>" or "velmora-public-key <base64>".
inline const QByteArray secretTag = "velmora-secret-key ";
inline const QByteArray publicTag = "velmora-public-key ";
inline const QString secretKeyFile = QStringLiteral("velmora-signing.key");
inline const QString publicKeyFile = QStringLiteral("velmora-signing.pub");
// The key's raw bytes; empty with `error` set when the file isn't a key of that kind.
QByteArray readKeyFile(const QString &path, bool secret, QString *error);

// The public keys this app trusts: those built in (a deployment value) and each *.pub file in
// `trustedKeysDirectory`. Files that aren't keys are skipped with a log line.
QList<QByteArray> trustedKeys(const QString &trustedKeysDirectory);
// The keys built into the program, base64, for the record.
QStringList builtInKeys();

}
