#include <cstring>

#include <gtest/gtest.h>

#include "IDialogManager2.h"
#include "IDMXResource.h"
#include "IHostServices.h"
#include "IIOResource.h"
#include "IKXPDevicePanel.h"
#include "IKXPModule.h"
#include "IManagerRemote.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactoryManager.h"
#include "IPropertySelector.h"
#include "IResourceProvider.h"
#include "ISerialResource.h"

namespace {

/// Place of a virtual operation in its interface's table, from 0. Under the Itanium C++ ABI a pointer to such a member
/// function holds 1 plus the operation's offset in the table.
template <typename Operation>
std::size_t SlotOf(Operation operation) {
    std::uintptr_t offset = 0;
    static_assert(sizeof(operation) >= sizeof(offset), "a pointer and an adjustment");
    std::memcpy(&offset, &operation, sizeof(offset));
    return (offset - 1) / sizeof(void*);
}

struct SlotRow {
    const char* operation;
    std::size_t slot;
};

/// The operations stand in the table in the order of the rows, the first at a given place.
template <std::size_t Count>
void ExpectInOrder(const SlotRow (&rows)[Count], std::size_t first) {
    for (std::size_t i = 0; i < Count; ++i)
        EXPECT_EQ(rows[i].slot, first + i) << rows[i].operation;
}

#define SLOT(operation)                                                                                                \
    { #operation, SlotOf(&operation) }

TEST(Slots, OfIMInterface) {
    const SlotRow rows[] = {SLOT(IMInterface::QueryInterface), SLOT(IMInterface::Release)};
    ExpectInOrder(rows, 0);
}

TEST(Slots, OfIKXPModule) {
    const SlotRow rows[] = {
        SLOT(IKXPModule::Initialize),    SLOT(IKXPModule::Terminate),        SLOT(IKXPModule::SetDeviceHost),
        SLOT(IKXPModule::GetDefinition), SLOT(IKXPModule::GetModuleVersion), SLOT(IKXPModule::GetDeviceCount),
        SLOT(IKXPModule::CreateDevice),  SLOT(IKXPModule::GetDevice),        SLOT(IKXPModule::CheckCommand)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIKXPModuleDriverManager) {
    const SlotRow rows[] = {SLOT(IKXPModuleDriverManager::GetDriverList),
                            SLOT(IKXPModuleDriverManager::ShowDriverSetup),
                            SLOT(IKXPModuleDriverManager::GetDriverBitmap)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIKXPDevice) {
    const SlotRow rows[] = {SLOT(IKXPDevice::SetDeviceVariables),
                            SLOT(IKXPDevice::QueryCapability),
                            SLOT(IKXPDevice::SetName),
                            SLOT(IKXPDevice::GetName),
                            SLOT(IKXPDevice::ShowSetup),
                            SLOT(IKXPDevice::IsRunning),
                            SLOT(IKXPDevice::Start),
                            SLOT(IKXPDevice::Stop),
                            SLOT(IKXPDevice::OnTimerailEvent),
                            SLOT(IKXPDevice::GetBitmap),
                            SLOT(IKXPDevice::GetSetup),
                            SLOT(IKXPDevice::SetSetup),
                            SLOT(IKXPDevice::UpdateCommand),
                            SLOT(IKXPDevice::Reserved14),
                            SLOT(IKXPDevice::Reserved15),
                            SLOT(IKXPDevice::Reserved16),
                            SLOT(IKXPDevice::ExecuteCommand),
                            SLOT(IKXPDevice::ReleaseString),
                            SLOT(IKXPDevice::GetDefinition),
                            SLOT(IKXPDevice::Reserved20),
                            SLOT(IKXPDevice::CreatePanel)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIKXPDevicePanel) {
    const SlotRow rows[] = {SLOT(IKXPDevicePanel::GetWindow), SLOT(IKXPDevicePanel::Reserved4),
                            SLOT(IKXPDevicePanel::GetName),   SLOT(IKXPDevicePanel::Reserved6),
                            SLOT(IKXPDevicePanel::GetBounds), SLOT(IKXPDevicePanel::GetState),
                            SLOT(IKXPDevicePanel::SetState)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfAPanelsRectangleBeginWithTheLeftForItIsNoIMInterface) {
    const SlotRow rows[] = {SLOT(IPanelRect::SetLeft), SLOT(IPanelRect::SetTop), SLOT(IPanelRect::SetWidth),
                            SLOT(IPanelRect::SetHeight)};
    ExpectInOrder(rows, 0);
}

TEST(Slots, OfIPropertySelector) {
    const SlotRow rows[] = {SLOT(IPropertySelector::Reserved3), SLOT(IPropertySelector::GetName),
                            SLOT(IPropertySelector::Select)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIDeviceVariables) {
    const SlotRow rows[] = {SLOT(IDeviceVariables::GetVariable), SLOT(IDeviceVariables::SetDefinition)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIExecContext) {
    const SlotRow rows[] = {SLOT(IExecContext::SetErrorCode), SLOT(IExecContext::Begin), SLOT(IExecContext::End),
                            SLOT(IExecContext::Reserved4), SLOT(IExecContext::Reserved5)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIExecContext2) {
    const SlotRow rows[] = {SLOT(IExecContext2::AddRef), SLOT(IExecContext2::Reserved7), SLOT(IExecContext2::Reserved8),
                            SLOT(IExecContext2::SetResultText), SLOT(IExecContext2::GetState)};
    ExpectInOrder(rows, 7);
}

TEST(Slots, OfIObjectParams) {
    const SlotRow rows[] = {SLOT(IObjectParams::SetProperty), SLOT(IObjectParams::GetProperty),
                            SLOT(IObjectParams::GetParam), SLOT(IObjectParams::GetParamCount)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIData) {
    const SlotRow rows[] = {SLOT(IData::GetName),          SLOT(IData::SetProperty),        SLOT(IData::GetProperty),
                            SLOT(IData::ReleaseString),    SLOT(IData::GetInstanceID),      SLOT(IData::GetIntValue),
                            SLOT(IData::SetIntValue),      SLOT(IData::GetRealValue),       SLOT(IData::SetRealValue),
                            SLOT(IData::GetValueAsString), SLOT(IData::SetValueFromString), SLOT(IData::GetDataType)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIIntegerData) {
    const SlotRow rows[] = {SLOT(IIntegerData::GetMaxValue), SLOT(IIntegerData::GetMinValue)};
    ExpectInOrder(rows, 14);
}

TEST(Slots, OfIStringData) {
    const SlotRow rows[] = {SLOT(IStringData::GetMaxLength)};
    ExpectInOrder(rows, 14);
}

TEST(Slots, OfIRealData) {
    const SlotRow rows[] = {SLOT(IRealData::GetMaxValue), SLOT(IRealData::GetMinValue), SLOT(IRealData::GetPrecision)};
    ExpectInOrder(rows, 14);
}

TEST(Slots, OfITimeData) {
    const SlotRow rows[] = {SLOT(ITimeData::GetTimeCodeType), SLOT(ITimeData::Reserved2), SLOT(ITimeData::Reserved3),
                            SLOT(ITimeData::GetFrameCount)};
    ExpectInOrder(rows, 14);
}

TEST(Slots, OfIEnumData) {
    const SlotRow rows[] = {SLOT(IEnumData::SetCurrent), SLOT(IEnumData::AddItem), SLOT(IEnumData::ClearItems)};
    ExpectInOrder(rows, 14);
}

TEST(Slots, OfIObjectParam) {
    const SlotRow rows[] = {SLOT(IObjectParam::GetValue)};
    ExpectInOrder(rows, 14);
}

TEST(Slots, OfIManagerRuntimeInfo) {
    const SlotRow rows[] = {SLOT(IManagerRuntimeInfo::GetLogSettings), SLOT(IManagerRuntimeInfo::GetMainWindow),
                            SLOT(IManagerRuntimeInfo::GetRuntimeInfo), SLOT(IManagerRuntimeInfo::GetUserMode)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIObjectFactoryManager) {
    const SlotRow rows[] = {SLOT(IObjectFactoryManager::RegisterFactory),
                            SLOT(IObjectFactoryManager::UnregisterFactory)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIManagerRemoteManager) {
    const SlotRow rows[] = {SLOT(IManagerRemoteManager::GetRemote)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIManagerRemoteManager2) {
    const SlotRow rows[] = {SLOT(IManagerRemoteManager2::Reserved1), SLOT(IManagerRemoteManager2::GetRemote)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIManagerRemote) {
    const SlotRow rows[] = {SLOT(IManagerRemote::OpenUserScreen),   SLOT(IManagerRemote::CloseUserScreen),
                            SLOT(IManagerRemote::GotoPage),         SLOT(IManagerRemote::StartTask),
                            SLOT(IManagerRemote::PauseTask),        SLOT(IManagerRemote::StopTask),
                            SLOT(IManagerRemote::GotoLabel),        SLOT(IManagerRemote::GotoLine),
                            SLOT(IManagerRemote::GotoTime),         SLOT(IManagerRemote::LoadShow),
                            SLOT(IManagerRemote::RegisterGroup),    SLOT(IManagerRemote::UnregisterGroup),
                            SLOT(IManagerRemote::GetObjectList),    SLOT(IManagerRemote::Reserved14),
                            SLOT(IManagerRemote::Reserved15),       SLOT(IManagerRemote::SetProperty),
                            SLOT(IManagerRemote::SetPropertyAsInt), SLOT(IManagerRemote::GetProperty),
                            SLOT(IManagerRemote::GetPropertyAsInt), SLOT(IManagerRemote::GetObject),
                            SLOT(IManagerRemote::Perform),          SLOT(IManagerRemote::FreeText)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIManagerRemote2) {
    const SlotRow rows[] = {SLOT(IManagerRemote2::SetHandler),     SLOT(IManagerRemote2::Reserved2),
                            SLOT(IManagerRemote2::RegisterGroup),  SLOT(IManagerRemote2::UnregisterGroup),
                            SLOT(IManagerRemote2::OpenUserScreen), SLOT(IManagerRemote2::CloseUserScreen),
                            SLOT(IManagerRemote2::GotoPage),       SLOT(IManagerRemote2::StartTask),
                            SLOT(IManagerRemote2::PauseTask),      SLOT(IManagerRemote2::StopTask),
                            SLOT(IManagerRemote2::GotoLabel),      SLOT(IManagerRemote2::GotoLine),
                            SLOT(IManagerRemote2::GotoTime),       SLOT(IManagerRemote2::LoadShow),
                            SLOT(IManagerRemote2::GetObjectList),  SLOT(IManagerRemote2::Reserved16),
                            SLOT(IManagerRemote2::Reserved17),     SLOT(IManagerRemote2::Reserved18),
                            SLOT(IManagerRemote2::SetProperty),    SLOT(IManagerRemote2::SetPropertyAsInt),
                            SLOT(IManagerRemote2::GetProperty),    SLOT(IManagerRemote2::GetObject),
                            SLOT(IManagerRemote2::Perform)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIVariableManager) {
    const SlotRow rows[] = {SLOT(IVariableManager::Reserved1), SLOT(IVariableManager::FindVariable)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIFolderManager) {
    const SlotRow rows[] = {SLOT(IFolderManager::GetFolder)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIObjectNameTools) {
    const SlotRow rows[] = {SLOT(IObjectNameTools::Reserved1), SLOT(IObjectNameTools::Reserved2),
                            SLOT(IObjectNameTools::Reserved3), SLOT(IObjectNameTools::Reserved4),
                            SLOT(IObjectNameTools::IsValidName)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIManagerRemoteHandler) {
    const SlotRow rows[] = {SLOT(IManagerRemoteHandler::OnPropertyChange), SLOT(IManagerRemoteHandler::Reserved2)};
    ExpectInOrder(rows, 2);
}

// The places of resources count from 1, so an operation at place 5 has slot 4.

TEST(Slots, OfIDialogManager2AndItsDateDialog) {
    const SlotRow manager[] = {SLOT(IDialogManager2::CreateDateDialog)};
    ExpectInOrder(manager, 2);
    const SlotRow dialog[] = {
        SLOT(IDateDialog::SetParentWindow), SLOT(IDateDialog::SetDate),  SLOT(IDateDialog::Run),
        SLOT(IDateDialog::GetYear),         SLOT(IDateDialog::GetMonth), SLOT(IDateDialog::GetDay)};
    ExpectInOrder(dialog, 2);
}

TEST(Slots, OfIResourceProvider) {
    const SlotRow rows[] = {SLOT(IResourceProvider::GetResource), SLOT(IResourceProvider::SelectResource),
                            SLOT(IResourceProvider::SelectChannel)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfIResourceProxy) {
    const SlotRow rows[] = {SLOT(IResourceProxy::GetName), SLOT(IResourceProxy::GetResourceID)};
    ExpectInOrder(rows, 2);
}

TEST(Slots, OfEveryPortHaveTheStateAtPlace5OpenAtPlace9AndCloseAtPlace10) {
    const SlotRow rows[] = {
        SLOT(IPortResource::Reserved3),  SLOT(IPortResource::Reserved4),  SLOT(IPortResource::GetState),
        SLOT(IPortResource::Reserved6),  SLOT(IPortResource::Reserved7),  SLOT(IPortResource::Reserved8),
        SLOT(IPortResource::Open),       SLOT(IPortResource::Close),      SLOT(IPortResource::Reserved11),
        SLOT(IPortResource::Reserved12), SLOT(IPortResource::Reserved13), SLOT(IPortResource::Reserved14),
        SLOT(IPortResource::Reserved15), SLOT(IPortResource::Reserved16)};
    ExpectInOrder(rows, 2);
    EXPECT_EQ(SlotOf(&IPortResource::GetState), 5U - 1);
    EXPECT_EQ(SlotOf(&IPortResource::Open), 9U - 1);
    EXPECT_EQ(SlotOf(&IPortResource::Close), 10U - 1);
}

TEST(Slots, OfISerialResourceBeginBehindThePortAtPlace17) {
    const SlotRow rows[] = {SLOT(ISerialResource::AddHandler),    SLOT(ISerialResource::RemoveHandler),
                            SLOT(ISerialResource::Reserved19),    SLOT(ISerialResource::Reserved20),
                            SLOT(ISerialResource::Reserved21),    SLOT(ISerialResource::Write),
                            SLOT(ISerialResource::Reserved23),    SLOT(ISerialResource::Reserved24),
                            SLOT(ISerialResource::SetBaudRate),   SLOT(ISerialResource::SetParity),
                            SLOT(ISerialResource::SetDataSize),   SLOT(ISerialResource::SetStopBits),
                            SLOT(ISerialResource::SetBreak),      SLOT(ISerialResource::SetDTR),
                            SLOT(ISerialResource::SetRTS),        SLOT(ISerialResource::SetDTRControl),
                            SLOT(ISerialResource::SetRTSControl), SLOT(ISerialResource::SetDTRHandshake),
                            SLOT(ISerialResource::SetDSROutFlow), SLOT(ISerialResource::SetRTSHandshake),
                            SLOT(ISerialResource::SetCTSOutFlow)};
    ExpectInOrder(rows, 17 - 1);
    EXPECT_EQ(SlotOf(&ISerialResource::Write), 22U - 1);
    EXPECT_EQ(SlotOf(&ISerialResource::SetCTSOutFlow), 37U - 1);
}

TEST(Slots, OfIDMXResourceBeginBehindThePortAtPlace17) {
    const SlotRow rows[] = {SLOT(IDMXResource::AddHandler), SLOT(IDMXResource::RemoveHandler),
                            SLOT(IDMXResource::Reserved19), SLOT(IDMXResource::Reserved20),
                            SLOT(IDMXResource::WriteBlock), SLOT(IDMXResource::ReadInput),
                            SLOT(IDMXResource::ReadOutput)};
    ExpectInOrder(rows, 17 - 1);
    EXPECT_EQ(SlotOf(&IDMXResource::ReadOutput), 23U - 1);
}

TEST(Slots, OfIIOResource) {
    const SlotRow rows[] = {SLOT(IIOResource::Reserved3),  SLOT(IIOResource::Reserved4),  SLOT(IIOResource::GetState),
                            SLOT(IIOResource::Reserved6),  SLOT(IIOResource::Reserved7),  SLOT(IIOResource::Reserved8),
                            SLOT(IIOResource::Reserved9),  SLOT(IIOResource::Reserved10), SLOT(IIOResource::Reserved11),
                            SLOT(IIOResource::Reserved12), SLOT(IIOResource::Reserved13), SLOT(IIOResource::Reserved14),
                            SLOT(IIOResource::Reserved15), SLOT(IIOResource::Reserved16), SLOT(IIOResource::Reserved17),
                            SLOT(IIOResource::GetChannel), SLOT(IIOResource::Flush),      SLOT(IIOResource::Open),
                            SLOT(IIOResource::Close)};
    ExpectInOrder(rows, 2);
    EXPECT_EQ(SlotOf(&IIOResource::GetChannel), 18U - 1);
    EXPECT_EQ(SlotOf(&IIOResource::Close), 21U - 1);
}

TEST(Slots, OfIIOResourceChannelBeginWithAddHandlerForItIsNoIMInterface) {
    const SlotRow rows[] = {SLOT(IIOResourceChannel::AddHandler),  SLOT(IIOResourceChannel::RemoveHandler),
                            SLOT(IIOResourceChannel::Reserved3),   SLOT(IIOResourceChannel::Reserved4),
                            SLOT(IIOResourceChannel::SetValue),    SLOT(IIOResourceChannel::GetValue),
                            SLOT(IIOResourceChannel::GetResource), SLOT(IIOResourceChannel::Reserved8),
                            SLOT(IIOResourceChannel::Reserved9),   SLOT(IIOResourceChannel::GetChannelIndex),
                            SLOT(IIOResourceChannel::GetName)};
    ExpectInOrder(rows, 0);
    EXPECT_EQ(SlotOf(&IIOResourceChannel::GetChannelIndex), 10U - 1);
}

TEST(Slots, OfAResourcesHandlerHaveNoRelease) {
    const SlotRow rows[] = {SLOT(IResourceHandler::QueryInterface), SLOT(IResourceHandler::OnStateChanged),
                            SLOT(IResourceHandler::GetOwnerName), SLOT(IResourceHandler::Reserved4)};
    ExpectInOrder(rows, 0);
}

TEST(Slots, OfTheHandlersOfPortsFollowThoseOfEveryHandler) {
    const SlotRow rows[] = {SLOT(ISerialResourceHandler::OnData), SLOT(ISerialResourceHandler::OnEvent)};
    ExpectInOrder(rows, 4);
    EXPECT_EQ(SlotOf(&IDMXResourceHandler::OnData), 4U);
}

TEST(Slots, OfAChannelsHandler) {
    const SlotRow rows[] = {SLOT(IIOResourceChannelHandler::OnValueChanged), SLOT(IIOResourceChannelHandler::Reserved2),
                            SLOT(IIOResourceChannelHandler::GetOwnerName)};
    ExpectInOrder(rows, 0);
}

#undef SLOT

TEST(Slots, OfTheLengthOfATextAreThoseOfTheUpperBoundOfANumber) {
    EXPECT_EQ(SlotOf(&IStringData::GetMaxLength), SlotOf(&IIntegerData::GetMaxValue));
    EXPECT_EQ(SlotOf(&IRealData::GetMaxValue), SlotOf(&IIntegerData::GetMaxValue));
}

TEST(Slots, OfTheNameOfAParameterAreThoseOfAValue) {
    EXPECT_EQ(SlotOf(&IObjectParam::GetName), SlotOf(&IData::GetName));
}

} // namespace
