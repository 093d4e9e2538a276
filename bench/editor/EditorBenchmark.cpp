#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>

#include "CodeEditor.h"
#include "Highlighter.h"

// Each benchmark does the same to the script editor and to a plain text widget without a highlighter, in turns, and
// tells the two medians, their ratio and the editor's worst, in milliseconds of processor time, which other work on the
// machine disturbs least; beside it the worst by the clock. A keystroke lasts until the event loop comes back from it,
// with all that it makes to be painted. A turn is one of the event loop's, while the rest of a long change is done.
namespace {

constexpr int kLines = 20000;

/// Nothing in it closes a block comment, so one that opens at the top takes all of it.
QString LongScript() {
    const QString part = QStringLiteral("// Reads the state of door %1\n"
                                        "// and tells it to the show.\n"
                                        "function ReadDoor%1(text) {\n"
                                        "    var value = parseInt(text, 10); // in steps of 0.5\n"
                                        "    if (value > %1 && /^D[0-9]+/.test(text)) {\n"
                                        "        QCalverin.SetValue( \"Door %1\", 'open' );\n"
                                        "        return { state: true, at: value * 1.5 };\n"
                                        "    }\n"
                                        "    return null;\n"
                                        "}\n");
    QString script = QStringLiteral("\n"); // the place to type in at the top
    for (int door = 0; door < kLines / 10; ++door)
        script += part.arg(door);
    return script;
}

/// A library that was made small: all of it stands in one line.
QString MinifiedScript() {
    constexpr int kLength = 200000;
    const QString part = QStringLiteral("function a(b,c){if(b>1.5&&c!==\"x\"){return{d:b*2,e:'f'}}return a(b-1,c)}");
    return part.repeated(kLength / part.length() + 1).left(kLength);
}

struct Samples {
    std::vector<double> wall; ///< milliseconds
    std::vector<double> processor;

    static double Median(std::vector<double> all) {
        std::nth_element(all.begin(), all.begin() + static_cast<long>(all.size() / 2), all.end());
        return all[all.size() / 2];
    }
    static double Worst(const std::vector<double>& all) { return *std::max_element(all.begin(), all.end()); }
};

template <typename Work>
void Measure(Samples& samples, Work work) {
    const auto begin = std::chrono::steady_clock::now();
    const std::clock_t busy = std::clock();
    work();
    samples.processor.push_back(1000.0 * static_cast<double>(std::clock() - busy) / CLOCKS_PER_SEC);
    samples.wall.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
}

/// The two widgets on the screen, with the same long script.
class Widgets {
public:
    explicit Widgets(const QString& script = LongScript())
        : m_script(script)
        , m_highlighter(new Highlighter(m_editor.document())) {
        for (QPlainTextEdit* widget : {&m_plain, static_cast<QPlainTextEdit*>(&m_editor)}) {
            widget->resize(900, 700);
            widget->setPlainText(m_script);
            widget->show();
        }
        Settle();
    }

    /// Runs the work on both, in turns, and times it, from rest.
    template <typename Work>
    void Compare(Work work) {
        Settle();
        Measure(m_plainSamples, [&] { work(m_plain); });
        Measure(m_editorSamples, [&] { work(m_editor); });
    }

    /// Lets the rest of a long change be done, and keeps the longest turn of the event loop meanwhile.
    void Settle() {
        while (m_highlighter->IsSpreading())
            Measure(m_turns, [] { QApplication::processEvents(); });
        QApplication::processEvents();
        QApplication::processEvents(); // what the first painting asked for
    }

    void Report(benchmark::State& state) const {
        const double plain = Samples::Median(m_plainSamples.processor);
        const double editor = Samples::Median(m_editorSamples.processor);
        state.counters["plain_ms"] = plain;
        state.counters["editor_ms"] = editor;
        state.counters["ratio"] = editor / plain;
        state.counters["worst_ms"] = Samples::Worst(m_editorSamples.processor);
        state.counters["worst_clock_ms"] = Samples::Worst(m_editorSamples.wall);
        if (!m_turns.processor.empty())
            state.counters["worst_turn_ms"] = Samples::Worst(m_turns.processor);
    }

    const QString& Script() const { return m_script; }
    Highlighter& TheHighlighter() { return *m_highlighter; }
    bool IsPlain(const QPlainTextEdit& widget) const { return &widget == &m_plain; }

