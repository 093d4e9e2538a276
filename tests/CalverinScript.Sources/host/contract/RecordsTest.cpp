#include <cstddef>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "IHostServices.h"
#include "IKXPModule.h"
#include "IManagerRemote.h"
#include "IManagerRuntimeInfo.h"

namespace {

static_assert(std::is_same<KXPCode, std::uint32_t>::value, "codes have 32 bits without sign");
static_assert(sizeof(KXPRuntimeInfo) == 252 && std::is_standard_layout<KXPRuntimeInfo>::value, "a host format");
static_assert(offsetof(KXPRuntimeInfo, size) == 0 && offsetof(KXPRuntimeInfo, reserved) == 4 &&
                  offsetof(KXPRuntimeInfo, appName) == 196 && offsetof(KXPRuntimeInfo, version) == 224,
              "fields at their stated places");
static_assert(KXP_LOG_PATH_SIZE == 1024, "the host writes up to 1024 bytes");

/// An interface is one pointer to its operations: no data, one base.
template <typename Interface>
constexpr bool IsOnePointer() {
    return sizeof(Interface) == sizeof(void*) && std::is_polymorphic<Interface>::value &&
           !std::has_virtual_destructor<Interface>::value && std::is_base_of<IMInterface, Interface>::value;
}
static_assert(IsOnePointer<IKXPModule>() && IsOnePointer<IKXPModuleDriverManager>() && IsOnePointer<IKXPDevice>() &&
                  IsOnePointer<IDeviceVariables>() && IsOnePointer<IExecContext>() && IsOnePointer<IExecContext2>() &&
                  IsOnePointer<IObjectParams>() && IsOnePointer<IObjectParam>() && IsOnePointer<IData>() &&
                  IsOnePointer<IEnumData>() && IsOnePointer<IManagerRuntimeInfo>() && IsOnePointer<IManagerRemote>() &&
                  IsOnePointer<IManagerRemote2>() && IsOnePointer<IManagerRemoteHandler>() &&
                  IsOnePointer<IVariableManager>() && IsOnePointer<IFolderManager>() &&
                  IsOnePointer<IObjectNameTools>(),
              "nothing but a pointer to operations crosses the border");

struct NumberCase {
    const char* name;
    std::uint32_t value;
    std::uint32_t stated;
};

TEST(Contract, KeepsItsResultCodes) {
    constexpr NumberCase kCodes[] = {
        {"ok", KXP_OK, 0},
        {"bad command", KXP_BAD_COMMAND, 1},
        {"null argument", KXP_NULL_ARGUMENT, 2},
        {"script failed", KXP_SCRIPT_FAILED, 3},
        {"no module", KXP_NO_MODULE, 6},
        {"no device made", KXP_NO_DEVICE_MADE, 7},
        {"cancelled", KXP_CANCELLED, 13},
        {"no asynchronous link", KXP_NO_ASYNC_LINK, 16},
        {"no device host", KXP_NO_DEVICE_HOST, 17},
        {"not implemented", KXP_NOT_IMPLEMENTED, 19},
        {"pending", KXP_PENDING, 21},
        {"bad setup", KXP_BAD_SETUP, 22},
        {"no", KXP_NO, 24},
        {"variable not found", KXP_VARIABLE_NOT_FOUND, 48},
        {"commands changed", KXP_COMMANDS_CHANGED, 771},
        {"no interface", KXP_NO_INTERFACE, 0x10000000},
        {"bad interface argument", KXP_BAD_INTERFACE_ARG, 0x10000001},
    };
    for (const NumberCase& row : kCodes)
        EXPECT_EQ(row.value, row.stated) << row.name;
}

TEST(Contract, KeepsItsDataTypesAndFolders) {
    constexpr NumberCase kNumbers[] = {
        {"private", KXP_PRIVATE_DATA, 0},       {"integer", KXP_INTEGER_DATA, 1},
        {"string", KXP_STRING_DATA, 2},         {"time", KXP_TIME_DATA, 3},
        {"enumeration", KXP_ENUM_DATA, 4},      {"date", KXP_DATE_DATA, 5},
        {"like a text", KXP_TEXT_LIKE_DATA, 6}, {"real", KXP_REAL_DATA, 7},
        {"unknown", KXP_UNKNOWN_DATA, 8},       {"program data", KXP_FOLDER_PROGRAM_DATA, 1},
        {"folder 4", KXP_FOLDER_4, 4},          {"user data of the project", KXP_FOLDER_PROJECT_USER_DATA, 20},
        {"scripts", KXP_FOLDER_SCRIPTS, 33},
    };
    for (const NumberCase& row : kNumbers)
        EXPECT_EQ(row.value, row.stated) << row.name;
}

TEST(Contract, NamesItsEntryPoint) {
    EXPECT_STREQ(KXP_ENTRY_POINT_NAME, "GetKXPEntryPoint");
}

/// Offers one face.
class OneFace : public IMInterface {
public:
    virtual ~OneFace() = default;
    KXPCode QueryInterface(const char* name, void** out) override {
        *out = std::string(name) == "IFolderManager" ? this : nullptr;
        return *out != nullptr ? KXP_OK : KXPCode{KXP_NO_INTERFACE};
    }
    KXPCode Release() override { return KXP_OK; }
};

TEST(QueryFace, GivesNullForANullObjectAndForAFaceThatIsNotOffered) {
    OneFace object;
    EXPECT_EQ(QueryFace<IFolderManager>(nullptr, "IFolderManager"), nullptr);
    EXPECT_EQ(QueryFace<IVariableManager>(&object, "IVariableManager"), nullptr);
    EXPECT_EQ(static_cast<void*>(QueryFace<IFolderManager>(&object, "IFolderManager")), &object);
}

} // namespace
