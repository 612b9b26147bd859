#include "platform/ZipArchive.h"

#include "platform/DurableFiles.h"

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

bool ZipArchive::create(const QString &zipPath, const QList<Entry> &entries, const QString &password, Encryption encryption,
                       QString *error)
{
    int code = 0;
    zip_t *archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!archive) {
        *error = QStringLiteral("can't create %1: %2").arg(zipPath, openError(code));
        return false;
    }
    const QByteArray secret = password.toUtf8();
    const zip_uint16_t method = encryption == Encryption::Aes256 ? ZIP_EM_AES_256 : ZIP_EM_TRAD_PKWARE;
    for (const Entry &entry : entries) {
        // Bytes given in memory must outlive zip_close: libzip reads them only then.
        zip_source_t *source = entry.sourceFile.isEmpty()
                                   ? zip_source_buffer(archive, entry.bytes.constData(), zip_uint64_t(entry.bytes.size()), 0)
                                   : zip_source_file(archive, QFile::encodeName(entry.sourceFile).constData(), 0, -1);
        const QByteArray name = entry.name.toUtf8();
        const zip_int64_t index = source ? zip_file_add(archive, name.constData(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE) : -1;
        if (index < 0) {
            *error = zipError(archive);
            if (source)
                zip_source_free(source);
            zip_discard(archive);
            return false;
        }
        if ((entry.symbolicLink
             && zip_file_set_external_attributes(archive, zip_uint64_t(index), 0, ZIP_OPSYS_UNIX, zip_uint32_t(0120777) << 16) != 0)
            || zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_DEFLATE, 9) != 0
            || (encryption != Encryption::None
                && zip_file_set_encryption(archive, zip_uint64_t(index), method, secret.constData()) != 0)) {
            *error = zipError(archive);
            zip_discard(archive);
            return false;
        }
    }
    if (zip_close(archive) != 0) {
        *error = zipError(archive);
        zip_discard(archive);
        return false;
    }
    return true;
}

bool ZipArchive::writeEncrypted(const QString &zipPath, const QString &entryName, const QString &sourceFile,
                                const QString &password, QString *error)
{
    return create(zipPath, {Entry{entryName, {}, sourceFile}}, password, Encryption::Aes256, error);
}

bool ZipArchive::extractSingle(const QString &zipPath, const QString &destination, const QString &password,
                               const ExtractLimits &limits, QString *entryName, QString *error, const QString &expectedName)
{
    int code = 0;
    zip_t *archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (!archive) {
        *error = QStringLiteral("can't open %1: %2").arg(zipPath, openError(code));
        return false;
    }
    const std::unique_ptr<zip_t, decltype(&zip_discard)> closer(archive, zip_discard);
    zip_set_default_password(archive, password.toUtf8().constData());

    const zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count != 1) {
        *error = QStringLiteral("the archive holds %1 entries, not one").arg(count);
        return false;
    }
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(archive, 0, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_NAME) || !(stat.valid & ZIP_STAT_SIZE)) {
        *error = QStringLiteral("the archive's entry can't be read: ") + zipError(archive);
        return false;
    }
    const QString name = QString::fromUtf8(stat.name);
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..") || name.contains(QLatin1Char('/'))
        || name.contains(QLatin1Char('\\')) || name.contains(QChar(0)) || name.startsWith(QLatin1Char('.'))) {
        *error = QStringLiteral("entry \"%1\" is not a plain file name").arg(name);
        return false;
    }
    if (!expectedName.isEmpty() && name != expectedName) {
        *error = QStringLiteral("entry \"%1\" is not the expected %2").arg(name, expectedName);
        return false;
    }
    // Unix archivers keep the file's mode in the external attributes: a link is refused.
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, 0, 0, &system, &attributes) == 0 && system == ZIP_OPSYS_UNIX) {
        const zip_uint32_t type = (attributes >> 16) & 0170000;
        if (type != 0 && type != 0100000) {
            *error = QStringLiteral("entry \"%1\" is not a regular file").arg(name);
            return false;
        }
    }
    const qint64 size = qint64(stat.size);
    const qint64 archiveSize = QFileInfo(zipPath).size();
    if (size > limits.maxBytes || (size > limits.ratioFloor && size > qint64(limits.maxRatio) * qMax<qint64>(archiveSize, 1))) {
        *error = QStringLiteral("entry \"%1\" would unpack to %2 bytes from an archive of %3").arg(name).arg(size).arg(archiveSize);
        return false;
    }

    zip_file_t *entry = zip_fopen_index(archive, 0, 0);
    if (!entry) {
        *error = QStringLiteral("can't read \"%1\": %2").arg(name, zipError(archive));
        return false;
    }
    const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> entryCloser(entry, zip_fclose);
    const QString finalPath = QDir(destination).filePath(name);
    const QString temporary = DurableFiles::temporaryPathFor(finalPath);
    QFile out(temporary);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        *error = QStringLiteral("can't write %1").arg(temporary);
        return false;
    }
    // The header's size is only a claim: more bytes than it said end the unpacking too.
    char buffer[64 * 1024];
    zip_int64_t read;
    qint64 written = 0;
    while ((read = zip_fread(entry, buffer, sizeof buffer)) > 0) {
        written += read;
        if (written > size || out.write(buffer, read) != read) {
            *error = QStringLiteral("\"%1\" is longer than its header says, or the disk is full").arg(name);
            out.remove();
            return false;
        }
    }
    out.close();
    if (read < 0 || written != size) {
        *error = QStringLiteral("\"%1\" is damaged or the password is wrong").arg(name);
        out.remove();
        return false;
    }
    QString moveError;
    if (!DurableFiles::moveFile(temporary, finalPath, true, &moveError)) {
        *error = moveError;
        QFile::remove(temporary);
        return false;
    }
    *entryName = name;
    return true;
}
