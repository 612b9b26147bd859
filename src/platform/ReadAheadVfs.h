#pragma once

// A file system layer for SQLite that reads a read-only database ahead in large blocks once it
// is read in order. A catalogue's pages are small (1 KB) and each is asked for on its own: a
// table scan over 100,000 places would otherwise be tens of thousands of system calls, each
// costing more than the copy it makes. Reads out of order go straight to the file.
namespace ReadAheadVfs {

// The name to open a connection with; registered once, on first use. Never the default layer.
const char *name();

// How much is read at once when reads come in order.
constexpr int blockSize = 64 * 1024;

}
