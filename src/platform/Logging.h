#pragma once

#include <QLoggingCategory>

// One category per subsystem, so a reader can switch each on with QT_LOGGING_RULES.
Q_DECLARE_LOGGING_CATEGORY(lcPlatform)
Q_DECLARE_LOGGING_CATEGORY(lcCatalogue)
Q_DECLARE_LOGGING_CATEGORY(lcSearch)
Q_DECLARE_LOGGING_CATEGORY(lcRichText)
Q_DECLARE_LOGGING_CATEGORY(lcUpdate)
Q_DECLARE_LOGGING_CATEGORY(lcApp)
Q_DECLARE_LOGGING_CATEGORY(lcAnalytics)
