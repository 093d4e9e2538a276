#include <array>

#include "BusyScript.h"
#include "Cases.h"

namespace {

void ExpectFaces(IMInterface& object, const char* const* begin, const char* const* end, const std::string& what) {
    int canary = 0;
    void* out = &canary;
    Trial::ExpectCode(object.QueryInterface("INobodyHasThis", &out), KXP_NO_INTERFACE,
                      what + "'s QueryInterface of an unknown face");
    Trial::Expect(out == nullptr, what + "'s QueryInterface of an unknown face clears the pointer");
    Trial::ExpectCode(object.QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG,
                      what + "'s QueryInterface of a null name");
    Trial::ExpectCode(object.QueryInterface(*begin, nullptr), KXP_BAD_INTERFACE_ARG,
                      what + "'s QueryInterface into a null pointer");
    for (const char* const* name = begin; name != end; ++name) {
        Trial::ExpectCode(object.QueryInterface(*name, &out), KXP_OK, what + "'s QueryInterface of " + *name);
        void* again = nullptr;
        static_cast<IMInterface*>(out)->QueryInterface(*name, &again);
        Trial::Expect(again == out, what + " gives the same " + *name + " from each face");
    }
}

} // namespace

void AnswersForFaces(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    const std::array<const char*, 1> ofModule = {"IKXPModule"};
    trial.Step("the module");
    ExpectFaces(host.Module(), ofModule.begin(), ofModule.end(), "the module");
    const std::array<const char*, 2> ofDevice = {"IMInterface", "IKXPDevice"};
    const HostedDevice device(host);
    trial.Step("the device");
    ExpectFaces(*device, ofDevice.begin(), ofDevice.end(), "the device");
}
