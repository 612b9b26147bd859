#pragma once

#include "CatalogueData.h"

// Writes a ciphered catalogue with the app's key: every table of the format, the producer's
// indexes, then the rows, in one transaction. The file appears at `path` only when complete
// (it is written under a temporary name beside it and renamed); false with `error` otherwise.
bool writeCatalogue(const CatalogueData &data, const QString &path, QString *error);

// Runs `write` on a temporary path beside `path` and renames the result onto it only when
// `write` succeeds; a failure leaves nothing behind. Fails early when the directory is missing.
bool writeAtomically(const QString &path, QString *error, const std::function<bool(const QString &temporary)> &write);
