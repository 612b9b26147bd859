#include "platform/Logging.h"

Q_LOGGING_CATEGORY(lcPlatform, "velmora.platform")
Q_LOGGING_CATEGORY(lcCatalogue, "velmora.catalogue")
Q_LOGGING_CATEGORY(lcSearch, "velmora.search")
Q_LOGGING_CATEGORY(lcRichText, "velmora.richtext")
Q_LOGGING_CATEGORY(lcUpdate, "velmora.update")
Q_LOGGING_CATEGORY(lcApp, "velmora.app")
Q_LOGGING_CATEGORY(lcAnalytics, "velmora.analytics")
