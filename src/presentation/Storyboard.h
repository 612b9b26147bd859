#pragma once

#include <QString>

#include <functional>

class QObject;
class ViewController;

// The registry of screens by storyboard and identifier ("Buscar", "search-view-controller").
// Each subsystem registers its screens once; anyone can then make one without knowing its class.
namespace Storyboard {
using Factory = std::function<ViewController *(QObject *parent)>;

void registerScene(const QString &storyboard, const QString &identifier, Factory factory);
// A new controller, owned by `parent`; null (and a logged warning) for an unknown scene.
ViewController *instantiate(const QString &storyboard, const QString &identifier, QObject *parent = nullptr);
}
