#include "walkthrough/WTiTunesViewController.h"

#include "catalogue/CatalogueImport.h"
#include "catalogue/LoadRestaurantsOperation.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "richtext/RichString.h"
#include "walkthrough/WalkthroughDelegate.h"

#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QPointer>

#include <algorithm>

namespace {
const char *const stepKeys[] = {"open_itunes_and_connect_your_DEVICE", "go_to_applications", "in_shared_files_click_the_app_velmora",
                                "add_the_file_to_the_documents_panel"};

// The translated reason a file handed over was not taken.
QString refusal(CatalogueImport::Outcome outcome)
{
    switch (outcome) {
    case CatalogueImport::Outcome::Imported: return QString();
    case CatalogueImport::Outcome::NotACatalogue: return qtTrId("wt_import_not_a_catalogue");
    case CatalogueImport::Outcome::OtherKey: return qtTrId("wt_import_other_key");
    case CatalogueImport::Outcome::Damaged: return qtTrId("wt_import_damaged");
    case CatalogueImport::Outcome::NoDate: return qtTrId("wt_import_no_date");
    case CatalogueImport::Outcome::NotNewer: return qtTrId("wt_import_not_newer");
    case CatalogueImport::Outcome::CopyFailed: return qtTrId("wt_import_copy_failed");
    }
    return QString();
}
}

WTiTunesViewController::WTiTunesViewController(Restaurants &restaurants, QString documents, QObject *parent)
    : QObject(parent)
    , m_restaurants(restaurants)
    , m_documents(std::move(documents))
{
    localize();
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
}

WTiTunesViewController::~WTiTunesViewController()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    stopWatching();
    m_importQueue.waitUntilAllOperationsAreFinished();
}

void WTiTunesViewController::localize()
{
    const RichString R({QStringLiteral("body { font-name: OpenSans-Light; font-size: 16; }"),
                        QStringLiteral("u { font-name: OpenSans; font-size: 16; }"),
                        QStringLiteral("c { font-name: OpenSans; font-size: 14; }")});
    m_steps.clear();
    for (const char *key : stepKeys) {
        QString text = qtTrId(key);
        // The folder is the user's to see, not markup.
        text.replace(QStringLiteral("{DOCUMENTS}"), QDir::toNativeSeparators(m_documents).toHtmlEscaped());
        m_steps.append(QVariant::fromValue(R.render(QStringLiteral("<body>") + text + QStringLiteral("</body>"))));
    }
    emit stepsChanged();
}

void WTiTunesViewController::viewWillAppear()
{
    stopWatching();
    m_ready = false;
    m_message.clear();
    emit stateChanged();
    // The watch: a load about once a second until a catalogue is ready.
    m_queue = std::make_unique<OperationQueue>(1);
    m_loadOperation = std::make_shared<LoadRestaurantsOperation>(m_restaurants);
    QPointer<WTiTunesViewController> self(this);
    NotificationCenter::defaultCenter().addObserver(this, Notifications::RestaurantsLoaded, [self](const QVariant &) {
        dispatchMain([self] {
            if (self)
                self->restaurantsLoaded();
        });
    });
    NotificationCenter::defaultCenter().addObserver(this, Notifications::RestaurantsNotLoaded, [self](const QVariant &) {
        dispatchMain([self] {
            if (self)
                self->showRefusedFiles();
        });
    });
    m_shownRefusals.clear();
    m_queue->addOperation(m_loadOperation);
}

void WTiTunesViewController::showRefusedFiles()
{
    // Said once for each set of files: a file looked at again as it is being written doesn't
    // repeat it, and a later refusal of a dropped file stays.
    const QStringList refused = m_restaurants.refusedFiles();
    if (!m_loadOperation || refused.isEmpty() || refused == m_shownRefusals)
        return;
    m_shownRefusals = refused;
    m_message = qtTrId("wt_copied_file_unusable").arg(refused.join(QStringLiteral(", ")));
    emit stateChanged();
}

void WTiTunesViewController::stopWatching()
{
    NotificationCenter::defaultCenter().removeObserver(this, Notifications::RestaurantsLoaded);
    NotificationCenter::defaultCenter().removeObserver(this, Notifications::RestaurantsNotLoaded);
    if (m_loadOperation)
        m_loadOperation->cancel();
    m_queue.reset(); // waits for the operation to see the cancel
    m_loadOperation.reset();
}

void WTiTunesViewController::restaurantsLoaded()
{
    if (!m_loadOperation || !m_restaurants.ready())
        return;
    stopWatching();
    m_ready = true;
    m_message.clear();
    emit stateChanged();
}

void WTiTunesViewController::cancelTouched()
{
    stopWatching();
    if (walkthroughDelegate)
        walkthroughDelegate->iTunesCanceled();
}

void WTiTunesViewController::startButtonTouched()
{
    if (m_ready && walkthroughDelegate)
        walkthroughDelegate->databaseReady();
}

bool WTiTunesViewController::openFileChooser()
{
    QStringList paths = qmlImportPaths;
    if (paths.isEmpty()) {
        paths = qEnvironmentVariable("QML_IMPORT_PATH").split(QLatin1Char(':'), Qt::SkipEmptyParts);
        paths.append(QLibraryInfo::path(QLibraryInfo::QmlImportsPath));
    }
    for (const QString &module : fileChooserModules) {
        const bool found = std::any_of(paths.cbegin(), paths.cend(), [&](const QString &path) {
            return QFileInfo::exists(path + QLatin1Char('/') + module + QStringLiteral("/qmldir"));
        });
        if (!found) {
            qCWarning(lcApp).noquote() << "The file chooser needs the QML module" << module << "which is not installed";
            m_message = qtTrId("wt_chooser_missing");
            emit stateChanged();
            return false;
        }
    }
    return true;
}

void WTiTunesViewController::importCatalogue(const QUrl &file)
{
    const QString source = file.isLocalFile() ? file.toLocalFile() : file.toString();
    if (source.isEmpty() || m_importing)
        return;
    m_importing = true;
    m_message.clear();
    emit stateChanged();
    QPointer<WTiTunesViewController> self(this);
    Restaurants *restaurants = &m_restaurants;
    const QString documents = m_documents;
    m_importQueue.addOperation([self, restaurants, source, documents] {
        const CatalogueImport::Result result = CatalogueImport::importFile(*restaurants, source, documents);
        if (result.outcome != CatalogueImport::Outcome::Imported)
            qCInfo(lcCatalogue).noquote() << "Catalogue file refused:" << result.detail;
        dispatchMain([self, outcome = result.outcome] {
            if (!self)
                return;
            self->m_importing = false;
            self->m_message = refusal(outcome);
            emit self->stateChanged();
        });
    });
}
