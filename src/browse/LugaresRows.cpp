#include "browse/LugaresRows.h"

#include "catalogue/Restaurants.h"

#include <algorithm>

LugaresRows::LugaresRows(Restaurants &restaurants, const QList<Section> &sections, QObject *parent)
    : QAbstractListModel(parent)
    , m_restaurants(restaurants)
    , m_sections(sections)
    , m_turns([this](int first, int last) { emit dataChanged(index(first), index(last)); }, this)
{
}

LugaresRows::Offsets LugaresRows::offsetsOf(const QList<Section> &sections)
{
    Offsets offsets;
    for (int s = 0; s < sections.size(); ++s)
        for (int r = 0; r < sections.at(s).ids.size(); ++r)
            offsets.append({s, r});
    return offsets;
}

void LugaresRows::rebuild()
{
    m_turns.forget();
    m_target.clear();
    beginResetModel();
    m_shown = m_sections;
    m_index = offsetsOf(m_shown);
    endResetModel();
}

void LugaresRows::update()
{
    // Rows still being added stay out: the rows the view has are compared with the new list.
    m_turns.dropStep();
    m_target.clear();
    const Offsets target = offsetsOf(m_sections);
    const auto idOf = [](const QList<Section> &sections, std::pair<int, int> at) { return sections.at(at.first).ids.at(at.second); };
    const qsizetype before = m_index.size();
    const qsizetype after = target.size();
    qsizetype head = 0;
    while (head < before && head < after && idOf(m_shown, m_index.at(head)) == idOf(m_sections, target.at(head)))
        ++head;
    qsizetype tail = 0;
    while (tail < before - head && tail < after - head
           && idOf(m_shown, m_index.at(before - 1 - tail)) == idOf(m_sections, target.at(after - 1 - tail)))
        ++tail;
    const qsizetype rewritten = std::min(before, after) - head - tail;
    const qsizetype added = after - before;
    const qsizetype addedAt = head + rewritten;
    if (added < 0) {
        beginRemoveRows({}, int(addedAt), int(addedAt - added - 1));
        m_index.remove(addedAt, -added);
        m_turns.rowsRemoved(int(addedAt), int(-added));
        endRemoveRows();
    }
    // From the next change of m_index the rows read the new sections; what changed is told below.
    if (added > 0) {
        // Rows above the screen at once; those on screen a turn each, after the rewrites. The
        // first rows the list ever has come at once: nothing else is on screen to keep moving,
        // and the start's first list is soonest shown whole.
        const qsizetype firstShown = std::max<qsizetype>(addedAt, m_turns.shownFirst());
        Offsets partial = target;
        if (m_filledBefore && firstShown < addedAt + added && firstShown <= m_turns.shownLast()) {
            partial.remove(firstShown, addedAt + added - firstShown);
            m_target = target;
            m_missingFrom = firstShown;
            m_missingEnd = addedAt + added;
        }
        const qsizetype nowAdded = partial.size() - m_index.size();
        if (nowAdded > 0) {
            beginInsertRows({}, int(addedAt), int(addedAt + nowAdded - 1));
            m_index = partial;
            m_shown = m_sections;
            m_turns.rowsInserted(int(addedAt), int(nowAdded));
            endInsertRows();
        } else {
            m_index = partial;
            m_shown = m_sections;
        }
    } else {
        m_index = target;
        m_shown = m_sections;
    }
    if (rewritten > 0)
        m_turns.rewrite(int(head), int(head + rewritten - 1));
    if (!m_target.isEmpty())
        m_turns.thenStep([this] { return addMissingRow(); });
    m_filledBefore = m_filledBefore || !m_index.isEmpty();
    if (!m_index.isEmpty() && (head > 0 || tail > 0))
        emit dataChanged(index(0), index(int(m_index.size()) - 1), {SectionRole, LetterRole});
}

bool LugaresRows::addMissingRow()
{
    if (m_missingFrom >= m_missingEnd)
        return false;
    const qsizetype last = m_missingFrom <= m_turns.shownLast() ? m_missingFrom : m_missingEnd - 1;
    beginInsertRows({}, int(m_missingFrom), int(last));
    m_index.insert(m_missingFrom, last - m_missingFrom + 1, {});
    std::copy(m_target.begin() + m_missingFrom, m_target.begin() + last + 1, m_index.begin() + m_missingFrom);
    m_turns.rowsInserted(int(m_missingFrom), int(last - m_missingFrom + 1));
    m_missingFrom = last + 1;
    endInsertRows();
    if (m_missingFrom < m_missingEnd)
        return true;
    m_target.clear();
    return false;
}

void LugaresRows::removeRow(int row, const std::function<void()> &change)
{
    m_turns.flush();
    beginRemoveRows({}, row, row);
    change();
    m_shown = m_sections;
    m_index = offsetsOf(m_shown);
    endRemoveRows();
}

int LugaresRows::idAt(int row) const
{
    if (row < 0 || row >= m_index.size())
        return -1;
    const auto [section, offset] = m_index.at(row);
    return m_shown.at(section).ids.at(offset);
}

QVariant LugaresRows::data(const QModelIndex &index, int role) const
{
    const int id = idAt(index.row());
    if (id < 0)
        return {};
    switch (role) {
    case RidRole:
        return id;
    case SectionRole:
        return sectionAt(index.row());
    case LetterRole:
        return m_shown.at(sectionAt(index.row())).name;
    case PictureRole:
        return PlaceCardTexts::picture(m_restaurants, id);
    default:
        break;
    }
    // A place without a brief keeps whatever the card held; here that is nothing.
    const auto brief = m_restaurants.brief(id);
    if (!brief)
        return {};
    switch (role) {
    case NameRole:
        return brief->name;
    case CuisinesRole:
        return m_texts.cuisines(*brief);
    case AddressRole:
        return brief->address;
    case WarningRole:
        return PlaceCardTexts::warning(*brief);
    case HasPhoneRole:
        return brief->hasPhone;
    case AccessibleNameRole:
        return PlaceCardTexts::spoken(*brief);
    default:
        return {};
    }
}

QHash<int, QByteArray> LugaresRows::roleNames() const
{
    return {{RidRole, "rid"},         {NameRole, "name"},         {CuisinesRole, "cuisines"},
            {AddressRole, "address"}, {WarningRole, "warning"},   {HasPhoneRole, "hasPhone"},
            {PictureRole, "picture"}, {SectionRole, "section"},   {LetterRole, "letter"},
            {AccessibleNameRole, "accessibleName"}};
}
