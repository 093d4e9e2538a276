#pragma once

#include <QByteArray>

/// A TypeScript declaration file of what a script sees beside the language, for editors that complete and check
/// JavaScript with one. Methods, parameters and their types are those of the objects themselves; where these take any
/// value, a table says which make sense.
QByteArray ScriptDeclarations();
