#pragma once

#include <QJsonObject>

namespace stagehost {

/// The JSON Schema (2020-12) of show files, made from the keys that the reader knows. It tells the form; whether names
/// stand for something, values suit and a step does one thing is seen when a show is opened.   [any]
QJsonObject ShowSchema();

} // namespace stagehost
