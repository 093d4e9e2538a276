#include "PrivateValue.h"

namespace stagehost {

PrivateValue::PrivateValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

HostValue::Taken PrivateValue::WriteText(std::string_view text) {
    return Assign(m_text, std::string(text));
}

} // namespace stagehost
