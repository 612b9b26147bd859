#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// SQLCipher turns a passphrase into the page key with 64,000 rounds of PBKDF2 over the file's
// salt: about 60 ms for every connection. The derived key depends only on the passphrase and the
// salt, so it is derived once per file in this process and later connections are keyed with it
// raw. Thread-safe.
namespace DerivedKeys {

// The statement that keys a connection to `path` with `passphrase`: the raw derived key when the
// file carries a salt, else the passphrase itself (a file still to be created).
QString keyStatement(const QString &path, const QString &passphrase);

// How many derivations this process has run: the expensive part of opening a ciphered file.
int derivationCount();

}
