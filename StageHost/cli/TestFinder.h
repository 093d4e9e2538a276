#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "Failure.h"
#include "Show.h"

namespace stagehost {

/// A show that is played as a test.
struct TestShow {
    QString file;      ///< as the user will know it: relative to the working folder where that is shorter
    ShowTest settings; ///< of the show file; the defaults when that cannot be read, which its run tells
};

/// Finds the tests among files and folders: a file that is named is one, and in a folder and all below it those whose
/// name ends in ".test.json" and those that have the key "test". Folders whose name begins with a point are left out,
/// and links to folders.
/// @param places none for the working folder. @param tests receives them in the order of the places and their names,
/// each once.
/// @return what is wrong with a place, or that there is no test.   [host main]
MaybeFailure FindTests(const QStringList& places, std::vector<TestShow>& tests);

} // namespace stagehost
