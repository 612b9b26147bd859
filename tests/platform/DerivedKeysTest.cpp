#include "platform/DerivedKeys.h"

#include <QCryptographicHash>

#include <openssl/evp.h>

#include <gtest/gtest.h>

// Catches a derivation that differs from PBKDF2's, which would key every catalogue wrongly: the
// published vectors (one block and a key longer than a digest, which takes a second block), and
// a secret longer than the hash's block, which HMAC hashes first.
TEST(DerivedKeys, Pbkdf2Sha1GivesThePublishedKeys)
{
    const auto derive = [](const char *secret, const char *salt, int rounds, int length) {
        return DerivedKeys::pbkdf2Sha1(QByteArray(secret), QByteArray(salt), rounds, length).toHex();
    };
    EXPECT_EQ(derive("password", "salt", 1, 20), QByteArray("0c60c80f961f0e71f3a9b524af6012062fe037a6"));
    EXPECT_EQ(derive("password", "salt", 2, 20), QByteArray("ea6c014dc72d6f8ccd1ed92ace1d41f0d8de8957"));
    EXPECT_EQ(derive("password", "salt", 4096, 20), QByteArray("4b007901b765489abead49d926f721d065a429c1"));
    EXPECT_EQ(derive("passwordPASSWORDpassword", "saltSALTsaltSALTsaltSALTsaltSALTsalt", 4096, 25),
              QByteArray("3d2eec4fe41c849b80c8d83662c0e44a8b291a964cf2f07038"));
    // HMAC keys with the hash of a secret longer than a block: both must give the same key.
    const QByteArray longSecret("This is a secret longer than the sixty-four bytes of a SHA-1 block, by a few.");
    EXPECT_EQ(DerivedKeys::pbkdf2Sha1(longSecret, "salt", 3, 32),
              DerivedKeys::pbkdf2Sha1(QCryptographicHash::hash(longSecret, QCryptographicHash::Sha1), "salt", 3, 32));
}

// Catches a fault in the derivation's faster paths (the processor's SHA instructions, two chains
// at a time, an odd chain left over): every length from one block to four, and round counts
// either side of an even split, against OpenSSL's own PBKDF2.
TEST(DerivedKeys, Pbkdf2Sha1AgreesWithOpenSslForEveryShape)
{
    const QByteArray secret("Kr4{]%Tgpw");
    for (const int length : {1, 20, 21, 32, 40, 41, 60, 80})
        for (const int rounds : {1, 2, 3, 64, 1001}) {
            const QByteArray salt = QByteArray::number(length * 7919 + rounds).repeated(3);
            QByteArray expected(length, '\0');
            ASSERT_EQ(PKCS5_PBKDF2_HMAC_SHA1(secret.constData(), int(secret.size()), reinterpret_cast<const unsigned char *>(salt.constData()),
                                             int(salt.size()), rounds, length, reinterpret_cast<unsigned char *>(expected.data())),
                      1);
            EXPECT_EQ(DerivedKeys::pbkdf2Sha1(secret, salt, rounds, length).toHex(), expected.toHex())
                << length << " bytes, " << rounds << " rounds";
        }
}
