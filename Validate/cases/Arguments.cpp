#include <set>

#include "ArgumentTable.h"
#include "Cases.h"

namespace {

/// A script that takes a request to the host and hears of changes, with a setting for each kind of resource.
std::string SetupOfAll() {
    const auto setting = [](const std::string& widget) {
        return "<Setting Name=\"" + widget + "\" Type=\"StringData\" Widget=\"" + widget + "\" Value='{ \"Type\":\"" +
               widget + "\", \"ResourceID\":1, \"ChannelIndex\":1 }'/>";
    };
    return "<DeviceData Version=\"1000\" Name=\"desk\"><Setup><Settings>" + setting("Serial") + setting("DMXIn") +
           setting("DigitalIn") +
           "</Settings><Script><![CDATA[QCalverin.RegisterGroup('House', true);\n"
           "QCalverin.PerformAsync(function () {}, 'desk', 'Wait');\n"
           "({ Device: { Level: 0 }, Work: function (a) { return a; } })]]></Script></Setup></DeviceData>";
}

/// A module with all its objects.
class FullHouse {
public:
    explicit FullHouse(const Trial& trial) {
        m_host.answering = [this](const char* call, IExecContext2& request) { return Answer(call, request); };
        LoadOrFail(m_host, trial);
        m_subjects.host = &m_host;
        m_subjects.drivers = QueryFace<IKXPModuleDriverManager>(&m_host.Module(), "IKXPModuleDriverManager");
        m_device = std::make_unique<HostedDevice>(m_host);
        m_subjects.device = m_device.get();
        m_reason = StartEither(*m_device, SetupOfAll());
        if (const HostLink* link = m_host.LinkOf(&**m_device))
            m_subjects.changes = link->Handler();
        (*m_device)->CreatePanel(1, &m_subjects.panel);
        FindSelector();
    }
    ~FullHouse() {
        for (IMInterface* object : std::initializer_list<IMInterface*>{m_subjects.panel, m_subjects.selector})
            if (object != nullptr)
                object->Release();
        m_device->End();
        if (m_subjects.request != nullptr)
            m_subjects.request->Release();
    }
    FullHouse(const FullHouse&) = delete;
    FullHouse& operator=(const FullHouse&) = delete;

    const Subjects& All() const { return m_subjects; }
    /// Throws a finding when the device does not work any more.
    void ExpectAlive() {
        ContextTally tally;
        if (m_reason.empty())
            Trial::ExpectCode((*m_device)->SetSetup(SetupOfAll().c_str()), KXP_OK, "IKXPDevice::SetSetup afterwards");
        Trial::ExpectCode((*m_device)->Stop(), KXP_OK, "IKXPDevice::Stop() afterwards");
        Trial::ExpectCode((*m_device)->Start(), KXP_OK, "IKXPDevice::Start() afterwards");
        if (m_reason.empty()) {
            CallScript(*m_device, CallOfWork("x"), tally);
            Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the context of a command afterwards does not end",
                          "it ends");
        }
    }
    /// Why the device was sent no commands; empty when it was.
    const std::string& Reason() const { return m_reason; }

private:
    KXPCode Answer(const char* call, IExecContext2& request) {
        if (std::string(call) != "Perform" || m_subjects.request != nullptr)
            return KXP_OK;
        request.AddRef();
        request.Begin();
        m_subjects.request = &request;
        return KXP_PENDING;
    }
    void FindSelector() {
        for (const auto& [name, factory] : m_host.Factories()) {
            m_subjects.factory = factory;
            IMInterface* object = factory->CreateObject(name.c_str());
            m_subjects.selector = QueryFace<IPropertySelector>(object, "IPropertySelector");
            if (m_subjects.selector != nullptr)
                return;
            if (object != nullptr)
                object->Release();
        }
    }

    ModuleHost m_host;
    Subjects m_subjects;
    std::unique_ptr<HostedDevice> m_device;
    std::string m_reason;
};

/// The call as a finding shows it.
std::string TextOf(const Operation& operation, const Arguments& arguments) {
    constexpr std::size_t kMost = 20;
    std::string text = arguments.IsNull() ? "null" : '"' + std::string(arguments.text).substr(0, kMost) + '"';
    if (!arguments.IsNull() && std::string(arguments.text).size() > kMost)
        text += "... (" + std::to_string(std::string(arguments.text).size()) + " bytes)";
    return std::string(operation.face) + "::" + operation.name + "(" + text + ", " + std::to_string(arguments.number) +
           ")";
}

void ExpectAnswer(const Operation& operation, const Arguments& arguments, std::uint32_t answer) {
    const std::int64_t expected = arguments.IsNull() ? operation.onNull : operation.onOther;
    const std::string call = TextOf(operation, arguments);
    if (expected == kRefusal)
        Trial::Expect(answer != KXP_OK, call + " answers 0", "a refusal");
    else if (expected == kCancelledOrGone)
        Trial::Expect(answer == KXP_CANCELLED || answer == KXP_NOT_IMPLEMENTED,
                      call + " of a device whose module is gone answers " + std::to_string(answer), "13 or 19");
    else if (expected != kAnyAnswer)
        Trial::ExpectCode(answer, static_cast<std::uint32_t>(expected), call);
}

void CallAll(Trial& trial, const std::vector<Arguments>& kinds, Operation::Stage stage, FullHouse* house) {
    std::set<std::string> missing;
    for (const Arguments& arguments : kinds)
        for (const Operation& operation : AllOperations()) {
            if (operation.stage != stage)
                continue;
            trial.Step(TextOf(operation, arguments));
            std::uint32_t answer = kNotOffered;
            if (house != nullptr) {
                answer = operation.call(house->All(), arguments);
            } else {
                ModuleHost host;
                LoadOrFail(host, trial);
                Subjects alone;
                alone.host = &host;
                answer = operation.call(alone, arguments);
            }
            if (answer == kNotOffered)
                missing.insert(operation.face);
            else
                ExpectAnswer(operation, arguments, answer);
        }
    std::string names;
    for (const std::string& face : missing)
        names += " " + face;
    if (!missing.empty())
        trial.Note("the module offers none of" + names);
}

void CallAll(Trial& trial, const std::vector<Arguments>& kinds) {
    CallAll(trial, kinds, Operation::Alone, nullptr);
    FullHouse house(trial);
    CallAll(trial, kinds, Operation::AtWork, &house);
    trial.Step("the device afterwards");
    house.ExpectAlive();
    if (!house.Reason().empty())
        trial.Note("without calls of a script: " + house.Reason());
}

} // namespace

void TakesNulls(Trial& trial) {
    CallAll(trial, {{nullptr, -1}});
}

void TakesGarbage(Trial& trial) {
    CallAll(trial, {{"", -2},
                    {" ", 12},
                    {"<", 77},
                    {"<![CDATA[", -77},
                    {"%s%n%s", 123456},
                    {"../../..", 512},
                    {"\"'&<>\\", -512},
                    {"<a><b/></a>", 65536},
                    {"1e999", -65536}});
}

void TakesHugeArguments(Trial& trial) {
    const std::string text(std::size_t(1) << 20, 'x');
    CallAll(trial, {{text.c_str(), INT32_MAX}, {text.c_str(), INT32_MIN}});
}

void TakesLatin1(Trial& trial) {
    std::string all;
    for (int character = 1; character < 256; ++character)
        all += static_cast<char>(character);
    CallAll(trial, {{all.c_str(), 0x80}, {"\xE4\xF6\xFC\xDF", 0xE4}, {"\xFF", 0xFF}});
}
