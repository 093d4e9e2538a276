#include "ScriptSource.h"

#include <algorithm>

#include "SourceReader.h"

namespace {

bool IsOpening(const SourceWord& word) {
    return word.kind == WordKind::Sign &&
           (word.text == QLatin1String("(") || word.text == QLatin1String("[") || word.text == QLatin1String("{"));
}

bool IsClosing(const SourceWord& word) {
    return word.kind == WordKind::Sign &&
           (word.text == QLatin1String(")") || word.text == QLatin1String("]") || word.text == QLatin1String("}"));
}

} // namespace

ScriptSource::ScriptSource(const QString& script)
    : m_words(ReadSourceWords(script)) {
    MatchBrackets();
    FindFunctions();
}

bool ScriptSource::Is(int place, WordKind kind, const char* text) const {
    return IsKind(place, kind) && m_words[static_cast<std::size_t>(place)].text == QLatin1String(text);
}

bool ScriptSource::IsKind(int place, WordKind kind) const {
    return place >= 0 && place < Count() && m_words[static_cast<std::size_t>(place)].kind == kind;
}

void ScriptSource::MatchBrackets() {
    std::vector<int> open;
    for (int place = 0; place < Count(); ++place) {
        SourceWord& word = m_words[static_cast<std::size_t>(place)];
        if (IsClosing(word) && !open.empty()) {
            word.partner = open.back();
            m_words[static_cast<std::size_t>(open.back())].partner = place;
            open.pop_back();
        }
        word.depth = static_cast<int>(open.size());
        if (IsOpening(word))
            open.push_back(place);
    }
}

bool ScriptSource::IsKey(int place) const {
    if (!IsName(place) && !IsText(place) && !IsKind(place, WordKind::Number))
        return false;
    return IsSign(place + 1, ":") && (IsSign(place - 1, "{") || IsSign(place - 1, ","));
}

bool ScriptSource::IsObject(int place) const {
    if (!IsSign(place, "{") || IsSign(place - 1, ")") || place == 0)
        return false;
    const bool isEmpty = IsSign(place + 1, "}");
    const bool behindValue = IsSign(place - 1, "(") || IsSign(place - 1, "=") || IsSign(place - 1, ":") ||
                             IsSign(place - 1, ",") || IsSign(place - 1, "[") || IsSign(place - 1, "?") ||
                             IsName(place - 1, "return") || IsSign(place - 1, "||");
    return behindValue && (isEmpty || IsKey(place + 1) || IsName(place + 1, "get") || IsName(place + 1, "set"));
}

std::vector<int> ScriptSource::Arguments(int openBracket) const {
    std::vector<int> begins;
    const int close = m_words[static_cast<std::size_t>(openBracket)].partner;
    if (close <= openBracket + 1)
        return begins;
    begins.push_back(openBracket + 1);
    for (int place = openBracket + 1; place < close; ++place) {
        const SourceWord& word = m_words[static_cast<std::size_t>(place)];
        if (IsOpening(word) && word.partner > place)
            place = word.partner;
        else if (IsSign(place, ","))
            begins.push_back(place + 1);
    }
    return begins;
}

void ScriptSource::FindFunctions() {
    for (int place = 0; place < Count(); ++place)
        if (IsName(place, "function") && !IsSign(place - 1, ".") && !IsKey(place)) {
            SourceFunction function = FunctionAt(place);
            if (function.close > function.open)
                m_functions.push_back(std::move(function));
        }
    for (SourceFunction& function : m_functions)
        function.parent = FunctionAround(function.keyword);
}

SourceFunction ScriptSource::FunctionAt(int keyword) const {
    SourceFunction function;
    function.keyword = keyword;
    const int bracket = keyword + (IsName(keyword + 1) ? 2 : 1);
    if (!IsSign(bracket, "(") || m_words[static_cast<std::size_t>(bracket)].partner < 0)
        return function;
    for (const int place : Arguments(bracket))
        function.params.append(m_words[static_cast<std::size_t>(place)].text);
    function.open = m_words[static_cast<std::size_t>(bracket)].partner + 1;
    function.close = IsSign(function.open, "{") ? m_words[static_cast<std::size_t>(function.open)].partner : -1;
    if (function.close > function.open)
        Name(function);
    return function;
}

