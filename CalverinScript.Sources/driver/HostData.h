#pragma once

#include <QString>

#include "IObjectParams.h"

/// @file
/// Texts out of and into a value of the host. Callable on any thread.

/// The value as text; empty when the host gives none.
QString TextOf(IData& data);

/// Sets the value from text.
void SetText(IData& data, const QString& text);

/// The value that counts for a parameter: the bound variable's when there is one, its own otherwise. Null for null.
IData* EffectiveData(IObjectParam* param);
