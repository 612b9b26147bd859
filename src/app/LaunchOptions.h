#pragma once

#include <QString>
#include <QStringList>

// What the command line asks of a start.
struct LaunchOptions {
    QString home;       // --home DIR or VELMORA_HOME
    bool selfTest = false;  // --self-test: show the root, report, quit
    QString screenshot; // --screenshot FILE: save the first frame as PNG (implies quitting)

    static LaunchOptions parse(const QStringList &arguments);
};
