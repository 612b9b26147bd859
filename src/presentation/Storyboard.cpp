#include "Storyboard.h"

#include "ViewController.h"
#include "platform/Logging.h"

#include <QHash>

#include <mutex>

namespace {
std::mutex registryMutex;
QHash<QString, Storyboard::Factory> &registry()
{
    static QHash<QString, Storyboard::Factory> scenes;
    return scenes;
}
QString sceneKey(const QString &storyboard, const QString &identifier)
{
    return storyboard + QLatin1Char('/') + identifier;
}
}

void Storyboard::registerScene(const QString &storyboard, const QString &identifier, Factory factory)
{
    std::lock_guard lock(registryMutex);
    registry().insert(sceneKey(storyboard, identifier), std::move(factory));
}

ViewController *Storyboard::instantiate(const QString &storyboard, const QString &identifier, QObject *parent)
{
    Factory factory;
    {
        std::lock_guard lock(registryMutex);
        factory = registry().value(sceneKey(storyboard, identifier));
    }
    if (!factory) {
        qCWarning(lcApp) << "No scene" << identifier << "in storyboard" << storyboard;
        return nullptr;
    }
    return factory(parent);
}
