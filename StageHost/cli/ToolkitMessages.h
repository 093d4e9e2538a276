#pragma once

namespace stagehost {

/// Keeps the toolkit's own remarks off standard error, where people and programs expect the failure of their script:
/// from now on only errors are shown, unless all was asked for.   [host main]
void ShowToolkitMessages(bool all);

} // namespace stagehost
