#include "NetCodes.h"

#include <algorithm>
#include <iterator>

#include <gtest/gtest.h>

#include "MWSAData.h"

namespace {

struct TextRow {
    std::int32_t code;
    const char* text;
};

constexpr TextRow kTexts[] = {
    {0, "Success"},
    {-1, "Unknow Error"},
    {-2, "Unable to create socket"},
    {-3, "Invalid IP adress"},
    {-4, "Connection timeout"},
    {-5, "Connection refused or aborted"},
    {-6, "Host unreach"},
    {-7, "Startup error"},
    {-8, "Invalid parameter"},
    {-9, "Host not connected"},
    {-10, "Send failed"},
    {-11, "Already connected"},
    {-12, "Datagram receive buffer too small"},
    {-13, "Send datagram failed"},
    {-14, "Asynchronous operation setup failed"},
    {-15, "Read failed"},
    {-16, "Bind fo datagram failed"},
    {-17, "Accept connection failed"},
    {-18, "Address in use"},
    {-19, "No more socket"},
    {-20, "Socket not created"},
    {-21, "Operation needs a datagram socket"},
    {-22, "Register multicast group failed"},
    {-23, "TCP No Delay option failed"},
    {-24, "Operation timed out"},
    {-25, "Set buffer size failed"},
    {-26, "Connection in progress"},
    {-27, "Too many connections"},
    {-28, "The network subsystem has failed"},
    {-29, "The connection was reset by the remote side"},
    {-30, "The option requested for the connection is not allowed"},
    {-31, "The connection has been aborted during the connection phase"},
    {-32, "Undefined error"},
    {1, "Undefined error"},
    {5, "Undefined error"},
    {INT32_MIN, "Undefined error"},
    {INT32_MAX, "Undefined error"},
};

struct CodeRow {
    std::int32_t error; // the number of the platform's first home
    std::int32_t code;
};

constexpr CodeRow kGeneral[] = {
    {10014, -8},  {10055, -8},  {10022, -16}, {10037, -26}, {10038, -20}, {10047, -3},
    {10049, -3},  {10048, -18}, {10050, -28}, {10051, -6},  {10065, -6},  {10053, -31},
    {10054, -29}, {10056, -11}, {10060, -4},  {10061, -5},  {10093, -7},
};
constexpr CodeRow kBind[] = {{10049, -3}, {10060, -4}, {10061, -5}, {10065, -6}};
constexpr CodeRow kOption[] = {{10014, -8},  {10022, -8}, {10038, -20}, {10042, -30},
                               {10050, -28}, {10052, -4}, {10057, -29}, {10093, -7}};
constexpr CodeRow kKeepAlive[] = {{10035, -14}, {997, -24},   {10014, -8},  {10022, -8}, {10036, -26},
                                  {10038, -20}, {10042, -30}, {10045, -30}, {10050, -28}};

// Every number there is: those of the table have its code, all others -1.
template <std::size_t Count>
void ExpectTable(const CodeRow (&rows)[Count], NetOperation operation) {
    for (std::int32_t error = 0; error < 12000; ++error) {
        const auto* const row =
            std::find_if(std::begin(rows), std::end(rows), [=](const CodeRow& r) { return r.error == error; });
        EXPECT_EQ(NetCodeOf(operation, static_cast<SocketError>(error)), row == std::end(rows) ? -1 : row->code)
            << error;
    }
}

} // namespace

TEST(NetCodes, EachCodeHasItsTextWordForWord) {
    MWSAData data;
    for (const TextRow& row : kTexts)
        EXPECT_STREQ(data.GetErrorText(row.code), row.text) << row.code;
}

TEST(NetCodes, TooManyConnectionsAndTheUndefinedError) {
    MWSAData data;
    EXPECT_STREQ(data.GetErrorText(-27), "Too many connections");
    EXPECT_STREQ(data.GetErrorText(5), "Undefined error");
}

TEST(NetCodes, EachErrorOfAConnectionHasItsCode) {
    ExpectTable(kGeneral, NetOperation::General);
    MWSAData data;
    for (const CodeRow& row : kGeneral)
        EXPECT_EQ(data.TranslateError(row.error), row.code) << row.error;
    EXPECT_EQ(data.TranslateError(10035), -1);
    EXPECT_EQ(data.TranslateError(-5), -1);
}

TEST(NetCodes, BindHasATableOfItsOwnInWhichAPortInUseIsUnknown) {
    ExpectTable(kBind, NetOperation::Bind);
}

TEST(NetCodes, OptionsHaveATableOfTheirOwn) {
    ExpectTable(kOption, NetOperation::Option);
}

TEST(NetCodes, KeepAliveHasATableOfItsOwn) {
    ExpectTable(kKeepAlive, NetOperation::KeepAlive);
}
