#pragma once

#include <QByteArray>
#include <QList>
#include <QPolygonF>
#include <QString>
#include <QStringList>

// Shapes from GMT's data sets, as its multisegment dumps give them: one point per line
// ("longitude latitude"), a line starting with '>' before each segment.
struct GmtSegment {
    QString header;  // the text after '>': "Cuba Segment 0", "Shore Bin # 6077, Level 1"
    QPolygonF points; // x: longitude in -180..180 (the dumps may give 0..360), y: latitude
};

// Reads a dump; lines that are not two numbers are skipped, so a stray message loses nothing.
QList<GmtSegment> parseGmtDump(const QByteArray &dump);

// Runs `gmt` with the arguments and returns its standard output, or false with a message that
// says what to install when GMT or its data is missing.
bool runGmt(const QStringList &arguments, QByteArray &output, QString *error);

// The shoreline level a GSHHG segment's header names (1 land, 2 lake, 3 island in a lake, 4
// pond), or 0 when it names none.
int shorelineLevel(const QString &header);
