#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

// The parsers of outside input, each reachable as a fuzz target that takes arbitrary bytes.
// A target returns normally whatever it is given; a crash, a hang or a sanitizer report is the
// finding.
struct FuzzTarget {
    QString name;
    std::function<void(const QByteArray &)> run;
};

const QList<FuzzTarget> &fuzzTargets();
const FuzzTarget *fuzzTarget(const QString &name);
