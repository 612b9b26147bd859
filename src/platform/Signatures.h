#pragma once

#include <QByteArray>
#include <QString>

// Ed25519 signatures over OpenSSL's libcrypto, which the program links already for its key
// derivation: keys are their raw 32 bytes, signatures their raw 64.
namespace Signatures {

struct KeyPair {
    QByteArray secretKey; // the 32-byte seed
    QByteArray publicKey; // 32 bytes
};

// A fresh pair from the system's random source; empty when the library fails.
KeyPair generateKeyPair();
// The public half of a secret key; empty for anything that isn't one.
QByteArray publicKeyFor(const QByteArray &secretKey);
// Empty when the key isn't a secret key.
QByteArray sign(const QByteArray &message, const QByteArray &secretKey);
bool verify(const QByteArray &message, const QByteArray &signature, const QByteArray &publicKey);

// SHA-256 of a file's bytes, read in pieces; empty when it can't be read.
QByteArray sha256OfFile(const QString &path);

}
