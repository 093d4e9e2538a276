#pragma once

#include <vector>

#include "ScriptSource.h"

/// The words of a script, without depth and partner. A pure function.
std::vector<SourceWord> ReadSourceWords(const QString& script);
