#include "platform/DerivedKeys.h"

#include "platform/Sha1Chains.h"

#include <QFile>
#include <QHash>

// The one-block SHA-1 calls, deprecated for general hashing, are what lets the pads be kept.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/sha.h>

#include <algorithm>
#include <cstring>

#include <atomic>
#include <future>
#include <mutex>
#include <system_error>
#include <vector>

namespace {
// The key derivation of this SQLCipher's format 3: PBKDF2-HMAC-SHA1, 64,000 rounds, a 32-byte key
// over the 16-byte salt that opens the file.
constexpr int saltSize = 16;
constexpr int keySize = 32;
constexpr int rounds = 64000;

std::mutex cacheMutex;
QHash<QByteArray, QByteArray> cache; // passphrase + salt -> hex of the derived key
std::atomic<int> derivations{0};
}

std::optional<QByteArray> DerivedKeys::saltOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray salt = file.read(saltSize);
    if (salt.size() != saltSize)
        return std::nullopt;
    return salt;
}

QString DerivedKeys::keyStatement(const QString &path, const QString &passphrase)
{
    const QString plain = QStringLiteral("PRAGMA KEY='") + passphrase + QStringLiteral("'");
    const std::optional<QByteArray> salt = saltOf(path);
    if (!salt)
        return plain;
    const QByteArray secret = passphrase.toUtf8();
    const QByteArray cacheKey = secret + '\0' + *salt;
    QByteArray hex;
    {
        std::lock_guard lock(cacheMutex);
        hex = cache.value(cacheKey);
    }
    if (hex.isEmpty()) {
        ++derivations;
        hex = pbkdf2Sha1(secret, *salt, rounds, keySize).toHex();
        std::lock_guard lock(cacheMutex);
        cache.insert(cacheKey, hex);
    }
    return QStringLiteral("PRAGMA KEY=\"x'") + QString::fromLatin1(hex) + QStringLiteral("'\"");
}

int DerivedKeys::derivationCount() { return derivations.load(); }

QByteArray DerivedKeys::pbkdf2Sha1(const QByteArray &secret, const QByteArray &salt, int rounds, int length)
{
    constexpr int block = SHA_CBLOCK;
    constexpr int digest = SHA_DIGEST_LENGTH;
    // The HMAC key: the secret, or its hash when longer than a block, padded with zeros.
    unsigned char key[block] = {};
    if (secret.size() > block)
        SHA1(reinterpret_cast<const unsigned char *>(secret.constData()), size_t(secret.size()), key);
    else
        std::memcpy(key, secret.constData(), size_t(secret.size()));
    unsigned char pad[block];
    SHA_CTX inner;
    SHA_CTX outer;
    for (int i = 0; i < block; ++i)
        pad[i] = key[i] ^ 0x36;
    SHA1_Init(&inner);
    SHA1_Update(&inner, pad, block);
    for (int i = 0; i < block; ++i)
        pad[i] = key[i] ^ 0x5c;
    SHA1_Init(&outer);
    SHA1_Update(&outer, pad, block);
    const auto hmac = [&](const unsigned char *message, size_t size, unsigned char *out) {
        SHA_CTX context = inner;
        SHA1_Update(&context, message, size);
        SHA1_Final(out, &context);
        context = outer;
        SHA1_Update(&context, out, digest);
        SHA1_Final(out, &context);
    };
    // Each digest-sized block of the key is a chain of its own: all but the first are worked
    // out on threads of their own meanwhile (a catalogue's key is two blocks).
    // The first round of block `index` hashes the salt and the block's number.
    const auto firstRound = [&](quint32 index, unsigned char *u) {
        QByteArray first = salt;
        for (int shift = 24; shift >= 0; shift -= 8)
            first.append(char((index >> shift) & 0xff));
        hmac(reinterpret_cast<const unsigned char *>(first.constData()), size_t(first.size()), u);
    };
    const auto chain = [&](quint32 index) {
        unsigned char u[digest];
        unsigned char sum[digest];
        firstRound(index, u);
        std::memcpy(sum, u, digest);
        for (int round = 1; round < rounds; ++round) {
            hmac(u, digest, u);
            for (int i = 0; i < digest; ++i)
                sum[i] ^= u[i];
        }
        return QByteArray(reinterpret_cast<const char *>(sum), digest);
    };
    const quint32 blocks = quint32((std::max(length, 0) + digest - 1) / digest);
    if (Sha1Chains::available() && rounds > 0) {
        // All blocks on this thread: the instructions leave no time worth a thread's start.
        std::vector<Sha1Chains::Digest> chains(blocks);
        for (quint32 index = 1; index <= blocks; ++index)
            firstRound(index, chains[index - 1].data());
        const auto stateOf = [](const SHA_CTX &context) { return Sha1Chains::State{context.h0, context.h1, context.h2, context.h3, context.h4}; };
        Sha1Chains::run(stateOf(inner), stateOf(outer), chains, rounds);
        QByteArray derived;
        for (const Sha1Chains::Digest &chain : chains)
            derived.append(reinterpret_cast<const char *>(chain.data()), digest);
        derived.truncate(length);
        return derived;
    }
    std::vector<std::future<QByteArray>> later;
    for (quint32 index = 2; index <= blocks; ++index) {
        try {
            later.push_back(std::async(std::launch::async, chain, index));
        } catch (const std::system_error &) { // no thread to be had: worked out here, later
            later.push_back(std::async(std::launch::deferred, chain, index));
        }
    }
    QByteArray derived = blocks > 0 ? chain(1) : QByteArray();
    for (std::future<QByteArray> &chained : later)
        derived += chained.get();
    derived.truncate(length);
    return derived;
}
