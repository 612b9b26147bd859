#pragma once

#include "analytics/Hit.h"

#include <QByteArray>

// How a hit is written on the wire, and the per-hit rules that depend only on its parameters.
namespace HitEncoding {

// "key=value&..." for the "&" parameters but "&z", percent-encoded, then "ht" (the hit's time),
// "qt" (its age, when at least 1 ms) and "z" last. `nowMs` is the present time.
QByteArray parametersForHit(const Hit &hit, qint64 nowMs);

// One encoded hit a line, each with "\n" behind it.
QByteArray buildPayload(const QList<QByteArray> &encodedHits);

// Plain HTTP only when "useSecure" says "0"; anything else goes secure.
bool usesSecureTransport(const Hit &hit);

// A stable hash of the client id; sampling compares it modulo 10000.
quint32 clientHash(const QString &clientId);

// Sampling by "&sf" (the percentage of clients kept): false when the hit is sampled out. A value
// that doesn't read wholly as a number lets the hit pass.
bool passesSampling(const HitParameters &parameters);

}
