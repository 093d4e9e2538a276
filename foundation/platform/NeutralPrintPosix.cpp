#include "NeutralPrint.h"

#include <cstdio>

#include <locale.h>

namespace {

/// Switches the calling thread to the neutral locale for a scope.
class NeutralLocale {
public:
    NeutralLocale()
        : m_before(Neutral() != nullptr ? uselocale(Neutral()) : nullptr) {}
    ~NeutralLocale() {
        if (m_before != nullptr)
            uselocale(m_before);
    }
    NeutralLocale(const NeutralLocale&) = delete;
    NeutralLocale& operator=(const NeutralLocale&) = delete;

private:
    static locale_t Neutral() {
        static const locale_t neutral = newlocale(LC_ALL_MASK, "C", nullptr); // kept for the life of the process
        return neutral;
    }
    locale_t m_before;
};

} // namespace

int NeutralPrint(char* buffer, std::size_t size, const char* format, va_list arguments) {
    const NeutralLocale locale;
    return vsnprintf(buffer, size, format, arguments);
}
