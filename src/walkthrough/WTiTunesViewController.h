#pragma once

#include "platform/OperationQueue.h"

#include <QObject>
#include <QUrl>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <memory>

class Restaurants;
class WalkthroughDelegate;

// The copy step: the user brings a catalogue file into Documents (by the platform's file
// sharing, by copying it there, by dropping it on the window or choosing it in a dialog), and a
// watch picks it up within about a second. Then the start button leads into the guide.
class WTiTunesViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the walkthrough")
    Q_PROPERTY(QVariantList steps READ steps NOTIFY stepsChanged)
    Q_PROPERTY(bool ready READ ready NOTIFY stateChanged)
    Q_PROPERTY(bool importing READ importing NOTIFY stateChanged)
    Q_PROPERTY(QString message READ message NOTIFY stateChanged)

public:
    WTiTunesViewController(Restaurants &restaurants, QString documents, QObject *parent = nullptr);
    ~WTiTunesViewController() override;

    WalkthroughDelegate *walkthroughDelegate = nullptr;

    // The four instructions, rendered.
    QVariantList steps() const { return m_steps; }
    bool ready() const { return m_ready; }
    bool importing() const { return m_importing; }
    // Why the last file handed over was refused, translated; empty otherwise.
    QString message() const { return m_message; }
    bool isWatching() const { return m_loadOperation != nullptr; }

    void localize();
    void viewWillAppear();
    Q_INVOKABLE void cancelTouched();
    Q_INVOKABLE void startButtonTouched();
    // A file dropped on the window or chosen in the dialog: copied into Documents if it is a
    // catalogue the guide can use; the watch then finds it.
    Q_INVOKABLE void importCatalogue(const QUrl &file);
    // Whether the file chooser can open: the system's dialog loads QML modules of its own when it
    // first opens, and one that isn't installed would end the app. When one is missing, the
    // message says so and the chooser stays shut.
    Q_INVOKABLE bool openFileChooser();
    // The QML modules the chooser loads, and where they are looked for (the Qt installation's
    // folder and QML_IMPORT_PATH; tests point it elsewhere).
    static inline const QStringList fileChooserModules = {QStringLiteral("QtQuick/Dialogs"), QStringLiteral("Qt/labs/folderlistmodel")};
    QStringList qmlImportPaths;

signals:
    void stepsChanged();
    void stateChanged();

private:
    void restaurantsLoaded();
    // Names the files in Documents the watch could not use: they stay, and another may be added.
    void showRefusedFiles();
    void stopWatching();

    Restaurants &m_restaurants;
    const QString m_documents;
    QVariantList m_steps;
    bool m_ready = false;
    bool m_importing = false;
    QString m_message;
    QStringList m_shownRefusals;
    std::unique_ptr<OperationQueue> m_queue;
    std::shared_ptr<Operation> m_loadOperation;
    OperationQueue m_importQueue{1};
};
