#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// SQLCipher turns a passphrase into the page key with 64,000 rounds of PBKDF2 over the file's
// salt, tens of milliseconds for every connection. The derived key depends only on the
// passphrase and the salt, so it is derived here, once per file in this process, and every
// connection is keyed with it raw. Thread-safe.
namespace DerivedKeys {

// The statement that keys a connection to `path` with `passphrase`: the raw derived key when the
// file carries a salt, else the passphrase itself (a file still to be created).
QString keyStatement(const QString &path, const QString &passphrase);

// The 16 random bytes a ciphered file begins with, which its key is derived over; none when the
// file is shorter or cannot be read.
std::optional<QByteArray> saltOf(const QString &path);

// How many derivations this process has run: the expensive part of opening a ciphered file.
int derivationCount();

// PBKDF2-HMAC-SHA1 of `secret` over `salt`, `length` bytes. The key's two HMAC pads are hashed
// once rather than at every round, which makes it about twice as fast as a general one.
QByteArray pbkdf2Sha1(const QByteArray &secret, const QByteArray &salt, int rounds, int length);

}
