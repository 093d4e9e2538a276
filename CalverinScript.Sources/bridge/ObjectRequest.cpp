#include "ObjectRequest.h"

#include <mutex>
#include <utility>

#include <QPointer>

#include "IManagerRemote.h"
#include "MDefaultDeviceExecContext.h"

/// What the host is given: it may use it long after nobody wants to know any more.
class ObjectRequest::Question : public MDefaultDeviceExecContext {
public:
    explicit Question(ObjectRequest& asker)
        : m_asker(&asker) {}

    KXPCode End() override {
        MDefaultDeviceExecContext::End();
        const std::lock_guard<std::mutex> guard(m_lock);
        if (ObjectRequest* const asker = std::exchange(m_asker, nullptr))
            QMetaObject::invokeMethod(
                asker, [this, asker] { asker->Answer(GetAnswer()); }, Qt::QueuedConnection);
        return KXP_OK;
    }

    /// Nobody is told any more.
    void Forget() {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_asker = nullptr;
    }
    bool HasEnded() { return GetState() == kEnded; }
    QByteArray GetAnswer() const { return GetErrorCode() == KXP_OK ? GetText() : QByteArray(); }
    QByteArray GetText() const { return QByteArray(GetResult().c_str()); }

private:
    std::mutex m_lock;
    ObjectRequest* m_asker; ///< under m_lock, null once it was told or does not want to be
};

ObjectRequest::ObjectRequest(QByteArray name, std::uint16_t levels)
    : m_name(std::move(name))
    , m_levels(levels)
    , m_question(new Question(*this)) {}

ObjectRequest::~ObjectRequest() {
    m_question->Forget();
    m_question->Release();
}

void ObjectRequest::Ask(IManagerRemote2* newer, IManagerRemote* older) {
    if (newer != nullptr)
        AskNewer(*newer);
    else if (older != nullptr)
        AskOlder(*older);
    else
        Answer(QByteArray());
}

void ObjectRequest::AskNewer(IManagerRemote2& link) {
    const QPointer<ObjectRequest> kept(this);
    const QByteArray name = m_name;
    Question* const question = m_question;
    question->AddRef();
    const KXPCode code = link.GetObject(name.constData(), m_levels, question, nullptr);
    if (kept != nullptr && code == KXP_OK)
        Answer(question->GetText());
    else if (kept != nullptr && code != KXP_PENDING)
        Answer(QByteArray());
    else if (kept != nullptr && question->HasEnded())
        Answer(question->GetAnswer());
    question->Release();
}

void ObjectRequest::AskOlder(IManagerRemote& link) {
    const QPointer<ObjectRequest> kept(this);
    const QByteArray name = m_name;
    char* text = nullptr;
    const bool isGiven = link.GetObject(name.constData(), m_levels, &text) == KXP_OK && text != nullptr;
    const QByteArray copy(isGiven ? text : "");
    if (isGiven)
        link.FreeText(&text);
    if (kept != nullptr)
        Answer(copy);
}

void ObjectRequest::Answer(const QByteArray& text) {
    if (std::exchange(m_isAnswered, true))
        return;
    Q_EMIT SignalAnswered(text);
}
