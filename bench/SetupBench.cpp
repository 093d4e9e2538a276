#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <benchmark/benchmark.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTextBlock>
#include <QTimer>
#include <QVBoxLayout>

#include "BenchDevice.h"
#include "Measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLines = 2000;
constexpr int kRounds = 41;

/// A script of as many functions as lines.
QString LongScript() {
    QString text = QStringLiteral("({\n");
    for (int line = 2; line < kLines; ++line)
        text +=
            QStringLiteral("Function%1: function(a, b) { return a + \"text\" + b * 2; }, // what it does\n").arg(line);
    return text + QStringLiteral("})");
}

/// Looks on while a dialog comes up, and types a letter into its editor as soon as that has been painted.
class FirstLetter : public QObject {
public:
    explicit FirstLetter(Clock::time_point begin)
        : m_begin(begin) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* view = event->type() == QEvent::Paint && !m_isOver ? qobject_cast<QWidget*>(watched) : nullptr;
        auto* editor = view != nullptr ? qobject_cast<QPlainTextEdit*>(view->parentWidget()) : nullptr;
        if (editor != nullptr && view == editor->viewport() && !editor->isReadOnly())
            QTimer::singleShot(0, this, [this, editor] { GoOn(*editor); });
        return false;
    }

    double Painted() const { return m_painted; } ///< milliseconds until the script was to be seen
    double Typed() const { return m_typed; }     ///< milliseconds until the letter was to be seen

private:
    void GoOn(QPlainTextEdit& editor) {
        if (m_painted == 0) {
            m_painted = Passed();
            QApplication::postEvent(
                &editor, new QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" ")));
        } else if (!m_isOver && editor.document()->firstBlock().text().startsWith(QLatin1Char(' '))) {
            m_isOver = true;
            m_typed = Passed();
            editor.window()->close();
        }
    }
    double Passed() const { return std::chrono::duration<double, std::milli>(Clock::now() - m_begin).count(); }

    const Clock::time_point m_begin;
    double m_painted = 0;
    double m_typed = 0;
    bool m_isOver = false;
};

void OpenPlain(const QString& text) {
    QDialog dialog;
    auto* editor = new QPlainTextEdit;
    (new QVBoxLayout(&dialog))->addWidget(editor);
    dialog.resize(900, 700);
    editor->setPlainText(text);
    dialog.exec();
}

template <typename Part>
Part& Find(const char* name) {
    auto* part = QApplication::activeModalWidget()->findChild<Part*>(QLatin1String(name));
    if (part == nullptr)
        std::abort();
    return *part;
}

/// Gives the device the script through its dialog, with the editor's tab in front.
void Prepare(IKXPDevice& device, const QString& text) {
    QTimer::singleShot(0, [&text] {
        Find<QAbstractButton>("checkBoxProgrammingMode").click();
        Find<QPlainTextEdit>("plainTextEditScript").setPlainText(text);
        Find<QTabWidget>("tabWidget").setCurrentIndex(1);
        Find<QAbstractButton>("pushButtonOk").click();
    });
    if (device.ShowSetup(nullptr) != KXP_OK)
        std::abort();
}

/// The dialog beside an empty one with a plain editor, in turn: medians of each until it is painted and until it takes
/// a letter, and of their ratios.
std::vector<double> MeasureOpening() {
    const QString text = LongScript();
    BenchDevice device("({})");
    Prepare(device.Device(), text);
    std::vector<double> numbers[6];
    const std::function<void()> openings[] = {[&] { OpenPlain(text); }, [&] { device.Device().ShowSetup(nullptr); }};
    for (int round = 0; round < kRounds; ++round) {
        double times[2][2] = {};
        for (int which = 0; which < 2; ++which) {
            FirstLetter letter(Clock::now());
            openings[which]();
            times[which][0] = letter.Painted();
            times[which][1] = letter.Typed();
        }
        for (int what = 0; what < 2; ++what) {
            numbers[what * 3].push_back(times[0][what]);
            numbers[what * 3 + 1].push_back(times[1][what]);
            numbers[what * 3 + 2].push_back(times[1][what] / times[0][what]);
        }
    }
    std::vector<double> medians;
    for (std::vector<double>& samples : numbers)
        medians.push_back(Median(samples));
    return medians;
}

const bool kAdded = [] {
    AddMeasurement("setup", &MeasureOpening);
    return true;
}();

/// From the call to a letter typed into the script of 2,000 lines.
void OpeningTheSetup(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("setup");
        state.counters["plain_painted_ms"] = n.at(0);
        state.counters["setup_painted_ms"] = n.at(1);
        state.counters["ratio_painted"] = n.at(2);
        state.counters["plain_typed_ms"] = n.at(3);
        state.counters["setup_typed_ms"] = n.at(4);
        state.counters["ratio_typed"] = n.at(5);
    }
}
BENCHMARK(OpeningTheSetup)->Iterations(1)->Repetitions(5)->Unit(benchmark::kMillisecond);

} // namespace
