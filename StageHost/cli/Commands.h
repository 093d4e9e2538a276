#pragma once

#include "Options.h"

/// @file
/// The work of the program's commands. Each prints its outcome and gives the exit code.   [host main]

namespace stagehost {

int RunShow(const Options& options);
int ExecFunction(const Options& options);
int CheckScript(const Options& options);
int ComposeScript(const Options& options);
int SendCommand(const Options& options);
int ShowDefinition(const Options& options);
int ShowVariables(const Options& options);
int TestShows(const Options& options);
int WatchShow(const Options& options);
int PrintDeclarations(const Options& options);
int PrintSchema(const Options& options);
int NewDriver(const Options& options);
int KeepSetups(const Options& options);
int ShowPanel(const Options& options);
int StoreCommand(const Options& options);
int RecordTraffic(const Options& options);
int ReplayTraffic(const Options& options);
int UpdateCommands(const Options& options);
int PlayCounterpart(const Options& options);

} // namespace stagehost
