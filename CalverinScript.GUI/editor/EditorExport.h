#pragma once

#include <QtGlobal>

/// Marks the classes of the editor that the module file exports; everything else in the tree stays hidden.
#define CALVERIN_EDITOR_EXPORT Q_DECL_EXPORT
