#pragma once

#include <map>
#include <string>

#include "IHostServices.h"

/// A variable that notes what is written and counts the texts that it has out.
class FakeVariable : public IData {
public:
    virtual ~FakeVariable() = default;

    std::int32_t integer = 0;
    double real = 0.0;
    const char* text = nullptr; ///< what a reader gets, null for no text
    std::string written;        ///< "kind|value|reserved|reserved" of the last write
    int textsOut = 0;

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return ""; }
    KXPCode SetProperty(const char*, const char*, std::uint32_t, std::uint32_t) override { return KXP_OK; }
    const char* GetProperty(const char*) override { return nullptr; }
    void ReleaseString(char** given) override {
        delete[] * given;
        *given = nullptr;
        --textsOut;
    }
    std::uint32_t GetInstanceID() override { return 0; }
    std::int32_t GetIntValue() override { return integer; }
    void SetIntValue(std::int32_t value, std::uint32_t first, std::uint32_t second) override {
        Note("int", std::to_string(value), first, second);
    }
    double GetRealValue() override { return real; }
    void SetRealValue(double value, std::uint32_t first, std::uint32_t second) override {
        Note("real", std::to_string(value), first, second);
    }
    char* GetValueAsString() override {
        if (text == nullptr)
            return nullptr;
        ++textsOut;
        const std::string value(text);
        auto* copy = new char[value.size() + 1];
        value.copy(copy, value.size());
        copy[value.size()] = '\0';
        return copy;
    }
    void SetValueFromString(const char* value, std::uint32_t first, std::uint32_t second) override {
        Note("text", value, first, second);
    }
    std::uint32_t GetDataType() override { return 0; }

private:
    void Note(const std::string& kind, const std::string& value, std::uint32_t first, std::uint32_t second) {
        written = kind + "|" + value + "|" + std::to_string(first) + "|" + std::to_string(second);
    }
};

/// Variables by their names; any name that is asked for is noted.
class FakeVariables : public IVariableManager {
public:
    virtual ~FakeVariables() = default;

    std::map<std::string, FakeVariable> variables;
    std::string asked; ///< the names, each followed by ";"

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode Reserved1(void*) override { return KXP_OK; }
    IData* FindVariable(const char* name) override {
        asked += std::string(name) + ";";
        const auto found = variables.find(name);
        return found != variables.end() ? &found->second : nullptr;
    }
};
