#include "platform/Compression.h"

#include <zlib.h>

namespace Compression {
namespace {
// zlib's window bits: 15 is the zlib wrapper, +16 gzip, negative the raw stream.
constexpr int zlibWindow = 15;
constexpr int gzipWindow = 15 + 16;
constexpr int rawWindow = -15;

bool inflateWith(const QByteArray &data, int windowBits, qsizetype maxSize, QByteArray &out)
{
    z_stream stream{};
    if (inflateInit2(&stream, windowBits) != Z_OK)
        return false;
    out.clear();
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data.constData()));
    stream.avail_in = uInt(data.size());
    char chunk[16384];
    int status = Z_OK;
    while (status != Z_STREAM_END) {
        stream.next_out = reinterpret_cast<Bytef *>(chunk);
        stream.avail_out = sizeof chunk;
        status = inflate(&stream, Z_NO_FLUSH);
        if (status != Z_OK && status != Z_STREAM_END)
            break;
        out.append(chunk, qsizetype(sizeof chunk - stream.avail_out));
        if (out.size() > maxSize || (status == Z_OK && stream.avail_in == 0 && stream.avail_out != 0)) {
            status = Z_DATA_ERROR; // too large, or the input ended before the stream did
            break;
        }
    }
    inflateEnd(&stream);
    return status == Z_STREAM_END;
}
}

QByteArray compress(const QByteArray &data, Format format)
{
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, format == Format::Gzip ? gzipWindow : zlibWindow, 8,
                     Z_DEFAULT_STRATEGY)
        != Z_OK)
        return {};
    QByteArray out(qsizetype(deflateBound(&stream, uLong(data.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data.constData()));
    stream.avail_in = uInt(data.size());
    stream.next_out = reinterpret_cast<Bytef *>(out.data());
    stream.avail_out = uInt(out.size());
    const int status = deflate(&stream, Z_FINISH);
    out.truncate(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return status == Z_STREAM_END ? out : QByteArray();
}

bool decompress(const QByteArray &data, Format format, qsizetype maxSize, QByteArray &out)
{
    if (format == Format::Gzip)
        return inflateWith(data, gzipWindow, maxSize, out);
    return inflateWith(data, zlibWindow, maxSize, out) || inflateWith(data, rawWindow, maxSize, out);
}

}
