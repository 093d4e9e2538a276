#include <algorithm>
#include <atomic>
#include <limits>

#include "FormatScan.h"
#include "MString.h"
#include "NeutralPrint.h"
#include "NumberText.h"

namespace {

constexpr std::int32_t kResourceStep = 1024;
constexpr std::int32_t kMostResourceBytes = 1 << 20;

std::atomic<MString::ResourceLoader> resourceLoader{nullptr};

/// A copy of an argument list that ends with its scope.
class Arguments {
public:
    explicit Arguments(va_list source) { va_copy(m_list, source); }
    ~Arguments() { va_end(m_list); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    FormatScan Scan(const char* format, TextArguments texts) { return ScanFormat(format, m_list, texts); }
    int Print(char* buffer, std::size_t size, const char* format) { return NeutralPrint(buffer, size, format, m_list); }

private:
    va_list m_list;
};

} // namespace

std::int32_t MString::GetFormatLength(const char* format, va_list arguments) const {
    if (format == nullptr)
        return 0;
    const std::int64_t length = ScanFormat(format, arguments, TextArguments::Measure).length;
    return static_cast<std::int32_t>(std::min<std::int64_t>(length, std::numeric_limits<std::int32_t>::max()));
}

std::int32_t MString::Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::int32_t length = FormatArguments(format, arguments);
    va_end(arguments);
    return length;
}

// Measured first, since the estimate is no bound; and into a string of its own, since the arguments may use this one.
std::int32_t MString::FormatArguments(const char* format, va_list arguments) {
    MString printed;
    if (format != nullptr && Arguments(arguments).Scan(format, TextArguments::Skip).printable) {
        const int length = Arguments(arguments).Print(nullptr, 0, format);
        if (length >= 0 && length < std::numeric_limits<std::int32_t>::max()) {
            printed.Reserve(length + 1);
            Arguments(arguments).Print(printed.GetBuffer(), static_cast<std::size_t>(length) + 1, format);
            printed.m_length = length;
        }
    }
    *this = std::move(printed);
    return m_length;
}

void MString::SetResourceLoader(ResourceLoader loader) {
    resourceLoader = loader;
}

bool MString::LoadResource(void* module, std::uint32_t id) {
    const ResourceLoader load = resourceLoader;
    std::int32_t size = kResourceStep;
    std::int32_t loaded = 0;
    for (; load != nullptr && size <= kMostResourceBytes; size += kResourceStep) {
        Reserve(size);
        loaded = load(module, id, m_buffer.get(), size);
        if (loaded < size - 1)
            break;
    }
    if (loaded < 1 || size > kMostResourceBytes) {
        Clear();
        return false;
    }
    m_length = loaded;
    m_buffer[static_cast<std::size_t>(loaded)] = '\0';
    Compact();
    return true;
}

std::int32_t MString::ToInt() const {
    return IntFromText(View());
}

double MString::ToDouble() const {
    return DoubleFromText(View());
}
