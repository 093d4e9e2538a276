#pragma once

#include <memory>
#include <string>

#include "ScriptRecords.h"

class IObjectParams;
class TiXmlDocument;

/// One command as a show has stored it: an element with the owner's name, in it `Command` with `ObjectParams`. What the
/// user entered stands in it in the host's own form, of which no more is known here than where it stands.
class StoredCommand {
public:
    StoredCommand();
    ~StoredCommand();
    StoredCommand(const StoredCommand&) = delete;
    StoredCommand& operator=(const StoredCommand&) = delete;

    /// @return false for a text that does not parse.
    bool Parse(const char* xml);
    /// Name of the device; null when the text names none.
    QString OwnerName() const;
    /// Name of the script function; empty when it is no user command.
    QString FunctionName() const;

    /// The text with the command's number and its parameters as they are now. Each takes over the value, binding and
    /// comment of the one that was stored for the same parameter of the function or, failing that, under the same name.
    /// A value that the parameter's type cannot hold is dropped.
    std::string Rewrite(const MScriptCommand& command);

private:
    std::unique_ptr<TiXmlDocument> m_document;
    bool m_plain8Bit = false; ///< the text was no UTF-8, and so will be what is made of it
};

/// Whether a stored command's parameters are those of the command: as many, one by one with the same name, direction,
/// type and limits, so far as both sides tell them.   [any host thread]
bool MatchesStoredParams(const MScriptCommand& command, IObjectParams& params);
