#include "platform/ZipArchive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <zip.h>

#include <memory>

namespace {
QString zipError(zip_t *archive)
{
    return QString::fromUtf8(zip_strerror(archive));
}

QString openError(int code)
{
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString message = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return message;
}
}

bool ZipArchive::writeEncrypted(const QString &zipPath, const QString &entryName, const QString &sourceFile,
                                const QString &password, QString *error)
{
    int code = 0;
    zip_t *archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!archive) {
        *error = QStringLiteral("can't create %1: %2").arg(zipPath, openError(code));
        return false;
    }
    zip_source_t *source = zip_source_file(archive, QFile::encodeName(sourceFile).constData(), 0, -1);
    const QByteArray name = entryName.toUtf8();
    const QByteArray secret = password.toUtf8();
    zip_int64_t index = source ? zip_file_add(archive, name.constData(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE) : -1;
    if (index < 0) {
        *error = zipError(archive);
        if (source)
            zip_source_free(source);
        zip_discard(archive);
        return false;
    }
    if (zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_DEFLATE, 9) != 0
        || zip_file_set_encryption(archive, zip_uint64_t(index), ZIP_EM_AES_256, secret.constData()) != 0) {
        *error = zipError(archive);
        zip_discard(archive);
        return false;
    }
    if (zip_close(archive) != 0) {
        *error = zipError(archive);
        zip_discard(archive);
        return false;
    }
    return true;
}

bool ZipArchive::extract(const QString &zipPath, const QString &destination, const QString &password, QStringList *entries,
                         QString *error)
{
    int code = 0;
    zip_t *archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, &code);
    if (!archive) {
        *error = QStringLiteral("can't open %1: %2").arg(zipPath, openError(code));
        return false;
    }
    const std::unique_ptr<zip_t, decltype(&zip_discard)> closer(archive, zip_discard);
    zip_set_default_password(archive, password.toUtf8().constData());
    const QDir target(destination);
    const QString root = QFileInfo(destination).canonicalFilePath();
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const QString name = QString::fromUtf8(zip_get_name(archive, zip_uint64_t(i), ZIP_FL_ENC_GUESS));
        const QString path = QDir::cleanPath(target.absoluteFilePath(name));
        if (name.isEmpty() || !path.startsWith(root + QLatin1Char('/'))) {
            *error = QStringLiteral("entry \"%1\" would leave the destination").arg(name);
            return false;
        }
        if (name.endsWith(QLatin1Char('/'))) {
            QDir().mkpath(path);
            continue;
        }
        zip_file_t *entry = zip_fopen_index(archive, zip_uint64_t(i), 0);
        if (!entry) {
            *error = QStringLiteral("can't read \"%1\": %2").arg(name, zipError(archive));
            return false;
        }
        const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> entryCloser(entry, zip_fclose);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            *error = QStringLiteral("can't write %1").arg(path);
            return false;
        }
        char buffer[64 * 1024];
        zip_int64_t read;
        while ((read = zip_fread(entry, buffer, sizeof buffer)) > 0)
            out.write(buffer, read);
        if (read < 0) {
            *error = QStringLiteral("\"%1\" is damaged or the password is wrong").arg(name);
            out.remove();
            return false;
        }
        if (entries)
            entries->append(name);
    }
    return true;
}
