#pragma once

#include <QString>

// The application's three directories live under one root, as they do in a phone's sandbox.
// The root is the platform's application data location unless `--home DIR` or VELMORA_HOME
// moves it; tests always point it at a fresh temporary directory.
class Paths
{
public:
    static QString root();
    static void setRoot(const QString &root);

    // Each creates its directory on first use; an empty string means it can't be had.
    static QString documents();
    static QString caches();
    static QString applicationSupport();


private:
    static QString subdirectory(const QString &name);
};
