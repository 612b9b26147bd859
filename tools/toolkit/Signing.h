#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>

// The publisher's half of signed updates: making a key pair and signing what `publish` writes.
// The app's half (reading signatures, trusted keys) is update/SignedFiles.

// DIR/velmora-signing.key (owner-only) and DIR/velmora-signing.pub; refuses to replace a key.
bool writeKeyPair(const QString &directory, QString *error);

#include <optional>

// Writes PUBLISHED.sig for the file at `path`, to be published as `publishedPath` (by default
// `path` itself: a file staged under another name is signed for the name it will have). A
// patch's signature names the date it starts from in `from`.
bool signPublishedFile(const QString &path, const QDate &date, const QByteArray &secretKey, QString *error,
                       const QString &publishedPath = {}, const std::optional<QDate> &from = std::nullopt);

// The .sig text; empty with `error` set when the file can't be read or the key isn't one.
QByteArray signFile(const QString &path, const QString &name, const QDate &date, const QByteArray &secretKey, QString *error,
                    const std::optional<QDate> &from = std::nullopt);
