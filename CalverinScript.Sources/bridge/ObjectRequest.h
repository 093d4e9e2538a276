#pragma once

#include <cstdint>

#include <QByteArray>
#include <QObject>

class IManagerRemote;
class IManagerRemote2;

/// A question of a dialog for the description of one object of the host. Nothing waits for the answer, so a host that answers late,
/// or never, holds up no dialog.
///
/// - The script has no part in it: neither its waits nor its stop touch a question, and a question does not touch them.
/// - The answer comes from inside Ask when the host has it at once, else from the event loop of the thread that asked, on whatever
///   thread the host gives it.
/// - It comes once, however often the host answers, and not at all when this object is gone before.   [host main]
class ObjectRequest : public QObject {
    Q_OBJECT

public:
    /// @param name the object's, for the host. @param levels how many of the levels below it the description holds.
    ObjectRequest(QByteArray name, std::uint16_t levels);
    ~ObjectRequest() override;

    /// Asks the newer link if there is one, else the older one. Call it once. A host may run events meanwhile, so this object may be
    /// gone when it returns. @param newer, older borrowed for the call, may be null.
    void Ask(IManagerRemote2* newer, IManagerRemote* older);

Q_SIGNALS:
    /// @param text as the host gave it; empty when it has refused, and without a link.
    void SignalAnswered(const QByteArray& text);

private:
    class Question;

    void AskNewer(IManagerRemote2& link);
    void AskOlder(IManagerRemote& link);
    void Answer(const QByteArray& text);

    const QByteArray m_name;
    const std::uint16_t m_levels;
    Question* const m_question; ///< counted; one reference is ours
    bool m_isAnswered = false;
};
