// Symbols of the UI control library seen by the program.
#pragma once

#include <QtCore/qglobal.h>

#if defined(ORVANE_UI_BUILD)
#define ORVANE_UI_EXPORT Q_DECL_EXPORT
#else
#define ORVANE_UI_EXPORT Q_DECL_IMPORT
#endif
