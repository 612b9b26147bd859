#include "catalogue/VerificationResult.h"

QString VerificationResult::kindName() const
{
    switch (kind) {
    case ok: return QStringLiteral("ok");
    case outdated: return QStringLiteral("outdated");
    case noVersionDate: return QStringLiteral("noVersionDate");
    case cipherError: return QStringLiteral("cipherError");
    case openError: return QStringLiteral("openError");
    case unknownError: break;
    }
    return QStringLiteral("unknownError");
}
