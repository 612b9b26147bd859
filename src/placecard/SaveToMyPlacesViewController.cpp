#include "SaveToMyPlacesViewController.h"

#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "richtext/IconFont.h"

SaveToMyPlacesViewController::SaveToMyPlacesViewController(UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_defaults(defaults)
    , R({QStringLiteral("i { font-name: Velmora-Icons; font-size: 84; }"), QStringLiteral("p { font-name: OpenSans; font-size: 15; }"),
         QStringLiteral("b { color: #d95c44; align: center; }")})
{
}

void SaveToMyPlacesViewController::viewDidLoad()
{
    m_lists.load(m_defaults);
    updateButtons();
    m_actionTitle = qtTrId("save_myplaces_cancel");
    emit actionChanged();
}

QString SaveToMyPlacesViewController::saveLabel() const { return qtTrId("save_myplaces_save_to_my_places"); }

void SaveToMyPlacesViewController::updateButtons()
{
    struct Toggle {
        int list;
        const char *name;
        const QString &off;
        const QString &on;
        const char *text;
    };
    const Toggle toggles[] = {
        {MyPlacesLists::favoritos, "favorite", IconFont::favoriteOff, IconFont::favoriteOn, "save_myplaces_favorite"},
        {MyPlacesLists::visitados, "visited", IconFont::visitedOff, IconFont::visitedOn, "save_myplaces_visited"},
        {MyPlacesLists::porVisitar, "toVisit", IconFont::toVisitOff, IconFont::toVisitOn, "save_myplaces_tovisit"},
    };
    m_buttons.clear();
    for (const Toggle &toggle : toggles) {
        const bool on = m_lists.contains(toggle.list, rid);
        const QString markup = QStringLiteral("<body><b><i>") + (on ? toggle.on : toggle.off) + QStringLiteral("</i>\n<p>")
            + qtTrId(toggle.text) + QStringLiteral("</p></b></body>");
        m_buttons.append(QVariantMap{{QStringLiteral("list"), toggle.list},
                                     {QStringLiteral("name"), QString::fromLatin1(toggle.name)},
                                     {QStringLiteral("spoken"), qtTrId(toggle.text)},
                                     {QStringLiteral("on"), on},
                                     {QStringLiteral("title"), QVariant::fromValue(R.render(markup))}});
    }
    emit buttonsChanged();
}

void SaveToMyPlacesViewController::toggleButtonTouched(int list)
{
    m_lists.toggle(list, rid);
    updateButtons();
    showDone();
}

void SaveToMyPlacesViewController::showDone()
{
    m_actionColor = QStringLiteral("#9acb22");
    m_actionTitle = qtTrId("save_myplaces_done");
    emit actionChanged();
}

void SaveToMyPlacesViewController::shareButtonTouched()
{
    if (shareCallback)
        shareCallback();
}

void SaveToMyPlacesViewController::actionButtonTouched()
{
    // Cancel and done are one button: with nothing touched it writes the lists back unchanged.
    m_lists.save(m_defaults);
    if (NavigationController *navigation = navigationController())
        navigation->dismissViewController(true);
}
