#include "SyntaxReader.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "SyntaxScanner.h"

namespace {

using SymbolKind = SyntaxSymbol::Kind;

constexpr int kDeepest = 1000; // statements and values within each other; no hand writes so many

constexpr const char* kAName = "a name";
constexpr const char* kPrefixes[] = {"delete", "void", "typeof", "++", "--", "+", "-", "~", "!"};
constexpr const char* kBetween[] = {"*",  "/",  "%",  "+",   "-",   "<<", ">>", ">>>", "<",  ">",  "<=",
                                    ">=", "==", "!=", "===", "!==", "&",  "^",  "|",   "&&", "||", "instanceof"};
constexpr const char* kAssignments[] = {"=", "*=", "/=", "%=", "+=", "-=", "<<=", ">>=", ">>>=", "&=", "^=", "|="};
constexpr const char* kValues[] = {"this", "null", "true", "false"};

/// By recursive descent. Once something is wrong it stands at the end of the text, so that every loop comes to its own
/// end.
class SyntaxParser {
public:
    explicit SyntaxParser(const QString& text)
        : m_text(text)
        , m_scanner(text) {
        Advance();
    }

    SyntaxBreak Read() {
        while (!AtEnd())
            Statement(false);
        return m_break;
    }

    std::vector<LostJump> TakeLostJumps() { return std::move(m_lostJumps); }

private:
    enum class In { Allowed, EndsIt }; ///< the word "in" between two values: not in the head of a "for"

    // ---- symbols

    bool AtEnd() const { return m_symbol.kind == SymbolKind::End; }
    bool Is(const char* what) const { return m_scanner.Is(m_symbol, what); }
    bool IsName() const { return m_symbol.kind == SymbolKind::Name; }

    template <typename Words>
    bool IsOneOf(const Words& words) const {
        return std::any_of(std::begin(words), std::end(words), [&](const char* one) { return Is(one); });
    }

    void Advance() {
        if (m_hasGivenUp)
            return;
        m_lastEnd = m_symbol.end;
        m_symbol = m_scanner.Next();
        GiveUpOnFault();
    }

    void GiveUpOnFault() {
        if (m_scanner.Fault().kind != SyntaxBreak::Kind::None)
            GiveUp(m_scanner.Fault());
    }

    bool Take(const char* what) {
        const bool is = Is(what);
        if (is)
            Advance();
        return is;
    }

    void Need(const char* what) {
        if (!Take(what))
            Fail({QLatin1String(what)});
    }

    void NeedName() {
        if (IsName())
            Advance();
        else
            Fail({QLatin1String(kAName)});
    }

    /// A comma or the end of a list. @return whether the list goes on.
    bool TakeComma(const char* end) {
        const bool goesOn = Take(",");
        const bool closes = Is(")") || Is("]") || Is("}");
        if (!goesOn && !Is(end))
            Fail(closes ? QStringList(QLatin1String(end)) : QStringList{QStringLiteral(","), QLatin1String(end)});
        return goesOn;
    }

    void Fail(const QStringList& expected) {
        const bool isNewer = m_scanner.IsOfNewerEdition(m_symbol);
        GiveUp({SyntaxBreak::Kind::Unexpected, m_symbol.start, isNewer ? QStringList() : expected});
    }

    /// The first that is wrong counts.
    void GiveUp(const SyntaxBreak& found) {
        if (!m_hasGivenUp)
            m_break = found;
        m_hasGivenUp = true;
        m_symbol = {};
    }

    /// One level deeper, as long as that can be followed.
    class Level {
    public:
        explicit Level(SyntaxParser& parser)
            : m_parser(parser) {
            if (++m_parser.m_depth > kDeepest)
                m_parser.GiveUp({});
        }
        ~Level() { --m_parser.m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        SyntaxParser& m_parser;
    };

    // ---- statements

    void Block() {
        Need("{");
        while (!Is("}") && !AtEnd())
            Statement(true);
        Need("}");
    }

    void Statement(bool inBlock) {
        struct Form {
            const char* word;
            void (SyntaxParser::*read)();
        };
        static constexpr Form kForms[] = {{"{", &SyntaxParser::Block},
                                          {"var", &SyntaxParser::Variables},
                                          {"const", &SyntaxParser::Variables},
                                          {";", &SyntaxParser::Advance},
                                          {"if", &SyntaxParser::If},
                                          {"do", &SyntaxParser::Do},
                                          {"while", &SyntaxParser::While},
                                          {"with", &SyntaxParser::HeadAndBody},
                                          {"for", &SyntaxParser::For},
                                          {"continue", &SyntaxParser::Continue},
                                          {"break", &SyntaxParser::Break},
                                          {"return", &SyntaxParser::Return},
                                          {"throw", &SyntaxParser::Throw},
                                          {"switch", &SyntaxParser::Switch},
                                          {"try", &SyntaxParser::Try},
                                          {"debugger", &SyntaxParser::Debugger},
                                          {"function", &SyntaxParser::NamedFunction}};
        const Level level(*this);
        const auto* form =
            std::find_if(std::begin(kForms), std::end(kForms), [&](const Form& row) { return Is(row.word); });
        if (form != std::end(kForms))
            (this->*form->read)();
        else if (inBlock && (Is(")") || Is("]") || Is(",")))
            Fail({QStringLiteral("}")});
        else
            ValueOrLabel();
    }

