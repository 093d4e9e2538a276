#pragma once

#include <QString>

class IMInterface;

/// The style sheet that gives dialogs the colours of the host. @param host its root object, may be null.
/// @return an empty text for a host without a theme.   [host main]
QString BuildThemeStyleSheet(IMInterface* host);
