#pragma once

#include "browse/PlaceCardTexts.h"
#include "browse/Sections.h"
#include "browse/ShownRowTurns.h"

#include <QAbstractListModel>

#include <functional>
#include <utility>

class Restaurants;

// The rows of the place list, one a place, with what its card shows. The list's sections are
// the controller's; update() moves the rows to them as cheaply for the view as it can.
class LugaresRows : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { RidRole = Qt::UserRole + 1, NameRole, AccessibleNameRole, CuisinesRole, AddressRole, WarningRole, HasPhoneRole, PictureRole,
                SectionRole, LetterRole };

    LugaresRows(Restaurants &restaurants, const QList<Section> &sections, QObject *parent);

    void setShownRows(int first, int last) { m_turns.setShownRows(first, last); }
    // Every row anew.
    void rebuild();
    // Keeps the unchanged start and end of the list and rewrites the rows between in place:
    // typing changes the rows on screen at nearly every key, and a card told its new place is
    // far cheaper than a card made anew. Cards on screen are rewritten and added one a turn.
    void update();
    // Removes a row, `change` taking it out of the sections between the model's two signals.
    void removeRow(int row, const std::function<void()> &change);

    // Whether cards on screen are still being rewritten or added, a turn each.
    bool settling() const { return m_turns.pending(); }

    int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : int(m_index.size()); }
    int idAt(int row) const;
    int sectionAt(int row) const { return row < 0 || row >= m_index.size() ? -1 : m_index.at(row).first; }
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    using Offsets = QList<std::pair<int, int>>; // row -> (section, offset)
    static Offsets offsetsOf(const QList<Section> &sections);
    // Adds the rows of m_target from m_missingFrom up to m_missingEnd: one while it would stand
    // on screen, else the rest at once. False once none is missing.
    bool addMissingRow();

    Restaurants &m_restaurants;
    const QList<Section> &m_sections; // the list to show
    PlaceCardTexts m_texts;
    Offsets m_index;       // the rows the view was told about, in m_shown
    QList<Section> m_shown; // the sections the rows were last told about
    // While rows on screen are being added: the rows being moved to, and the span of them not
    // added yet (the view has m_target less [m_missingFrom, m_missingEnd)).
    Offsets m_target;
    qsizetype m_missingFrom = 0;
    qsizetype m_missingEnd = 0;
    bool m_filledBefore = false; // whether the list has had rows
    ShownRowTurns m_turns;
};
