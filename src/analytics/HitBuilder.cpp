#include "analytics/HitBuilder.h"

HitBuilder HitBuilder::createEventWithCategory(const QString &category, const QString &action, const QString &label, qint64 value)
{
    HitBuilder builder;
    builder.set(QStringLiteral("&t"), QStringLiteral("event"))
        .set(QStringLiteral("&ec"), category)
        .set(QStringLiteral("&ea"), action)
        .set(QStringLiteral("&el"), label)
        .set(QStringLiteral("&ev"), QString::number(value));
    return builder;
}

HitBuilder HitBuilder::createScreenView()
{
    HitBuilder builder;
    builder.set(QStringLiteral("&t"), QStringLiteral("screenview"));
    return builder;
}

HitBuilder &HitBuilder::set(const QString &key, const QString &value)
{
    m_parameters.insert(key, value);
    return *this;
}
