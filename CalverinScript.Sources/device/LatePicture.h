#pragma once

#include <QIcon>

/// A picture of the module's resources for rows of lists and tables. It is looked for when it is first drawn, since that takes long and
/// few of the rows are ever seen. On a selected row, whose ground has the colours of pictures, it is drawn in the colour of the text.
/// @param name a literal, such as ":/devIcon".   [host main]
QIcon LatePictureOf(const char* name);
