#pragma once

/// Whether the process could open that many more files, sockets or events just now. Toolkits abort the process when a
/// new thread finds none left for its event loop, so it is asked before.   [thread: any]
bool CanOpenDescriptors(int count);
