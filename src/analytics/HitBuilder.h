#pragma once

#include "analytics/Hit.h"

// Builds the parameters of one hit for TrackerImpl::send.
class HitBuilder
{
public:
    static HitBuilder createEventWithCategory(const QString &category, const QString &action, const QString &label, qint64 value);
    static HitBuilder createScreenView();

    HitBuilder &set(const QString &key, const QString &value);
    HitParameters build() const { return m_parameters; }

private:
    HitParameters m_parameters;
};