    /// At the end of the line; lines count from 0.
    void PutCaret(int line) {
        for (QPlainTextEdit* widget : {&m_plain, static_cast<QPlainTextEdit*>(&m_editor)}) {
            widget->setTextCursor(QTextCursor(widget->document()->findBlockByNumber(line)));
            widget->moveCursor(QTextCursor::EndOfBlock);
            widget->setFocus();
        }
        Settle();
    }

private:
    const QString m_script;
    QPlainTextEdit m_plain;
    CodeEditor m_editor;
    Highlighter* m_highlighter;
    Samples m_plainSamples;
    Samples m_editorSamples;
    Samples m_turns;
};

void Press(QPlainTextEdit& widget, int key, const char* text) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString::fromLatin1(text));
    QApplication::sendEvent(&widget, &event);
    QApplication::processEvents();
}

void OpeningAScript(benchmark::State& state) {
    Widgets widgets;
    for ([[maybe_unused]] auto _ : state) {
        widgets.Compare([&](QPlainTextEdit& widget) {
            widget.setPlainText(widgets.Script());
            QApplication::processEvents();
        });
    }
    widgets.Report(state);
}

void TypingInTheMiddle(benchmark::State& state) {
    Widgets widgets;
    widgets.PutCaret(kLines / 2 + 3);
    for ([[maybe_unused]] auto _ : state)
        widgets.Compare([](QPlainTextEdit& widget) { Press(widget, Qt::Key_A, "a"); });
    widgets.Report(state);
}

void TypingInALineOf200000Characters(benchmark::State& state) {
    Widgets widgets(MinifiedScript());
    widgets.PutCaret(0);
    for ([[maybe_unused]] auto _ : state)
        widgets.Compare([](QPlainTextEdit& widget) { Press(widget, Qt::Key_A, "a"); });
    widgets.Report(state);
}

void BreakingALineInTheMiddle(benchmark::State& state) {
    Widgets widgets;
    widgets.PutCaret(kLines / 2 + 3);
    for ([[maybe_unused]] auto _ : state)
        widgets.Compare([](QPlainTextEdit& widget) { Press(widget, Qt::Key_Return, "\r"); });
    widgets.Report(state);
}

/// Types the signs at the top, so that every line below takes another state, and takes them back.
void TypeAtTheTop(benchmark::State& state, const char* signs) {
    Widgets widgets;
    widgets.PutCaret(0);
    for ([[maybe_unused]] auto _ : state) {
        for (const char* sign = signs; *sign; ++sign) {
            const char text[] = {*sign, '\0'};
            widgets.Compare([&](QPlainTextEdit& widget) { Press(widget, *sign, text); });
        }
        for (const char* sign = signs; *sign; ++sign)
            widgets.Compare([](QPlainTextEdit& widget) { Press(widget, Qt::Key_Backspace, "\b"); });
    }
    widgets.Report(state);
}

void OpeningACommentAtTheTop(benchmark::State& state) {
    TypeAtTheTop(state, "/*");
}

void OpeningABraceAtTheTop(benchmark::State& state) {
    TypeAtTheTop(state, "{");
}

void ScrollingByPages(benchmark::State& state) {
    Widgets widgets;
    int at = 0;
    for ([[maybe_unused]] auto _ : state) {
        at = (at + 40) % (kLines - 100);
        widgets.Compare([at](QPlainTextEdit& widget) {
            widget.verticalScrollBar()->setValue(at);
            QApplication::processEvents();
        });
    }
    widgets.Report(state);
}

/// Of the plain widget the whole script is laid out anew.
void HighlightingAnew(benchmark::State& state) {
    Widgets widgets;
    bool odd = false;
    for ([[maybe_unused]] auto _ : state) {
        odd = !odd;
        widgets.Compare([&](QPlainTextEdit& widget) {
            if (widgets.IsPlain(widget))
                widget.document()->markContentsDirty(0, widget.document()->characterCount() - 1);
            else
                widgets.TheHighlighter().setColor(static_cast<int>(ScriptColor::Comment), odd ? Qt::blue : Qt::green);
            QApplication::processEvents();
        });
    }
    widgets.Report(state);
}

BENCHMARK(OpeningAScript)->Unit(benchmark::kMillisecond)->Iterations(31);
BENCHMARK(TypingInTheMiddle)->Unit(benchmark::kMillisecond)->Iterations(401);
BENCHMARK(TypingInALineOf200000Characters)->Unit(benchmark::kMillisecond)->Iterations(21);
BENCHMARK(BreakingALineInTheMiddle)->Unit(benchmark::kMillisecond)->Iterations(201);
BENCHMARK(OpeningACommentAtTheTop)->Unit(benchmark::kMillisecond)->Iterations(31);
BENCHMARK(OpeningABraceAtTheTop)->Unit(benchmark::kMillisecond)->Iterations(51);
BENCHMARK(ScrollingByPages)->Unit(benchmark::kMillisecond)->Iterations(401);
BENCHMARK(HighlightingAnew)->Unit(benchmark::kMillisecond)->Iterations(21);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
