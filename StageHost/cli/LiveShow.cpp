#include "LiveShow.h"

#include <algorithm>
#include <iterator>

#include "BorderText.h"
#include "ExitCodes.h"
#include "HostCodes.h"
#include "InputLines.h"
#include "NearNames.h"
#include "Output.h"
#include "StepPlayer.h"
#include "WholeNumber.h"

namespace stagehost {

namespace {

LineOutcome NotTaken(const QString& name, const QString& value) {
    return {kExitBadUse, QStringLiteral("\"%1\" does not take \"%2\"").arg(name, value)};
}

LineOutcome OutcomeOf(const Failure& failure) {
    return {failure.exitCode, failure.text, failure.place};
}

LineOutcome OutcomeOf(const MaybeFailure& failure, const QString& text) {
    return failure ? OutcomeOf(*failure) : LineOutcome{kExitOk, text};
}

LineOutcome OutcomeOf(KXPCode code, const QString& text) {
    if (code == KXP_OK)
        return {kExitOk, text};
    return {kExitScriptFailed, HostCodeLine(code)};
}

template <std::size_t Count>
QStringList WordList(const char* const (&words)[Count]) {
    QStringList list;
    for (const char* word : words)
        list += QLatin1String(word);
    return list;
}

std::optional<int> ReadMilliseconds(const QString& word) {
    bool isNumber = false;
    const int time = word.toInt(&isNumber);
    return isNumber && time >= 1 ? std::optional(time) : std::nullopt;
}

LineOutcome NoMilliseconds(const QString& word) {
    return {kExitBadUse, QStringLiteral("expected a number of milliseconds, not \"%1\"").arg(word)};
}

} // namespace

/// One kind of line: its first word, what follows, what it does.
struct LiveShow::Row {
    const char* name;
    const char* form;
    const char* summary;
    int fewest; ///< words behind the first
    int most;   ///< -1 for any number
    LineOutcome (LiveShow::*run)(const QStringList& words);
};

const LiveShow::Row LiveShow::kRows[] = {
    {"set", "NAME VALUE", "gives a variable, a channel or a universe that comes in a value", 2, 2, &LiveShow::Set},
    {"ramp", "CHANNEL VALUE MS", "moves a channel to a value within a time", 3, 3, &LiveShow::RampLine},
    {"get", "NAME", "shows a variable or a resource", 1, 1, &LiveShow::Get},
    {"list", "", "shows what the show has: devices, tasks, variables and so on", 0, 0, &LiveShow::List},
    {"send", "DEVICE COMMAND [PARAM=VALUE...]", "sends a command and waits for its end", 2, -1, &LiveShow::SendLine},
    {"stored", "NAME", "sends a stored command and waits for its end", 1, 1, &LiveShow::StoredLine},
    {"task", "NAME start|pause|stop", "works a task", 2, 2, &LiveShow::TaskLine},
    {"cue", "NAME", "runs a cue", 1, 1, &LiveShow::CueLine},
    {"wait", "NAME VALUE [MS] | NAME=VALUE [MS]",
     "waits until a variable, channel, resource or property has a value; with !=, <, <=, >, >= or ~ (a pattern) too", 1,
     4, &LiveShow::WaitLine},
    {"peer",
     "NAME leave|return|stall|resume|obey | NAME lie late|cut|repeat|reset|silence|nonsense | NAME call FUNCTION "
     "[ARG...] | NAME received|matches TEXT [MS]",
     "has a peer be gone, misbehave or call a function of its script, or waits for what it receives", 2, -1,
     &LiveShow::PeerLine},
    {"pause", "MS", "lets a time pass", 1, 1, &LiveShow::PauseLine},
    {"play", "", "plays the steps of the show", 0, 0, &LiveShow::Play},
    {"help", "", "shows these lines", 0, 0, &LiveShow::HelpLine},
    {"quit", "", "ends the show", 0, 0, &LiveShow::Quit},
};

LiveShow::LiveShow(Session& session, const Show& show)
    : m_session(session)
    , m_show(show) {}

LineOutcome LiveShow::Do(const QString& line) {
    QStringList words;
    if (!SplitWords(line, words))
        return {kExitBadUse, QStringLiteral("a quote is not closed")};
    if (words.isEmpty())
        return {};
    const QString name = words.takeFirst();
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [&](const Row& known) { return name == QLatin1String(known.name); });
    if (row == std::end(kRows))
        return {kExitBadUse,
                QStringLiteral("there is no \"%1\"%2; \"help\" tells more").arg(name, NamesInstead(name, Names()))};
    if (words.size() < row->fewest || (row->most >= 0 && words.size() > row->most))
        return {kExitBadUse,
                QStringLiteral("the form is: %1 %2").arg(QLatin1String(row->name), QLatin1String(row->form)).trimmed()};
    return (this->*row->run)(words);
}

/// The first words of the lines that there are.
QStringList LiveShow::Names() {
    QStringList names;
    for (const auto& row : kRows)
        names += QLatin1String(row.name);
    return names;
}

