#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// Detached signatures of what an update server publishes. Beside every published FILE lies
// FILE.sig, a few lines of text:
//
//   velmora-signature 2
//   name: update-20261101-20261201.zip
//   date: 20261201
//   from: 20261101                  (a patch only: the catalogue it starts from)
//   size: 1048576
//   sha256: <64 hex digits of the file's bytes>
//   key: <the signing public key, base64>
//   signature: <Ed25519 over every line before "key", base64>
//
// The signature covers the file's name, dates, size and bytes, so it can't be moved to another
// file nor replayed for an older one, and the reader knows how big the file may be before the
// first byte arrives: the reader says which name and dates it expects, and checks everything
// but the bytes before it fetches them.
namespace SignedFiles {

inline const QString suffix = QStringLiteral(".sig");
// A signature file is a few hundred bytes; anything longer is not one.
constexpr qint64 maximumSignatureBytes = 4096;

struct Signature {
    QString name;
    QDate date;
    std::optional<QDate> from;
    qint64 size = -1;
    QByteArray sha256;
    QByteArray publicKey;
    QByteArray signature;
};

// What the reader expects the signature to be for.
struct Expected {
    QString name;
    std::optional<QDate> date; // checked when given
    std::optional<QDate> from; // a patch's starting date, checked when given
};

QByteArray signedMessage(const QString &name, const QDate &date, const std::optional<QDate> &from, qint64 size, const QByteArray &sha256);
std::optional<Signature> parse(const QByteArray &text, QString *why);

// Everything that can be known before the file's bytes: the signature is well formed, for the
// expected name and dates, by one of `trustedKeys`, and holds. Empty `why` when it does.
std::optional<Signature> checkBeforeTransfer(const QByteArray &signatureText, const Expected &expected,
                                             const QList<QByteArray> &trustedKeys, QString *why);
// The bytes that arrived against a signature that passed the first check; empty when they are
// the ones signed.
QString checkBytes(const Signature &signature, qint64 size, const QByteArray &sha256);
// Both steps at once, for a file that is here already.
QString check(const QByteArray &signatureText, qint64 size, const QByteArray &sha256, const Expected &expected,
              const QList<QByteArray> &trustedKeys, QDate *signedDate = nullptr);

// Key files: one line, "velmora-secret-key <base64>" or "velmora-public-key <base64>".
inline const QByteArray secretTag = "velmora-secret-key ";
inline const QByteArray publicTag = "velmora-public-key ";
inline const QString secretKeyFile = QStringLiteral("velmora-signing.key");
inline const QString publicKeyFile = QStringLiteral("velmora-signing.pub");
// The key's raw bytes; empty with `error` set when the file isn't a key of that kind.
QByteArray readKeyFile(const QString &path, bool secret, QString *error);

// The public keys this app trusts: those built in (a deployment value) and each *.pub file in
// the trusted-keys folder. A file there that isn't a key is a problem, never skipped: the app
// refuses updates until it is fixed rather than quietly trusting less (or nothing).
struct Trust {
    QList<QByteArray> keys;
    QStringList problems;
};
Trust trustedKeys(const QString &trustedKeysDirectory);
// The keys built into the program, base64, for the record.
QStringList builtInKeys();

}
