#include "Peer.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include "FrameText.h"
#include "Interrupt.h"
#include "JsonNode.h"
#include "MainWait.h"
#include "ProcessKeeper.h"

namespace stagehost {

namespace {

constexpr int kStartMs = 5000;
constexpr int kForcedMs = 5000;
constexpr int kMostErrorLines = 1000;
constexpr int kLongestErrorLine = 4096;
constexpr int kShownFrames = 3;
constexpr int kStragglersMs = 20; // for what a peer has done and its line about that not told yet

QString EndText(const QProcess& process) {
    return process.exitStatus() == QProcess::NormalExit ? QStringLiteral("ended with %1").arg(process.exitCode())
                                                        : QStringLiteral("was ended by a signal");
}

bool Suits(const PeerReceipt& receipt, const QString& frame) {
    return receipt.isPattern ? QRegularExpression(receipt.text).match(frame).hasMatch() : frame == receipt.text;
}

QByteArray OrderLine(const PeerDeed& deed) {
    QJsonObject order{{QStringLiteral("do"), deed.deed}};
    if (!deed.with.isEmpty())
        order.insert(QStringLiteral("with"), deed.with);
    if (deed.deed.isEmpty())
        order = {{QStringLiteral("do"), QStringLiteral("call")},
                 {QStringLiteral("function"), deed.function},
                 {QStringLiteral("args"), deed.arguments}};
    return QJsonDocument(order).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

void KeptProcess::setupChildProcess() {
    GoOnUnderKeeper(m_parent);
}

Peer::Peer(QString name, Tell tell)
    : m_name(std::move(name))
    , m_tell(std::move(tell)) {
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process, [this] { TakeOutput(); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process, [this] { TakeErrors(); });
    QObject::connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &m_process,
                     [this] { TakeEnd(); });
}

Peer::~Peer() {
    AskToEnd();
    End(std::chrono::milliseconds(0));
}

QString Peer::Start(const QString& program, const QStringList& words, const QString& folder) {
    m_process.setWorkingDirectory(folder);
    m_process.start(program, words);
    if (!m_process.waitForStarted(kStartMs))
        return QStringLiteral("cannot start %1: %2").arg(program, m_process.errorString());
    return {};
}

bool Peer::WaitUntilReady(std::chrono::milliseconds limit) {
    MainWait::UntilInterrupted([this] { return m_lines.IsReady() || !m_over.isEmpty(); }, limit);
    m_starts = false;
    TellHeld();
    return m_lines.IsReady() && m_over.isEmpty();
}

void Peer::TellWords(const QString& words) {
    TellHeld();
    m_held = words;
    if (!m_starts)
        TellHeld();
}

void Peer::TellHeld() {
    if (!m_held.isEmpty())
        m_tell(QStringLiteral("peer %1: %2").arg(m_name, std::exchange(m_held, {})));
    m_isHeldProblem = false;
}

void Peer::TakeOutput() {
    m_lines.Take(m_process.readAllStandardOutput());
    for (const QString& problem : m_lines.TakeProblems()) {
        m_lastWords = problem.section(QLatin1Char('\n'), 0, 0);
        TellWords(problem);
        m_isHeldProblem = m_starts;
    }
    MainWait::Wake();
}

void Peer::TakeErrors() {
    m_errors += m_process.readAllStandardError();
    QByteArrayList lines = m_errors.split('\n');
    m_errors = lines.takeLast();
    if (m_errors.size() > kLongestErrorLine)
        lines += std::exchange(m_errors, {});
    for (const QByteArray& line : lines)
        TellError(QString::fromUtf8(line.left(kLongestErrorLine)));
}

void Peer::TellError(const QString& line) {
    if (!line.trimmed().isEmpty())
        m_lastWords = line.trimmed();
    ++m_errorLines;
    if (m_errorLines < kMostErrorLines)
        TellWords(line);
    else if (m_errorLines == kMostErrorLines)
        TellWords(QStringLiteral("says more on standard error; no more of it is shown"));
}

void Peer::TakeEnd() {
    TakeErrors();
    if (!m_errors.isEmpty())
        TellError(QString::fromUtf8(std::exchange(m_errors, {})));
    TakeOutput();
    m_over = EndText(m_process);
    if (!m_lastWords.isEmpty())
        m_over += QStringLiteral("; its last words: ") + m_lastWords;
    if (m_isHeldProblem)
        m_over = std::exchange(m_held, {});
    else if (m_held.trimmed() == m_lastWords)
        m_held.clear();
    if (!m_starts)
        m_tell(QStringLiteral("peer %1: %2").arg(m_name, m_over));
    MainWait::Wake();
}

QString Peer::Do(const PeerDeed& deed, std::chrono::milliseconds limit, QString* result) {
    m_lines.ForgetAnswers();
    if (m_over.isEmpty())
        m_process.write(OrderLine(deed));
    std::optional<QJsonObject> answer;
    const auto hasAnswered = [&] {
        answer = m_lines.TakeAnswer();
        return answer || !m_over.isEmpty();
    };
    MainWait::UntilInterrupted(hasAnswered, limit);
    const QString what = deed.deed.isEmpty() ? deed.function : deed.deed;
    if (answer && answer->contains(QStringLiteral("refused")))
        return WithPlace(*answer, QStringLiteral("refused"));
    if (answer && answer->value(QStringLiteral("done")) != (deed.deed.isEmpty() ? QStringLiteral("call") : deed.deed))
        return QStringLiteral("was told %1, and answered %2")
            .arg(Quoted(what), QString::fromUtf8(QJsonDocument(*answer).toJson(QJsonDocument::Compact)));
    if (answer)
        *result = answer->value(QStringLiteral("result")).toString();
    else if (!m_over.isEmpty())
        return m_over;
    else if (Interrupt::HasCome())
        return QStringLiteral("interrupted while it does %1").arg(Quoted(what));
    else
        return QStringLiteral("no answer to %1 within %2 ms").arg(Quoted(what)).arg(limit.count());
    return {};
}

QString Peer::WaitFor(const PeerReceipt& receipt, std::chrono::milliseconds limit) {
    QStringList others;
    bool found = false;
    const auto hasCome = [&] {
        for (const QString* frame = m_lines.NextReceived(); frame != nullptr && !found;
             frame = m_lines.NextReceived()) {
            found = Suits(receipt, *frame);
            if (!found)
                others += *frame;
            m_lastLookedAt = *frame;
            m_lines.TakeReceived();
        }
        while (others.size() > kShownFrames)
            others.removeFirst();
        return found || !m_over.isEmpty();
    };
    MainWait::UntilInterrupted(hasCome, limit);
    if (found)
        return {};
    for (QString& other : others)
        other = FrameForPeople(other);
    const QString nothing = m_lastLookedAt.isNull()
                                ? QStringLiteral("nothing")
                                : QStringLiteral("nothing behind ") + FrameForPeople(m_lastLookedAt);
    const QString wanted = (receipt.isPattern ? QStringLiteral("like ") : QString()) + FrameForPeople(receipt.text);
    const QString state = QStringLiteral("has received %1, but should: %2")
                              .arg(others.isEmpty() ? nothing : others.join(QStringLiteral(", ")), wanted);
    if (!m_over.isEmpty())
        return QStringLiteral("%1; it %2").arg(state, m_over);
    return Interrupt::HasCome() ? QStringLiteral("interrupted while it ") + state
                                : QStringLiteral("%1, after %2 ms").arg(state).arg(limit.count());
}

QStringList Peer::LastTraffic() {
    m_process.waitForReadyRead(kStragglersMs);
    return m_lines.LastTraffic();
}

void Peer::AskToEnd() {
    m_process.disconnect();
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.closeWriteChannel();
    EndKept(m_process.processId(), KeptEnd::Asked);
}

void Peer::End(std::chrono::milliseconds limit) {
    if (m_process.state() == QProcess::NotRunning || m_process.waitForFinished(static_cast<int>(limit.count())))
        return;
    EndKept(m_process.processId(), KeptEnd::Forced);
    m_process.waitForFinished(kForcedMs);
}

} // namespace stagehost