QString LiveShow::Help() {
    QVector<QStringList> rows;
    for (const auto& row : kRows) {
        QStringList forms = QString::fromLatin1(row.form).split(QStringLiteral(" | "));
        for (QString& form : forms)
            form.prepend(QLatin1String(row.name) + QLatin1Char(' '));
        for (const QString& form : forms.mid(0, forms.size() - 1))
            rows.push_back({form, {}});
        rows.push_back({forms.last().trimmed(), QLatin1String(row.summary)});
    }
    return Table(rows, QStringLiteral("  "));
}

LineOutcome LiveShow::Set(const QStringList& words) {
    const std::string name = ToBorderText(words.at(0));
    const std::string value = ToBorderText(words.at(1));
    const auto variable = m_session.TheHost().Variables().Find(name);
    const auto resource = m_session.TheHost().Model().FindResource(name);
    if (!variable && !resource)
        return OutcomeOf(m_session.NoVariable(words.at(0)));
    if (!(variable ? variable->SetText(value) : resource->SetValue(value) == KXP_OK))
        return NotTaken(words.at(0), words.at(1));
    return {};
}

LineOutcome LiveShow::RampLine(const QStringList& words) {
    const auto channel = m_session.TheHost().Model().FindResource(ToBorderText(words.at(0)));
    if (!channel)
        return {kExitBadUse, QStringLiteral("the show has no channel \"%1\"").arg(words.at(0))};
    if (!channel->CanRamp())
        return {kExitBadUse, QStringLiteral("\"%1\" is no channel").arg(words.at(0))};
    const auto to = ParseWholeNumber(ToBorderText(words.at(1)));
    const auto time = ParseWholeNumber(ToBorderText(words.at(2)));
    if (!time || *time < 0)
        return {kExitBadUse, QStringLiteral("expected a number of milliseconds, not \"%1\"").arg(words.at(2))};
    if (!to || channel->Ramp(*to, std::chrono::milliseconds(*time)) != KXP_OK)
        return NotTaken(words.at(0), words.at(1));
    return {};
}

LineOutcome LiveShow::Get(const QStringList& words) {
    const auto variable = m_session.TheHost().Variables().Find(ToBorderText(words.at(0)));
    if (variable)
        return {kExitOk, FromBorderText(variable->Text())};
    const auto resource = m_session.TheHost().Model().FindResource(ToBorderText(words.at(0)));
    if (!resource)
        return OutcomeOf(m_session.NoVariable(words.at(0)));
    QStringList lines;
    for (const auto& property : resource->Properties())
        lines += QStringLiteral("%1: %2").arg(FromBorderText(property.name), FromBorderText(property.value));
    return {kExitOk, lines.join(QLatin1Char('\n'))};
}

LineOutcome LiveShow::List(const QStringList&) {
    QStringList lines;
    for (const auto& kind : kObjectKinds) {
        for (const auto& object : m_session.TheHost().Model().Top(kind.kind))
            lines += QStringLiteral("%1  %2").arg(QLatin1String(kind.name), -10).arg(FromBorderText(object->Name()));
    }
    return {kExitOk, lines.join(QLatin1Char('\n'))};
}

LineOutcome LiveShow::SendLine(const QStringList& words) {
    Device* device = m_session.FindDevice(words.at(0));
    if (device == nullptr)
        return OutcomeOf(m_session.NoDevice(words.at(0)));
    std::vector<ParameterInput> inputs;
    if (const auto failure = ReadInputs(words.mid(2), inputs))
        return OutcomeOf(failure, {});
    CommandOutcome outcome;
    const auto failure = m_session.Send(*device, words.at(1), inputs, &outcome);
    return OutcomeOf(failure, FromBorderText(outcome.result));
}

LineOutcome LiveShow::StoredLine(const QStringList& words) {
    CommandOutcome outcome;
    const auto failure = m_session.SendStored(words.at(0), &outcome);
    return OutcomeOf(failure, FromBorderText(outcome.result));
}

LineOutcome LiveShow::TaskLine(const QStringList& words) {
    const auto task = m_session.TheHost().Model().FindTask(ToBorderText(words.at(0)));
    if (!task)
        return OutcomeOf(m_session.NoObject(ObjectKind::Task, words.at(0)));
    const auto* action = std::find_if(std::begin(kTaskActionNames), std::end(kTaskActionNames),
                                      [&](const char* name) { return words.at(1) == QLatin1String(name); });
    if (action == std::end(kTaskActionNames))
        return {kExitBadUse, QStringLiteral("a task knows start, pause and stop, not \"%1\"").arg(words.at(1))};
    return OutcomeOf(task->Do(static_cast<TaskAction>(action - std::begin(kTaskActionNames))), {});
}

LineOutcome LiveShow::CueLine(const QStringList& words) {
    const auto cue = m_session.TheHost().Model().FindCue(ToBorderText(words.at(0)));
    if (!cue)
        return OutcomeOf(m_session.NoObject(ObjectKind::Cue, words.at(0)));
    cue->Go();
    return {};
}

