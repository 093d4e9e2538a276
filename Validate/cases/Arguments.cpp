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
        StartBusy(*m_device, SetupOfAll());
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
        Trial::ExpectCode((*m_device)->SetSetup(SetupOfAll().c_str()), KXP_OK, "SetSetup afterwards");
        Trial::ExpectCode((*m_device)->Stop(), KXP_OK, "Stop afterwards");
        Trial::ExpectCode((*m_device)->Start(), KXP_OK, "Start afterwards");
        Trial::ExpectCode(m_device->Send(FunctionCommand(*m_device), CallOfWork("x"), &tally), KXP_OK,
                          "a command afterwards");
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "a command ends afterwards");
    }

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
};

std::string NameOf(const Operation& operation) {
    return std::string(operation.face) + "::" + operation.name;
}

void ExpectAnswer(const Operation& operation, const Arguments& arguments, std::uint32_t answer) {
    const std::int64_t expected = arguments.IsNull() ? operation.onNull : operation.onOther;
    if (expected == kRefusal)
        Trial::Expect(answer != KXP_OK, NameOf(operation) + " refuses this");
    else if (expected != kAnyAnswer)
        Trial::ExpectCode(answer, static_cast<std::uint32_t>(expected), NameOf(operation));
}

void CallAll(Trial& trial, const std::vector<Arguments>& kinds, Operation::Stage stage, FullHouse* house) {
    std::set<std::string> missing;
    for (const Arguments& arguments : kinds)
        for (const Operation& operation : AllOperations()) {
            if (operation.stage != stage)
                continue;
            trial.Step(NameOf(operation) + " with " + std::to_string(arguments.number) + " and " +
                       std::string(arguments.IsNull() ? "null" : arguments.text).substr(0, 20));
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
