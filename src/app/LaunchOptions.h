#pragma once

#include <QString>
#include <QStringList>

// What the command line asks of a start. Read before any window or home exists, so that
// --help and --version answer anywhere, even without a display.
struct LaunchOptions {
    enum class Action { Run, Help, Version, Refuse };

    Action action = Action::Run;
    QString error;          // why the command line was refused
    QString home;           // --home DIR, else VELMORA_HOME
    bool selfTest = false;  // --self-test: show the root, report, quit
    QString screenshot;     // --screenshot FILE: save the first frame as PNG, then quit
    bool dumpUi = false;    // --dump-ui: print the visible accessible items as JSON, then quit
    QString link;           // --open URL, or a velmora:// link given on its own
    QString updateUrl;      // --update-url URL: the Internet endpoint of update information
    bool checkUpdates = false; // --check-updates: ask every source, print JSON, quit (no window)
    bool updateNow = false;    // --update-now: fetch and install a newer catalogue, print JSON, quit
    QString analyticsUrl;      // --analytics-url URL: the measurement service (a collector of one's own)
    QString positionLog;       // --position-log FILE.nmea: the user's position replayed from a log

    bool reportsAndQuits() const { return selfTest || dumpUi || !screenshot.isEmpty(); }

    // `arguments` as main() receives them, the program's name first.
    static LaunchOptions parse(const QStringList &arguments);
    // The usage text, in the device's language.
    static QString usage();
    static QString version();
};
