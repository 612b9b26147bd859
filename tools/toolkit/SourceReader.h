#pragma once

#include "CatalogueData.h"

// Reads a catalogue source: a JSON document in the form tools/README.md describes, with pictures
// as file paths relative to the document. Computes `search_name`, `has_menu` and `has_gallery`.
// False with `error` naming the record at fault.
bool readSource(const QString &jsonPath, CatalogueData &data, QString *error);
