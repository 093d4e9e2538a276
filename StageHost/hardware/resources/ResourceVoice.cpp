#include "ResourceVoice.h"

#include "BorderText.h"

namespace stagehost {

ResourceVoice::ResourceVoice(std::string name, ChangeFeed& feed, Say say)
    : m_name(std::move(name))
    , m_feed(feed)
    , m_say(std::move(say)) {}

void ResourceVoice::TellChange(const std::string& property, const std::string& value) const {
    m_feed.Tell(ObjectKind::Resource, m_name, property, value);
}

void ResourceVoice::TellChangeOf(const std::string& below, const std::string& property,
                                 const std::string& value) const {
    m_feed.Tell(ObjectKind::Resource, m_name + "." + below, property, value);
}

void ResourceVoice::TellWords(const std::string& utf8) const {
    const std::string text = ToBorderText(FromOutsideText(utf8));
    m_feed.Tell(ObjectKind::Resource, m_name, "Note", text);
    if (m_say)
        m_say(m_name + ": " + text);
}

} // namespace stagehost
