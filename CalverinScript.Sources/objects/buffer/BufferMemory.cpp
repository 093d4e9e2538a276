#include "BufferMemory.h"

namespace {

/// Smaller texts are not asked for in advance.
constexpr qint64 kSurelyThere = qint64(1) << 20;

} // namespace

QScriptValue RefuseSize(QScriptContext* context, qint64 bytes) {
    return context->throwError(QScriptContext::RangeError, QStringLiteral("Buffer: no memory for %1 bytes").arg(bytes));
}

bool IsTextPossible(qint64 characters) {
    if (characters > kMaxBufferText)
        return false;
    if (characters < kSurelyThere)
        return true;
    const auto bytes = static_cast<std::size_t>(characters) * 2 * sizeof(QChar);
    void* probe = ::operator new(bytes, std::nothrow);
    ::operator delete(probe);
    return probe != nullptr;
}
