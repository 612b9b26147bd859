#include "GmtShapes.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

QList<GmtSegment> parseGmtDump(const QByteArray &dump)
{
    QList<GmtSegment> segments;
    qsizetype start = 0;
    while (start < dump.size()) {
        qsizetype end = dump.indexOf('\n', start);
        if (end < 0)
            end = dump.size();
        const QByteArray line = dump.mid(start, end - start).trimmed();
        start = end + 1;
        if (line.isEmpty())
            continue;
        if (line.startsWith('>')) {
            segments.append(GmtSegment{QString::fromUtf8(line.mid(1).trimmed()), {}});
            continue;
        }
        const QList<QByteArray> fields = line.simplified().split(' ');
        bool okX = false, okY = false;
        double longitude = fields.value(0).toDouble(&okX);
        const double latitude = fields.value(1).toDouble(&okY);
        if (fields.size() < 2 || !okX || !okY)
            continue;
        if (longitude > 180.0)
            longitude -= 360.0;
        if (segments.isEmpty())
            segments.append(GmtSegment{});
        segments.last().points.append({longitude, latitude});
    }
    segments.removeIf([](const GmtSegment &segment) { return segment.points.size() < 2; });
    return segments;
}

bool runGmt(const QStringList &arguments, QByteArray &output, QString *error)
{
    // GMT keeps a history file in its working folder: give it a scratch one, not the caller's.
    QTemporaryDir scratch;
    QProcess gmt;
    if (scratch.isValid())
        gmt.setWorkingDirectory(scratch.path());
    gmt.start(QStringLiteral("gmt"), arguments);
    if (!gmt.waitForStarted()) {
        *error = QStringLiteral("could not run gmt (install the Debian packages gmt, gmt-dcw and gmt-gshhg-high)");
        return false;
    }
    gmt.closeWriteChannel();
    if (!gmt.waitForFinished(300000) || gmt.exitStatus() != QProcess::NormalExit || gmt.exitCode() != 0) {
        const QString said = QString::fromUtf8(gmt.readAllStandardError()).trimmed().section(QLatin1Char('\n'), 0, 2);
        *error = QStringLiteral("gmt %1 failed: %2").arg(arguments.join(QLatin1Char(' ')), said.isEmpty() ? gmt.errorString() : said);
        return false;
    }
    output = gmt.readAllStandardOutput();
    return true;
}

int shorelineLevel(const QString &header)
{
    static const QRegularExpression level(QStringLiteral("Level\\s+(\\d)"));
    const QRegularExpressionMatch match = level.match(header);
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}
