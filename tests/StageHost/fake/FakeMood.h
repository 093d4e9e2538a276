#pragma once

#include <string>

/// How the fake module behaves as a whole: the environment variable FAKE_MODULE. Moods: "entry-fails", "create-fails",
/// "initialize-hangs", "start-hangs", "start-hangs-for-good", "release-hangs", "no-definition", "broken-definition".
bool MoodIs(const std::string& mood);