void ScriptSource::Name(SourceFunction& function) const {
    const int before = function.keyword - 1;
    const bool hasName = IsName(function.keyword + 1);
    if (hasName)
        function.name = m_words[static_cast<std::size_t>(function.keyword) + 1].text;
    else if (IsSign(before, ":") || IsSign(before, "="))
        function.name = before > 0 ? m_words[static_cast<std::size_t>(before) - 1].text : QString();
    function.isAtOnce = IsSign(function.close + 1, "(") ||
                        (IsSign(before, "(") && IsSign(function.close + 1, ")") && IsSign(function.close + 2, "("));
    const bool isValue = IsSign(before, "(") || IsSign(before, ",");
    const int around = m_words[static_cast<std::size_t>(function.keyword)].depth;
    for (int place = before; isValue && !function.isAtOnce && place >= 0; --place) {
        const SourceWord& word = m_words[static_cast<std::size_t>(place)];
        if (word.depth >= around || !IsOpening(word))
            continue;
        if (word.text == QLatin1String("(") && IsName(place - 1))
            function.givenTo = m_words[static_cast<std::size_t>(place) - 1].text;
        break;
    }
    function.isDeclared =
        hasName && !isValue && !IsSign(before, ":") && !IsSign(before, "=") && !IsName(before, "return");
}

int ScriptSource::FunctionAround(int place) const {
    int found = -1;
    for (std::size_t i = 0; i < m_functions.size(); ++i)
        if (m_functions[i].open < place && place < m_functions[i].close)
            found = static_cast<int>(i); // the later one lies inside the earlier
    return found;
}

bool ScriptSource::Declares(const QString& name) const {
    const bool isParam = std::any_of(m_functions.begin(), m_functions.end(), [&](const SourceFunction& function) {
        return function.params.contains(name) || function.name == name;
    });
    for (int place = 0; place < Count() && !isParam; ++place) {
        if (m_words[static_cast<std::size_t>(place)].text != name || !IsName(place))
            continue;
        const bool isMember = IsSign(place - 1, ".");
        const bool isCaught = IsSign(place - 1, "(") && IsName(place - 2, "catch");
        if (isCaught || IsName(place - 1, "var") || (!isMember && (IsSign(place + 1, "=") || IsName(place + 1, "in"))))
            return true;
        // `var a, b;` declares b without giving it anything.
        if (!isMember && IsSign(place - 1, ",") && (IsSign(place + 1, ",") || IsSign(place + 1, ";")))
            return true;
    }
    return isParam;
}

bool ScriptSource::Mentions(const char* name) const {
    for (int place = 0; place < Count(); ++place)
        if (IsName(place, name))
            return true;
    return false;
}

int ScriptSource::FindTop(const QString& name) const {
    int found = -1;
    for (int place = 0; place < Count(); ++place) {
        const SourceWord& word = m_words[static_cast<std::size_t>(place)];
        const bool isMember = IsKey(place) || (IsName(place) && IsSign(place - 1, ".") && IsSign(place + 1, "=")) ||
                              (IsName(place) && IsName(place - 1, "function"));
        if (word.text == name && isMember && (found < 0 || word.depth < m_words[static_cast<std::size_t>(found)].depth))
            found = place;
    }
    return found;
}

int ScriptSource::FindKey(int open, const QString& name) const {
    const int close = m_words[static_cast<std::size_t>(open)].partner;
    const int depth = m_words[static_cast<std::size_t>(open)].depth + 1;
    for (int place = open + 1; place < close; ++place) {
        const SourceWord& word = m_words[static_cast<std::size_t>(place)];
        if (word.depth == depth && word.text == name && IsKey(place))
            return place;
    }
    return -1;
}

int ScriptSource::LineOf(const QStringList& path) const {
    int place = path.isEmpty() ? -1 : FindTop(path.first());
    for (int step = 1; place >= 0 && step < path.size() && IsSign(place + 2, "{"); ++step) {
        const int next = FindKey(place + 2, path.at(step));
        if (next < 0)
            break;
        place = next;
    }
    return place < 0 ? 0 : m_words[static_cast<std::size_t>(place)].line;
}