    void ValueOrLabel() {
        const SyntaxSymbol first = m_symbol;
        Expression(In::Allowed);
        if (first.kind == SymbolKind::Name && m_lastEnd == first.end && Take(":"))
            Labelled(TextOf(first));
        else
            EndOfStatement();
    }

    void Labelled(const QString& label) {
        m_targets.labels.push_back({label, m_targets.loops});
        Statement(false);
        m_targets.labels.pop_back();
    }

    /// A semicolon, or what stands for one.
    void EndOfStatement() {
        if (!Take(";") && !Is("}") && !AtEnd() && !m_symbol.isFirstOfLine)
            Fail({QStringLiteral(";")});
    }

    void Variables() {
        Advance();
        do {
            Variable(In::Allowed);
        } while (Take(","));
        EndOfStatement();
    }

    void Variable(In in) {
        NeedName();
        if (Take("="))
            Assignment(in);
    }

    void Head() {
        Need("(");
        Expression(In::Allowed);
        Need(")");
    }

    void HeadAndBody() {
        Advance();
        Head();
        Statement(false);
    }

    /// A chain of "else if" is one level, since programs of many branches are made so.
    void If() {
        HeadAndBody();
        while (Take("else")) {
            if (!Is("if")) {
                Statement(false);
                return;
            }
            HeadAndBody();
        }
    }

    void LoopBody() {
        ++m_targets.loops;
        Statement(false);
        --m_targets.loops;
    }

    void While() {
        Advance();
        Head();
        LoopBody();
    }

    void Do() {
        Advance();
        LoopBody();
        Need("while");
        Head();
        Take(";");
    }

    void For() {
        Advance();
        Need("(");
        if (Take("var") || Take("const")) {
            do {
                Variable(In::EndsIt);
            } while (Take(","));
        } else if (!Is(";")) {
            Expression(In::EndsIt);
        }
        if (Take("in")) {
            Expression(In::Allowed);
        } else {
            Need(";");
            if (!Is(";"))
                Expression(In::Allowed);
            Need(";");
            if (!Is(")"))
                Expression(In::Allowed);
        }
        Need(")");
        LoopBody();
    }

    /// With a label it goes on with the outermost loop within what has that label, as the engine has it.
    void Continue() {
        Jump(m_targets.loops > 0, [this](const Label& label) { return m_targets.loops > label.loopsAround; });
    }
    void Break() {
        Jump(m_targets.loops > 0 || m_targets.switches > 0, [](const Label& /*label*/) { return true; });
    }

    void Debugger() {
        Advance();
        EndOfStatement();
    }

    struct Label {
        QString name;
        int loopsAround = 0;
    };

    /// @param leadsOn whether it does without a label. @param fits whether it does with one of that name.
    template <typename Fits>
    void Jump(bool leadsOn, Fits fits) {
        SyntaxSymbol jump = m_symbol;
        Advance();
        if (IsName() && !m_symbol.isFirstOfLine) {
            const QString name = TextOf(m_symbol);
            const auto leads = [&](const Label& label) { return label.name == name && fits(label); };
            leadsOn = std::any_of(m_targets.labels.begin(), m_targets.labels.end(), leads);
            jump.end = m_symbol.end;
            Advance();
        }
        if (!leadsOn)
            m_lostJumps.push_back({jump.start, TextOf(jump)});
        EndOfStatement();
    }

    void Return() {
        Advance();
        if (!Is(";") && !Is("}") && !AtEnd() && !m_symbol.isFirstOfLine)
            Expression(In::Allowed);
        EndOfStatement();
    }

    void Throw() {
        Advance();
        Expression(In::Allowed);
        EndOfStatement();
    }

    void Switch() {
        Advance();
        Head();
        Need("{");
        while (!Is("}") && !AtEnd()) {
            if (Take("case"))
                Expression(In::Allowed);
            else if (!Take("default"))
                Fail({QStringLiteral("case"), QStringLiteral("default"), QStringLiteral("}")});
            Need(":");
            ++m_targets.switches;
            while (!Is("case") && !Is("default") && !Is("}") && !AtEnd())
                Statement(true);
            --m_targets.switches;
        }
        Need("}");
    }

