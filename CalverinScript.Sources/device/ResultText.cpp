#include "ResultText.h"

#include <cstdlib>
#include <cstring>

#include "FaceAnswer.h"

void ResultText::WriteTo(IData& target) const {
    if (m_text)
        target.SetValueFromString(m_text->c_str(), 0, 0);
}

KXPCode ResultText::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out, {{"IMInterface", static_cast<IMInterface*>(this)}});
}

KXPCode ResultText::SetProperty(const char* /*name*/, const char* /*value*/, std::uint32_t /*reserved1*/,
                                std::uint32_t /*reserved2*/) {
    return KXP_NOT_IMPLEMENTED;
}

char* ResultText::GetValueAsString() {
    return m_text ? strdup(m_text->c_str()) : nullptr;
}

void ResultText::ReleaseString(char** text) {
    if (text == nullptr)
        return;
    std::free(*text);
    *text = nullptr;
}

void ResultText::SetValueFromString(const char* text, std::uint32_t /*reserved1*/, std::uint32_t /*reserved2*/) {
    m_text = text != nullptr ? text : "";
}
