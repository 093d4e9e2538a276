#pragma once

#include <QString>

/// What to write in place of a name that other programs have and this engine has not: for "setTimeout", `write
/// "QCalverin.SetTimeout(function () {}, ms)"`. Empty for a name that nothing is known of.   [any]
QString InsteadOfUnknown(const QString& name);
