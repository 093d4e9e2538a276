#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QStringList>

#include "JsonNode.h"
#include "ObjectsReader.h"
#include "Show.h"

namespace stagehost {

/// Reads a show file and checks all of it before anything is done. Used once for one file.   [host main]
class ShowReader {
public:
    /// @param file where the text has been read: files that it names are looked for in its folder.
    /// @return nothing when something is wrong; Complaints tells what.
    std::optional<Show> Read(const QByteArray& text, const QString& file);

    /// One line for each mistake: "steps[0].device: there is no device "desk"", or, for a text that is no JSON,
    /// "4:17: ..." with line and column.
    const QStringList& Complaints() const { return m_complaints; }

private:
    void ReadShow(const JsonNode& root);
    void FindOwnPorts();
    void ReadHost(const JsonNode& host);
    void ReadTheme(const JsonNode& theme);
    void ReadFolders(const JsonNode& folders);
    void ReadVariable(const JsonNode& node);
    void ReadTest(const JsonNode& node);
    void ReadPeerPorts(const JsonNode& resources);
    void ReadDevice(const JsonNode& node);
    QString NoDevice(const QString& name) const;
    QString NoVariable(const QString& name) const;
    void ReadSettings(const JsonNode& node, ShowDevice& device);
    void ReadStoredCommand(const JsonNode& node);
    void ReadStep(const JsonNode& node, ObjectsReader& objects);
    void ReadOtherStep(const JsonNode& node, ObjectsReader& objects, ShowStep& step);
    void ReadWait(const JsonNode& wait, const ObjectsReader& objects, ShowStep& step);
    static void ReadExpectation(const JsonNode& node, ShowStep& step);
    void ReadCommandStep(const JsonNode& node, ShowStep& step);
    void ReadParameter(const QString& name, const JsonNode& node, ShowStep& step);
    bool ReadReference(const JsonNode& node, ShowParameter& parameter);
    void CheckParameter(const JsonNode& node, const ShowParameter& parameter);

    Show m_show;
    QStringList m_complaints;
};

} // namespace stagehost
