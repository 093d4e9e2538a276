#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QScriptValue>
#include <QString>

#include "ScriptRecords.h"

class QScriptEngine;

/// @file
/// Resources of the host that settings name. Runs on the thread of the engine that is given.

/// What names a resource: a JSON text or an object. What is missing or of another type has the value that stands here.
struct ResourceSignature {
    QString type; ///< name of the form's field, "Serial" and the like
    std::int32_t resourceId = -1;
    std::int32_t channelIndex = -1;
};

/// Reads a signature. A text goes through the engine's own `JSON.parse`; exceptions of it are cleared.
ResourceSignature ReadResourceSignature(const QScriptValue& value, QScriptEngine& engine);

/// A resource as the host is asked for it.
struct ResourceRequest {
    int widget = 0;                ///< kind of the field that its type stands for, 14 to 20
    std::int32_t family = 0;       ///< 1 serial, 2 DMX, 5 I/O
    std::int32_t subtype = 0;      ///< 1 in, 2 out, 3 both
    std::int32_t channelType = -1; ///< of I/O: 0 digital out, 1 digital in, 2 analog out, 3 analog in
    std::int32_t resourceId = -1;
    std::int32_t channelIndex = -1;
};

/// Whether two requests are for the same resource; of channels the channel counts too.
bool operator==(const ResourceRequest& left, const ResourceRequest& right);

/// What a signature stands for; nothing for a type that is none of the seven.
std::optional<ResourceRequest> RequestOf(const ResourceSignature& signature);

/// The resources that settings of the kinds 14 to 20 name, in the order of the settings. A signature without a type has
/// that of the setting's field; one with an unknown type names none.
std::vector<ResourceRequest> FindResources(const ScriptSettings& settings);
