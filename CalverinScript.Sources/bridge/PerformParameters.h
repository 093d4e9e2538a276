#pragma once

#include <string>

#include <QString>
#include <QStringList>

/// The parameter text of an action, in the host's 8-bit text.
///
/// With the type "XML", in any letter case, it is the first parameter, unchanged. Any other type takes every parameter
/// as "name=value", split at the first "=", and makes one element of each; those without "=" or with an empty side are
/// left out. Pure function, callable on any thread.
std::string PerformParameters(const QString& type, const QStringList& parameters);
