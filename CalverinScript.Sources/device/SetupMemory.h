#pragma once

/// How the user left the setup dialog of a device. Kept as long as the device, in no file.   [host main]
struct SetupMemory {
    int currentTab = 0;
    int x = 0; ///< the dialog's rectangle; all four 0: as it was designed
    int y = 0;
    int width = 0;
    int height = 0;
    int saveOption = 0; ///< where changes of a script with a file went, see DialogSaveScriptOptions
    bool findMatchesCase = false;
    bool findsDown = true;
};
