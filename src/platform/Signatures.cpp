#include "platform/Signatures.h"

#include <QCryptographicHash>
#include <QFile>

#include <openssl/evp.h>

#include <memory>

namespace Signatures {

namespace {
constexpr int keyBytes = 32;
constexpr int signatureBytes = 64;

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

Key secretKey(const QByteArray &seed)
{
    if (seed.size() != keyBytes)
        return {nullptr, EVP_PKEY_free};
    return {EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, reinterpret_cast<const unsigned char *>(seed.constData()), keyBytes),
            EVP_PKEY_free};
}

QByteArray rawPublicKey(EVP_PKEY *key)
{
    QByteArray raw(keyBytes, Qt::Uninitialized);
    size_t length = keyBytes;
    if (!key || EVP_PKEY_get_raw_public_key(key, reinterpret_cast<unsigned char *>(raw.data()), &length) != 1 || length != keyBytes)
        return {};
    return raw;
}
}

KeyPair generateKeyPair()
{
    EVP_PKEY *made = nullptr;
    std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(EVP_PKEY_CTX_new_id(EVP_PKEY_ED25519, nullptr), EVP_PKEY_CTX_free);
    if (!context || EVP_PKEY_keygen_init(context.get()) != 1 || EVP_PKEY_keygen(context.get(), &made) != 1)
        return {};
    const Key key(made, EVP_PKEY_free);
    QByteArray seed(keyBytes, Qt::Uninitialized);
    size_t length = keyBytes;
    if (EVP_PKEY_get_raw_private_key(key.get(), reinterpret_cast<unsigned char *>(seed.data()), &length) != 1 || length != keyBytes)
        return {};
    return {seed, rawPublicKey(key.get())};
}

QByteArray publicKeyFor(const QByteArray &secret) { return rawPublicKey(secretKey(secret).get()); }

QByteArray sign(const QByteArray &message, const QByteArray &secret)
{
    const Key key = secretKey(secret);
    const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!key || !context || EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1)
        return {};
    QByteArray signature(signatureBytes, Qt::Uninitialized);
    size_t length = signatureBytes;
    if (EVP_DigestSign(context.get(), reinterpret_cast<unsigned char *>(signature.data()), &length,
                       reinterpret_cast<const unsigned char *>(message.constData()), size_t(message.size()))
            != 1
        || length != signatureBytes)
        return {};
    return signature;
}

bool verify(const QByteArray &message, const QByteArray &signature, const QByteArray &publicKey)
{
    if (signature.size() != signatureBytes || publicKey.size() != keyBytes)
        return false;
    const Key key(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, reinterpret_cast<const unsigned char *>(publicKey.constData()), keyBytes),
                  EVP_PKEY_free);
    const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!key || !context || EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1)
        return false;
    return EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char *>(signature.constData()), size_t(signature.size()),
                            reinterpret_cast<const unsigned char *>(message.constData()), size_t(message.size()))
        == 1;
}

QByteArray sha256OfFile(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return hash.result();
}

}
