#pragma once

#include "platform/HttpExchange.h"

// The HTTP requests that carry hits: a GET with the payload as the query, or a POST with it as
// the body, plain or compressed. Every request names its type and agent and asks caches on the
// way to stay out of it.
namespace RequestBuilder {

enum Compression { None = 0, Deflate = 1, Gzip = 2 };

struct HitRequest {
    HttpExchange::Request request;
    bool valid = false;
};

// A single hit shorter than this goes as a GET.
constexpr int maxGetPayload = 2000;

HitRequest requestGetUrl(const QUrl &url, const QByteArray &payload);
// Invalid when the compressor fails.
HitRequest requestPostUrl(const QUrl &url, const QByteArray &payload, Compression compression);

// What the app calls itself in requests.
QByteArray userAgent();

}
