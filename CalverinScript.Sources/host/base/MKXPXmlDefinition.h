#pragma once

#include <cstdint>
#include <memory>

/// A heap copy of a device definition text. Belongs to one thread at a time.
class MKXPXmlDefinition {
public:
    MKXPXmlDefinition() = default;
    MKXPXmlDefinition(const MKXPXmlDefinition&) = delete;
    MKXPXmlDefinition& operator=(const MKXPXmlDefinition&) = delete;
    virtual ~MKXPXmlDefinition();

    /// Replaces the text by a raw data resource of the module.
    /// @param moduleHandle the module whose resource it is; this module has one set of resources, so any value will do.
    /// @return false when there is no such resource; the text is then null.
    virtual bool LoadFromResource(const void* moduleHandle, std::uint32_t resourceId);
    /// The text, owned by this object; null when there is none.
    virtual const char* GetText() const;
    /// Replaces the text by a copy; null leaves none.
    virtual void SetText(const char* text);

private:
    std::unique_ptr<char[]> m_text;
};
