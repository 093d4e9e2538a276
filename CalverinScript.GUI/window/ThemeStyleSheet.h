#pragma once

#include <QString>

class IMInterface;
class QWidget;

/// The style sheet that gives dialogs the colours of the host. @param host its root object, may be null.
/// @return an empty text for a host without a theme.   [host main]
QString BuildThemeStyleSheet(IMInterface* host);

/// Gives a dialog the colours of the host: the style sheet, and the palette for what the sheet leaves to the style, such as check marks
/// and spin boxes. A host without a theme leaves the dialog as it is. Done once more it takes the colours anew, or none. @param host its root object, may be null.   [host main]
void WearTheme(QWidget& dialog, IMInterface* host);
