#pragma once

#include <functional>
#include <map>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include "ScriptDoor.h"

namespace stagehost {

/// Tells what matters of a counterpart: as lines of JSON for a show, or the same facts for people.   [host main]
class Voice {
public:
    using Write = std::function<void(const QString& line)>;

    /// @param json whether lines of JSON are wanted. @param result takes what is told, @param problem what is
    /// complained of to people.
    Voice(bool json, Write result, Write problem);

    /// @param places of the endpoints by their names; one without a name is the only one.
    void Ready(const QString& script, const std::map<QString, QJsonObject>& places, quint64 seed) const;
    void Received(const QString& endpoint, int line, const QByteArray& frame) const;
    void Said(const QString& endpoint, int line, const QByteArray& bytes, const QString& prank) const;
    void Note(const QString& text) const;
    void Problem(const QString& text, const QStringList& place = {}) const;
    /// Answers to orders.
    void Done(const QString& what, const QString& result) const;
    void Refused(const QString& why, const QStringList& place = {}) const;

private:
    void Tell(const QJsonObject& object, const QString& line) const;

    const bool m_json;
    const Write m_result;
    const Write m_problem;
};

} // namespace stagehost
