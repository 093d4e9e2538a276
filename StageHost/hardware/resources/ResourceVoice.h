#pragma once

#include <functional>
#include <string>

#include "ChangeFeed.h"

namespace stagehost {

/// Tells people of one resource: its changes go to the feed of the show, and what is more than a change is told in
/// words. All texts are Latin-1.
class ResourceVoice {
public:
    /// Called on any thread of the host.
    using Say = std::function<void(const std::string& text)>;

    /// @param feed must outlive the voice. @param say may be empty.
    ResourceVoice(std::string name, ChangeFeed& feed, Say say);

    const std::string& Name() const { return m_name; }

    /// [any]
    void TellChange(const std::string& property, const std::string& value) const;
    /// The same of something below the resource, such as a channel.
    void TellChangeOf(const std::string& below, const std::string& property, const std::string& value) const;
    /// Something in words, which people see whatever they watch. @param utf8 "lost /dev/ttyUSB0: it has gone"
    void TellWords(const std::string& utf8) const;

private:
    const std::string m_name;
    ChangeFeed& m_feed;
    const Say m_say;
};

} // namespace stagehost
