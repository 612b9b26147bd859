#pragma once

#include <QString>

// Keys of the persisted settings. The first six are the named members every part of the app
// shares; the rest are the literal keys, kept here so a misspelling is a compile error.
namespace DefaultKeys {
inline const QString newestDatabaseKnown = QStringLiteral("newest-database-known");
inline const QString lastInternetUpdateCheck = QStringLiteral("last-internet-update-check");
inline const QString devUpdateAlwaysEnabled = QStringLiteral("dev-update-always-enabled");
inline const QString downloaderState = QStringLiteral("downloader-state");
inline const QString fullDbUrl = QStringLiteral("full-db-url");
// What the file being fetched must be, kept with the transfer: {"url", "signature", "date",
// "from"} (a patch's two dates; the signature when signatures are required).
inline const QString downloadSignature = QStringLiteral("download-signature");
inline const QString patchAvailable = QStringLiteral("patch-available");
// Set when a patch was given up with nobody following it (at a start): the next Downloader made
// fetches the whole file instead.
inline const QString fullDownloadWanted = QStringLiteral("full-db-wanted");

inline const QString showClosedPlaces = QStringLiteral("show-closed-places");
inline const QString enableAnalytics = QStringLiteral("enable-analytics");
inline const QString developerModeEnabled = QStringLiteral("developer-mode-enabled");
inline const QString devKeepOldDbs = QStringLiteral("dev-keep-old-dbs");
// Lets a build that trusts no signing key install unsigned updates (a developer's own shelf).
inline const QString devAllowUnsignedUpdates = QStringLiteral("dev-allow-unsigned-updates");
inline const QString devEnableSubscribe = QStringLiteral("dev-enable-subscribe");
inline const QString devEnableNotifications = QStringLiteral("dev-enable-notifications");
inline const QString devEnableOpinions = QStringLiteral("dev-enable-opinions");
inline const QString showReservations = QStringLiteral("show-reservations");
inline const QString subscriptionProvinces = QStringLiteral("subscription-provinces");
inline const QString subscriptionScreenSeen = QStringLiteral("subscription-screen-seen");
inline const QString province = QStringLiteral("Province");
inline const QString filters = QStringLiteral("filters");
inline const QString favoritos = QStringLiteral("favoritos");
inline const QString visitados = QStringLiteral("visitados");
inline const QString porVisitar = QStringLiteral("porVisitar");

// The user's note on a place: "notes_" and the decimal id, never padded.
inline QString notesKey(int placeId) { return QStringLiteral("notes_") + QString::number(placeId); }
}