    void Try() {
        Advance();
        Block();
        const bool isCaught = Take("catch");
        if (isCaught) {
            Need("(");
            NeedName();
            Need(")");
            Block();
        }
        if (Take("finally"))
            Block();
        else if (!isCaught)
            Fail({QStringLiteral("catch"), QStringLiteral("finally")});
    }

    void NamedFunction() {
        Advance();
        NeedName();
        ParametersAndBody();
    }

    void ParametersAndBody() {
        Need("(");
        while (!Is(")") && !AtEnd()) {
            NeedName();
            if (!TakeComma(")"))
                break;
        }
        Need(")");
        const Targets around = std::exchange(m_targets, {});
        Block();
        m_targets = around;
    }

    // ---- values

    void Expression(In in) {
        do {
            Assignment(in);
        } while (Take(","));
    }

    void Assignment(In in) {
        const Level level(*this);
        do {
            Unary();
        } while (TakeBetween(in));
        if (Take("?")) {
            Assignment(In::Allowed);
            Need(":");
            Assignment(in);
        } else if (IsOneOf(kAssignments)) {
            Advance();
            Assignment(in);
        }
    }

    /// Which binds stronger does not matter here.
    bool TakeBetween(In in) {
        const bool is = IsOneOf(kBetween) || (in == In::Allowed && Is("in"));
        if (is)
            Advance();
        return is;
    }

    void Unary() {
        while (IsOneOf(kPrefixes))
            Advance();
        Member();
        if ((Is("++") || Is("--")) && !m_symbol.isFirstOfLine)
            Advance();
    }

    void Member() {
        while (Take("new")) {
        }
        Primary();
        while (Is(".") || Is("[") || Is("(")) {
            if (Take("."))
                NeedName();
            else if (Take("["))
                Index();
            else
                Arguments();
        }
    }

    void Index() {
        Expression(In::Allowed);
        Need("]");
    }

    void Arguments() {
        Advance();
        while (!Is(")") && !AtEnd()) {
            Assignment(In::Allowed);
            if (!TakeComma(")"))
                break;
            if (Is(")"))
                Fail({});
        }
        Need(")");
    }

    void Primary() {
        if (Is("/") || Is("/=")) { // where a value begins there is nothing to divide
            m_symbol = m_scanner.ReadPattern(m_symbol);
            GiveUpOnFault();
        }
        const bool isValue = IsName() || m_symbol.kind == SymbolKind::Number || m_symbol.kind == SymbolKind::Text ||
                             m_symbol.kind == SymbolKind::Pattern || IsOneOf(kValues);
        if (isValue)
            Advance();
        else if (Is("("))
            Head();
        else if (Is("["))
            Array();
        else if (Is("{"))
            Object();
        else if (Take("function"))
            FunctionValue();
        else
            Fail({});
    }

    void FunctionValue() {
        if (IsName())
            Advance();
        ParametersAndBody();
    }

    void Array() {
        Advance();
        while (!Is("]") && !AtEnd()) {
            if (Take(","))
                continue;
            Assignment(In::Allowed);
            if (!TakeComma("]"))
                break;
        }
        Need("]");
    }

    void Object() {
        Advance();
        while (!Is("}") && !AtEnd()) {
            ObjectMember();
            if (!TakeComma("}"))
                break;
        }
        Need("}");
    }

    bool IsKey() const { return IsName() || m_symbol.kind == SymbolKind::Number || m_symbol.kind == SymbolKind::Text; }

    void ObjectMember() {
        const bool mayBeAccessor = Is("get") || Is("set");
        if (!IsKey())
            Fail({QLatin1String(kAName)});
        Advance();
        if (mayBeAccessor && IsKey()) {
            Advance();
            ParametersAndBody();
            return;
        }
        Need(":");
        Assignment(In::Allowed);
    }

    /// What "break" and "continue" can lead to, within one function.
    struct Targets {
        int loops = 0;
        int switches = 0;
        std::vector<Label> labels;
    };

    QString TextOf(const SyntaxSymbol& symbol) const { return m_text.mid(symbol.start, symbol.end - symbol.start); }

    const QString& m_text;
    SyntaxScanner m_scanner;
    SyntaxSymbol m_symbol;
    int m_lastEnd = 0; ///< of the symbol before
    int m_depth = 0;
    bool m_hasGivenUp = false;
    SyntaxBreak m_break;
    Targets m_targets;
    std::vector<LostJump> m_lostJumps;
};

} // namespace

SyntaxBreak ReadSyntax(const QString& text) {
    return SyntaxParser(text).Read();
}

std::vector<LostJump> FindLostJumps(const QString& text) {
    SyntaxParser parser(text);
    parser.Read();
    return parser.TakeLostJumps();
}
