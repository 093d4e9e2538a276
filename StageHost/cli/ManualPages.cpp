#include "ManualPages.h"

#include "ArgumentReader.h"
#include "CommandTable.h"
#include "ExitCodes.h"
#include "LiveShow.h"

namespace stagehost {

namespace {

/// A text as man(7) takes it: no character of it is a request or an escape.
QString Plain(const QString& text) {
    QString plain = text;
    plain.replace(QLatin1Char('\\'), QLatin1String("\\e")).replace(QLatin1Char('-'), QLatin1String("\\-"));
    plain.replace(QLatin1Char('\''), QLatin1String("\\(aq"));
    QStringList lines = plain.split(QLatin1Char('\n'));
    for (QString& line : lines)
        if (line.startsWith(QLatin1Char('.')))
            line.prepend(QLatin1String("\\&"));
    return lines.join(QLatin1Char('\n'));
}

QString Plain(const char* text) {
    return Plain(QString::fromUtf8(text));
}

QString Example(const QString& text) {
    return QStringLiteral(".PP\n.EX\n%1\n.EE\n").arg(Plain(text));
}

QString Form(const OptionRow& option) {
    QString form = QStringLiteral("\\fB\\-\\-%1\\fR").arg(Plain(option.name));
    if (option.shortName != nullptr)
        form.prepend(QStringLiteral("\\fB\\-%1\\fR, ").arg(QLatin1String(option.shortName)));
    return option.value == nullptr ? form : form + QStringLiteral(" \\fI%1\\fR").arg(Plain(option.value));
}

/// The words that a table shows as "both|newer|none"; none for a form that is no such choice.
QStringList Choices(const char* form) {
    QString first = QString::fromUtf8(form == nullptr ? "" : form).section(QLatin1Char(' '), 0, 0);
    if (first.startsWith(QLatin1Char('[')) && first.endsWith(QLatin1Char(']')))
        first = first.mid(1, first.size() - 2); // it may be left out
    return first.contains(QLatin1Char('|')) ? first.split(QLatin1Char('|')) : QStringList();
}

bool TakesFile(const char* form) {
    return form != nullptr && QString::fromUtf8(form).contains(QLatin1String("FILE"));
}

QStringList OptionNames() {
    QStringList names;
    for (const OptionRow& option : AllOptions())
        names += QStringLiteral("--") + QLatin1String(option.name);
    return names;
}

/// One arm of a case for each option with a value, and for each command whose first word is a choice.
QString BashCases() {
    QString text;
    for (const OptionRow& option : AllOptions()) {
        const QString name = QStringLiteral("--") + QLatin1String(option.name);
        if (!Choices(option.value).isEmpty())
            text += QStringLiteral("        %1) COMPREPLY=($(compgen -W \"%2\" -- \"$word\")); return ;;\n")
                        .arg(name, Choices(option.value).join(QLatin1Char(' ')));
        else if (TakesFile(option.value))
            text += QStringLiteral("        %1) COMPREPLY=($(compgen -f -- \"$word\")); return ;;\n").arg(name);
        else if (option.value != nullptr)
            text += QStringLiteral("        %1) return ;;\n").arg(name);
    }
    for (const Command& command : AllCommands()) {
        if (!Choices(command.form).isEmpty())
            text += QStringLiteral("        %1) COMPREPLY=($(compgen -W \"%2\" -- \"$word\")); return ;;\n")
                        .arg(QLatin1String(command.name), Choices(command.form).join(QLatin1Char(' ')));
    }
    return text;
}

/// A text in single quotes of a shell, for a place where brackets and colons have a meaning.
QString ZshText(const char* text) {
    QString plain = QString::fromUtf8(text).section(QLatin1Char('\n'), 0, 0);
    for (const char* special : {"\\", "[", "]", ":"})
        plain.replace(QLatin1String(special), QLatin1String("\\") + QLatin1String(special));
    return plain.replace(QLatin1Char('\''), QLatin1String("'\\''"));
}

QString ZshOption(const OptionRow& option) {
    QString row = QStringLiteral("--%1[%2]").arg(QLatin1String(option.name), ZshText(option.help));
    if (!Choices(option.value).isEmpty())
        row += QStringLiteral(":%1:(%2)").arg(QLatin1String(option.name), Choices(option.value).join(QLatin1Char(' ')));
    else if (option.value != nullptr)
        row += QStringLiteral(":%1:%2").arg(QLatin1String(option.name),
                                            QLatin1String(TakesFile(option.value) ? "_files" : ""));
    return QStringLiteral("    '%1' \\\n").arg(row);
}

} // namespace

QString ManualPage(const QString& version) {
    QString text =
        QStringLiteral(".TH STAGEHOST 1 \"\" \"stagehost %1\" \"User Commands\"\n"
                       ".SH NAME\nstagehost \\- a small show host for the desk\n"
                       ".SH SYNOPSIS\n.B stagehost\n.RI [ options ]\n.I command\n.RI [ words ]\n"
                       ".SH DESCRIPTION\nLoads scripts into devices and works them as a show does.\n.SH COMMANDS\n")
            .arg(Plain(version));
    for (const Command& command : AllCommands()) {
        text += QStringLiteral(".TP\n\\fB%1\\fR %2\n%3\n")
                    .arg(Plain(command.name), Plain(command.form), Plain(command.summary));
    }
    text += QStringLiteral(".SH OPTIONS\n");
    for (const OptionRow& option : AllOptions())
        text += QStringLiteral(".TP\n%1\n%2\n").arg(Form(option), Plain(option.help));
    text += QStringLiteral(".SH LINES OF WATCH\n") + Example(LiveShow::Help().trimmed());
    text += QStringLiteral(".SH EXIT STATUS\n");
    for (const auto& row : kExitCodes)
        text += QStringLiteral(".TP\n%1\n%2\n").arg(static_cast<int>(row.code)).arg(Plain(row.meaning));
    text +=
        QStringLiteral(".SH ENVIRONMENT\n.TP\nQT_QPA_PLATFORM\n"
                       "the platform that windows are shown on; chosen by what there is if not given\n.SH EXAMPLES\n");
    for (const Command& command : AllCommands())
        text += Example(QString::fromUtf8(command.examples));
    return text + QStringLiteral(".SH SEE ALSO\nThe manual in /usr/share/doc/stagehost.\n");
}

QString BashCompletion() {
    return QStringLiteral("# Completion of stagehost for bash.\n"
                          "_stagehost() {\n"
                          "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
                          "    case $before in\n%1    esac\n"
                          "    case $word in\n"
                          "        -*) COMPREPLY=($(compgen -W \"%2\" -- \"$word\")); return ;;\n"
                          "    esac\n"
                          "    local index\n"
                          "    for ((index = 1; index < COMP_CWORD; ++index)); do\n"
                          "        case ${COMP_WORDS[index]} in\n"
                          "            %3) COMPREPLY=($(compgen -f -X '!*.@(js|json)' -- \"$word\") "
                          "$(compgen -d -- \"$word\")); return ;;\n"
                          "        esac\n"
                          "    done\n"
                          "    COMPREPLY=($(compgen -W \"%4 help\" -- \"$word\"))\n"
                          "}\n"
                          "shopt -s extglob\n"
                          "complete -o filenames -F _stagehost stagehost\n")
        .arg(BashCases(), OptionNames().join(QLatin1Char(' ')), CommandNames().join(QLatin1Char('|')),
             CommandNames().join(QLatin1Char(' ')));
}

QString ZshCompletion() {
    QString options;
    QString commands;
    QString choices;
    for (const OptionRow& option : AllOptions())
        options += ZshOption(option);
    for (const Command& command : AllCommands()) {
        commands += QStringLiteral("    '%1:%2'\n").arg(QLatin1String(command.name), ZshText(command.summary));
        if (!Choices(command.form).isEmpty())
            choices += QStringLiteral("        %1) (( CURRENT == 2 )) && compadd %2 ;;\n")
                           .arg(QLatin1String(command.name), Choices(command.form).join(QLatin1Char(' ')));
    }
    return QStringLiteral("#compdef stagehost\n"
                          "# Completion of stagehost for zsh.\n"
                          "local -a commands\n"
                          "local state line\n"
                          "commands=(\n%1)\n"
                          "_arguments -C \\\n%2    '1:command:->command' \\\n    '*::word:->word'\n"
                          "case $state in\n"
                          "    command) _describe command commands ;;\n"
                          "    word) case $words[1] in\n%3        *) _files -g '*.(js|json)' ;;\n    esac ;;\n"
                          "esac\n")
        .arg(commands, options, choices);
}

} // namespace stagehost