/// "wait NAME VALUE [MS]", "wait NAME=VALUE [MS]" or "wait NAME = VALUE [MS]".
LineOutcome LiveShow::WaitLine(const QStringList& words) {
    QString problem;
    const auto alone = ReadCondition(words.at(0), &problem);
    const auto sign = words.size() > 2 ? ReadSign(words.at(1)) : std::nullopt;
    const int used = alone ? 1 : (sign ? 3 : 2);
    ShowWait wait;
    if (alone)
        wait.until = *alone;
    else if (sign)
        wait.until = {words.at(0), *sign, words.at(2)};
    else if (words.size() > 1)
        wait.until = {words.at(0), Comparison::Is, words.at(1)};
    else
        return {kExitBadUse, problem};
    if (words.size() > used + 1)
        return {kExitBadUse, QStringLiteral("the form is: wait NAME VALUE [MS], or wait NAME=VALUE [MS]")};
    if (words.size() == used + 1) {
        const auto time = ReadMilliseconds(words.at(used));
        if (!time)
            return NoMilliseconds(words.at(used));
        wait.within = *time;
    }
    return OutcomeOf(m_session.WaitFor(wait), {});
}

/// The same words as in a step.
LineOutcome LiveShow::PeerLine(const QStringList& words) {
    const QString& word = words.at(1);
    if (word == QLatin1String("received") || word == QLatin1String("matches"))
        return PeerFrame(words);
    PeerDeed deed{words.at(0), word, {}, {}, {}};
    QStringList known = WordList(kPeerDeeds)
                        << QStringLiteral("call") << QStringLiteral("received") << QStringLiteral("matches");
    if (!known.contains(word))
        return {kExitBadUse, QStringLiteral("a peer knows no \"%1\"").arg(word) + NamesInstead(word, known)};
    if (word == QLatin1String("call")) {
        deed.deed.clear();
        deed.function = words.value(2);
        deed.arguments = QJsonArray::fromStringList(words.mid(3));
    } else if (word == QLatin1String("lie")) {
        deed.with = words.value(2);
        known = WordList(kPeerLies);
        if (!known.contains(deed.with))
            return {kExitBadUse,
                    QStringLiteral("a peer cannot lie with \"%1\"").arg(deed.with) + NamesInstead(deed.with, known)};
    }
    const int most = deed.deed.isEmpty() ? words.size() : (deed.with.isEmpty() ? 2 : 3);
    if (words.size() > most || (deed.deed.isEmpty() && deed.function.isEmpty()))
        return {kExitBadUse, QStringLiteral("the form is: peer NAME %1%2")
                                 .arg(word, QLatin1String(deed.deed.isEmpty() ? " FUNCTION [ARG...]" : ""))};
    QString result;
    const auto failure = m_session.Work(deed, &result);
    return OutcomeOf(failure, result);
}

/// "peer NAME received TEXT [MS]", "peer NAME matches PATTERN [MS]".
LineOutcome LiveShow::PeerFrame(const QStringList& words) {
    const bool isPattern = words.at(1) == QLatin1String("matches");
    if (words.size() < 3 || words.size() > 4)
        return {kExitBadUse, QStringLiteral("the form is: peer NAME %1 TEXT [MS]").arg(words.at(1))};
    ShowWait wait;
    wait.receipt = PeerReceipt{words.at(0), words.at(2), isPattern};
    const QString problem = isPattern ? WhyNoCondition({words.at(0), Comparison::Matches, words.at(2)}) : QString();
    if (!problem.isEmpty())
        return {kExitBadUse, problem};
    if (words.size() == 4) {
        wait.within = ReadMilliseconds(words.at(3));
        if (!wait.within)
            return NoMilliseconds(words.at(3));
    }
    return OutcomeOf(m_session.WaitFor(wait), {});
}

LineOutcome LiveShow::PauseLine(const QStringList& words) {
    const auto time = ReadMilliseconds(words.at(0));
    return time ? OutcomeOf(Session::Pause(std::chrono::milliseconds(*time)), {}) : NoMilliseconds(words.at(0));
}

LineOutcome LiveShow::Play(const QStringList&) {
    StepPlayer player(m_session, m_show);
    int number = 0;
    for (const auto& step : m_show.steps) {
        const StepOutcome outcome = player.Play(step);
        ++number;
        if (outcome.failure)
            return {outcome.failure->exitCode, QStringLiteral("step %1: %2").arg(number).arg(outcome.failure->text),
                    outcome.failure->place};
    }
    return {};
}

LineOutcome LiveShow::HelpLine(const QStringList&) {
    QString help = Help();
    help.chop(1);
    return {kExitOk, help};
}

LineOutcome LiveShow::Quit(const QStringList&) {
    m_over = true;
    return {};
}

MaybeFailure ReadInputs(const QStringList& words, std::vector<ParameterInput>& inputs) {
    for (const QString& word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 1)
            return Failure{kExitBadUse, QStringLiteral("expected PARAM=VALUE, not \"%1\"").arg(word)};
        inputs.push_back({ToBorderText(word.left(equals)), ToBorderText(word.mid(equals + 1)), {}});
    }
    return std::nullopt;
}

} // namespace stagehost
