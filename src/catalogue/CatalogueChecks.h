#pragma once

#include <QString>

class Database;

// What the catalogue store checks before it takes a file into use, beyond the key and the
// geography: each answers why the file can't be used, or empty text when it can.
namespace CatalogueChecks {
// Every page and index of the file, through SQLite's quick check: garbage written into the
// middle of a file shows here and nowhere earlier.
QString integrityFault(Database &db);
// The statements the screens' reads rely on, prepared against the file: a renamed or missing
// column or table of a place, its cuisines, names and pictures shows here.
QString readsFault(Database &db);
}
