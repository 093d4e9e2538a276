#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "BusyScript.h"
#include "Cases.h"
#include "Faces.h"

namespace {

/// What resembles a name, and is none.
std::vector<std::string> NearNames(const std::string& name) {
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char one) { return std::tolower(one); });
    return {"", " " + name, name + " ", name + "s", name.substr(0, name.size() - 1), name.substr(1), lower};
}

void ExpectFaces(IMInterface& object, std::initializer_list<const char*> names, const char* what) {
    ExpectExactNames(object, names, what);
    const std::string ask = std::string(what) + "::QueryInterface(";
    for (const char* name : names) {
        void* out = nullptr;
        Trial::ExpectCode(object.QueryInterface(name, &out), KXP_OK, ask + name + ")");
        void* again = nullptr;
        static_cast<IMInterface*>(out)->QueryInterface(name, &again);
        Trial::Expect(again == out, ask + name + ") gives another face when that face is asked", "the same one");
    }
}

} // namespace

void ExpectExactNames(IMInterface& object, std::initializer_list<const char*> names, const char* what) {
    const std::string ask = std::string(what) + "::QueryInterface(";
    std::vector<std::string> unknown = {"INobodyHasThis"};
    for (const char* name : names)
        for (std::string& one : NearNames(name))
            unknown.push_back(std::move(one));
    int canary = 0;
    void* out = nullptr;
    for (const std::string& name : unknown) {
        out = &canary;
        const std::string call = std::string(ask).append(1, '"').append(name).append("\")");
        Trial::ExpectCode(object.QueryInterface(name.c_str(), &out), KXP_NO_INTERFACE, call);
        Trial::Expect(out == nullptr, call + " leaves the pointer as it was", "it is cleared");
    }
    Trial::ExpectCode(object.QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG, ask + "null, out)");
    Trial::ExpectCode(object.QueryInterface(*names.begin(), nullptr), KXP_BAD_INTERFACE_ARG,
                      ask + *names.begin() + ", null)");
}

void AnswersForFaces(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    trial.Step("the module");
    ExpectFaces(host.Module(), {"IKXPModule"}, "IKXPModule");
    if (auto* drivers = QueryFace<IKXPModuleDriverManager>(&host.Module(), "IKXPModuleDriverManager"))
        ExpectFaces(*drivers, {"IKXPModuleDriverManager", "IKXPModule"}, "IKXPModuleDriverManager");
    const HostedDevice device(host);
    trial.Step("the device");
    ExpectFaces(*device, {"IMInterface", "IKXPDevice"}, "IKXPDevice");
}
