#include "ThrownText.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <typeinfo>

#include <cxxabi.h>

std::string TextOfThrown() {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type == nullptr)
        return "no exception";
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, &status),
                                                      &std::free);
    std::string text = "an exception of the type " + std::string(name != nullptr ? name.get() : type->name());
    try {
        throw;
    } catch (const std::exception& exception) {
        text += " (" + std::string(exception.what()) + ")";
    } catch (...) { // has no text
    }
    return text;
}
