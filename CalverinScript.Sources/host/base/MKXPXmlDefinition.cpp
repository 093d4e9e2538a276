#include "MKXPXmlDefinition.h"

#include <cstring>

#include "ModuleResources.h"

MKXPXmlDefinition::~MKXPXmlDefinition() = default;

bool MKXPXmlDefinition::LoadFromResource(const void* /*moduleHandle*/, std::uint32_t resourceId) {
    m_text.reset();
    const QByteArray bytes = FindModuleResource(ModuleResource::RawData, resourceId);
    if (bytes.isNull())
        return false;
    SetText(bytes.constData());
    return true;
}

const char* MKXPXmlDefinition::GetText() const {
    return m_text.get();
}

void MKXPXmlDefinition::SetText(const char* newText) {
    std::unique_ptr<char[]> copy;
    if (newText != nullptr) {
        const std::size_t size = std::strlen(newText) + 1;
        copy = std::make_unique<char[]>(size);
        std::memcpy(copy.get(), newText, size);
    }
    m_text = std::move(copy);
}
