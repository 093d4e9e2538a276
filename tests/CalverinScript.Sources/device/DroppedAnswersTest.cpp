#include <cstdlib>
#include <numeric>

#include "FakeRemotes.h"
#include "LoggedDevice.h"
#include "MScriptMngRemote.h"

namespace {

/// A host that answers every asynchronous request at once, while the script that asks is still busy.
class DroppedAnswers : public LoggedDevice {
protected:
    static constexpr int kAsked = 3000;

    void SetUp() override {
        host.offerRemoteManager2 = true;
        host.remote2 = &remote;
        LoggedDevice::SetUp();
        remote.code = KXP_PENDING;
        remote.onCall = [](IExecContext2* context) { context->End(); };
    }
    /// How many commands each line says to have been dropped.
    std::vector<int> Told() const {
        std::vector<int> counts;
        for (const LogLine& line : Log()) {
            const std::size_t place = line.text.find(" commands or answers dropped: more than 1000 were waiting");
            const std::string head = "CalverinScript_ [Desk] ";
            if (place != std::string::npos && line.level == 5 && line.text.rfind(head, 0) == 0)
                counts.push_back(std::atoi(line.text.c_str() + head.size()));
        }
        return counts;
    }
    static int Sum(const std::vector<int>& counts) { return std::accumulate(counts.begin(), counts.end(), 0); }

    FakeRemote2 remote;
};

TEST_F(DroppedAnswers, OfAFullQueueAreLetGoAtOnceAndToldByTheirNumber) {
    GivenScript("({ n: 0, Ask: function(count) { var me = this;"
                "     for (var i = 0; i < count; ++i) QCalverin.PerformAsync(function() { ++me.n }, 'O', 'A') },"
                "   Get: function() { return this.n } })");
    Call("Ask", {std::to_string(kAsked)});
    ASSERT_TRUE(NothingIsPending());
    const int delivered = std::atoi(Call("Get").c_str());
    EXPECT_GE(delivered, 1000);
    EXPECT_TRUE(Eventually([&] { return delivered + Sum(Told()) == kAsked; })) << delivered << " delivered";
    OnScriptThread([] {});
    EXPECT_LE(device->GetRemote()->GetAsyncContexts()->Count(), 1000u) << "what hosts were given stays for a while";
    device->Stop();
    EXPECT_EQ(delivered + Sum(Told()), kAsked);
    EXPECT_LE(Told().size(), 20u) << "once a second at most";
}

} // namespace
