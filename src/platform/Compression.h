#pragma once

#include <QByteArray>

// gzip and deflate bodies for HTTP, over zlib. "deflate" is the zlib format (RFC 1950), as HTTP
// names it; reading also accepts the raw stream that some clients send under that name.
namespace Compression {

enum class Format { Deflate, Gzip };

// Empty only when zlib fails (never for valid input).
QByteArray compress(const QByteArray &data, Format format);

// The decompressed bytes, or false when the input is damaged, truncated, or would grow beyond
// `maxSize` bytes (a small body that inflates without bound is refused, not followed).
bool decompress(const QByteArray &data, Format format, qsizetype maxSize, QByteArray &out);

}
