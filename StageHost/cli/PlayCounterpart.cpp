#include <memory>
#include <random>

#include <QFileInfo>
#include <QTimer>

#include "Commands.h"
#include "Counterpart.h"
#include "DriverSetup.h"
#include "ExitCodes.h"
#include "InputSide.h"
#include "Interrupt.h"
#include "MainWait.h"
#include "Orders.h"
#include "Output.h"
#include "ScriptSession.h"
#include "TextFile.h"

namespace stagehost {

namespace {

constexpr std::chrono::hours kBetweenLooks(1);      // nothing but the end wakes it
constexpr std::chrono::milliseconds kLookAgain(10); // whether a script has come back

/// Words of the form NAME=VALUE.
QString ReadScriptOptions(const QStringList& words, std::map<QString, QString>& options) {
    for (const QString& word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 1)
            return QStringLiteral("expected NAME=VALUE, not \"%1\"").arg(word);
        options[word.left(equals)] = word.mid(equals + 1);
    }
    return {};
}

/// A mistake of syntax as the check tells it: with a caret, and with what to write instead.
ScriptFailure AsChecked(const ScriptFailure& failure, const QString& file, std::chrono::milliseconds limit) {
    DriverEdition edition;
    const auto told = ReadDriver(EmptyShow(QFileInfo(file).absolutePath()), file, limit, edition);
    return told && told->text.contains(QLatin1String(": SyntaxError: ")) ? ScriptFailure{told->text, told->place}
                                                                         : failure;
}

/// What a counterpart is told beside its script.
struct Conditions {
    QString file; ///< as it was named
    QString path; ///< the same in full: the working folder may be moved away while it plays
    quint64 seed;
    LinePlace listen;
    std::map<QString, QString> options;
    std::chrono::milliseconds limit; ///< for the check of a script that is none
};

/// The counterpart of a file, which can be saved while it plays: the order "load" has the new edition go on at the same
/// places.
class Player {
public:
    Player(const Voice& voice, Conditions conditions)
        : m_voice(voice)
        , m_conditions(std::move(conditions)) {}

    std::optional<ScriptFailure> Load(const QString& text, Counterpart::Ends ends = {}) {
        if (const auto failure = SyntaxFailure(text, m_conditions.file))
            return AsChecked(*failure, m_conditions.file, m_conditions.limit);
        m_counterpart =
            std::make_unique<Counterpart>(m_voice, m_conditions.seed, m_conditions.listen, m_conditions.options);
        m_counterpart->TakeOver(std::move(ends));
        m_text = text;
        return m_counterpart->Load(text, m_conditions.file);
    }

    void Do(const QByteArray& line) {
        if (line.trimmed().isEmpty())
            return;
        const QJsonObject order = Counterpart::ReadOrder(line);
        if (order.value(QLatin1String("do")) == QLatin1String("load"))
            LoadAnew();
        else
            m_counterpart->Do(order);
    }

private:
    void LoadAnew() {
        if (m_counterpart->IsInside()) {
            QTimer::singleShot(kLookAgain, &m_later, [this] { LoadAnew(); });
            return;
        }
        QString problem;
        const auto text = ReadText(m_conditions.path, &problem);
        if (!text)
            return Refuse({problem, {}});
        if (const auto failure = SyntaxFailure(*text, m_conditions.file))
            return Refuse(AsChecked(*failure, m_conditions.file, m_conditions.limit));
        const QString before = m_text;
        const auto failure = Load(*text, GiveEnds());
        if (!failure)
            return m_voice.Done(QStringLiteral("load"), {});
        if (const auto again = Load(before, GiveEnds()))
            m_voice.Problem(again->text, again->place);
        Refuse(*failure); // who hears that can be sure that it plays
    }

    /// Nothing of the edition before may run any more once it has none.
    Counterpart::Ends GiveEnds() {
        auto ends = m_counterpart->GiveEnds();
        m_counterpart.reset();
        return ends;
    }

    void Refuse(const ScriptFailure& failure) {
        m_voice.Problem(failure.text, failure.place);
        m_voice.Refused(QStringLiteral("goes on with the edition that it has"));
    }

    const Voice& m_voice;
    const Conditions m_conditions;
    QString m_text; ///< of the edition that plays
    std::unique_ptr<Counterpart> m_counterpart;
    QObject m_later; ///< what waits goes with it
};

/// Whether somebody gives orders, whose end is the end. A program that wants JSON does from its first moment; people's
/// scripts often leave a pipe behind that nobody has ever spoken on.
bool HearsOrders(const Options& options) {
    return HasInputOtherSide() && (options.json || !IsInputLeft());
}

} // namespace

int PlayCounterpart(const Options& options) {
    const Interrupt interrupt;
    const bool hearsOrders = HearsOrders(options);
    const QString& file = options.arguments.first();
    QString problem;
    const QString path = QFileInfo(file).absoluteFilePath();
    const auto text = ReadText(path, &problem);
    std::map<QString, QString> given;
    LinePlace listen;
    if (text)
        problem = ReadScriptOptions(options.arguments.mid(1), given);
    if (problem.isEmpty() && !options.listen.isEmpty())
        problem = ReadHostAndPort(options.listen, QStringLiteral("127.0.0.1"), listen);
    const Voice voice(options.json, &PrintLine, &PrintProblem);
    if (!problem.isEmpty()) {
        voice.Problem(problem);
        return kExitBadUse;
    }
    Player player(voice, {file, path, options.seed.value_or(std::random_device()()), listen, given, options.timeout});
    bool isOver = false;
    if (const auto failure = player.Load(*text)) {
        voice.Problem(failure->text, failure->place);
        return kExitScriptFailed;
    }
    std::optional<Orders> orders;
    if (hearsOrders)
        orders.emplace(Orders::Takers{[&](const QByteArray& line) { player.Do(line); },
                                      [&](qint64 size) {
                                          voice.Refused(
                                              QStringLiteral("an order of %1 bytes is too long; %2 are the most")
                                                  .arg(size)
                                                  .arg(Orders::kLongest));
                                      },
                                      [&] {
                                          isOver = true;
                                          MainWait::Wake();
                                      }});
    while (!isOver && !Interrupt::HasCome())
        MainWait::UntilInterrupted([&] { return isOver; }, kBetweenLooks);
    return kExitOk;
}

} // namespace stagehost
