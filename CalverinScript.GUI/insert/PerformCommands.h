#pragma once

#include <utility>
#include <vector>

#include <QString>

/// @file
/// What a device of the host can be told to do, read from the text in which the host describes it, and the call that tells it.
/// Pure functions, callable on any thread.

/// One command.
struct OfferedCommand {
    QString name;
    QString text; ///< its element, for ReadParams
};

/// Which way the value of a parameter goes.
enum class ParamWay { In, Out, InOut };

/// One parameter of a command.
struct OfferedParam {
    QString type; ///< tag of its data, such as "StringData"
    QString name;
    ParamWay way = ParamWay::In;
    QString value;                              ///< of a text or number
    std::vector<std::pair<int, QString>> items; ///< of an enumeration, with the places that they ask for
    int current = 0;                            ///< place of an enumeration's item
};

/// The commands that have a name, in the order of the text. @param objectText as the host gave it; one that is no XML or has no
/// commands gives none.
std::vector<OfferedCommand> ReadCommands(const char* objectText);

/// The parameters of a command that have a name and data, in its order.
std::vector<OfferedParam> ReadParams(const QString& commandText);

/// A parameter as it goes into a call.
struct GivenParam {
    QString name;
    QString value;
};

/// The line of script that performs a command. Nothing in it is escaped: what a name or value means to a script or to XML, it means.
QString PerformText(bool isAsync, const QString& device, const QString& command, const std::vector<GivenParam>& params);
