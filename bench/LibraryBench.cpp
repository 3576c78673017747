// SPDX-License-Identifier: MIT
// The library at work: from the tab to the first painted list, from one key in the search field to
// the repainted one, and one page further down, the first two beside a plain list view over a
// filter of the same texts. Times are of the processor, the least of five runs. Ends with an error
// when a limit is missed.
#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "MemoryNoteRepository.h"
#include "NoteLibraryView.h"
#include "NoteStore.h"
#include "SystemAppearance.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <map>

using namespace Qt::Literals::StringLiterals;

namespace {

/// In milliseconds. What the user notices: a key is one frame of 60 a second, opening is three.
const std::map<std::string, double> limits{
    {"openLibrary/10000", 50}, {"searchKey/10000", 16}, {"pageKey/10000", 16},
    {"pageKey/100000", 16},    {"scroll/10000", 16},    {"scroll/100000", 16},
};

/// What a key may cost more than among a hundred notes.
const std::map<std::string, double> limitsOfWhatIsMore{
    {"searchKey/10000", 6},
    {"searchKey/100000", 60},
};

QStringList bodies(int64_t count)
{
    static const QStringList words{u"window"_s, u"idea"_s,     u"quick"_s, u"thought"_s, u"river"_s,
                                   u"lunch"_s,  u"question"_s, u"never"_s, u"draft"_s,   u"tea"_s};
    QRandomGenerator random(7);
    QStringList bodies;
    for (int64_t i = 0; i < count; ++i) {
        QString body;
        // Every other note is one line, which is read to its end to know that it has no excerpt.
        while (body.size() < 500) {
            const bool breaks = i % 2 == 0 && random.bounded(12) == 0;
            body += words[random.bounded(words.size())] + (breaks ? u'\n' : u' ');
        }
        body.truncate(500);
        bodies.append(body);
    }
    return bodies;
}

NoteSnapshot snapshot(int64_t count)
{
    NoteSnapshot snapshot;
    double time = 0;
    for (const QString &body : bodies(count))
        snapshot.notes.append({QUuid::createUuid(), body, Timestamp{time}, Timestamp{time++}});
    return snapshot;
}

struct Program {
    explicit Program(int64_t notes)
        : store(std::make_unique<MemoryNoteRepository>(snapshot(notes)))
        , environment(preferences, system)
    {
    }

    NoteLibraryView *open()
    {
        auto *library = new NoteLibraryView(store, preferences);
        environment.setContent(library);
        environment.resize(424, 440);
        environment.show();
        environment.grab();
        return library;
    }

    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    NoteStore store;
    SystemAppearance system;
    AppEnvironment environment;
};

void deleteWhatWasLeft()
{
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
}

void press(QWidget &field, Qt::Key key)
{
    const QString text = key == Qt::Key_Backspace ? QString() : QString(QChar(char16_t(key)));
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(&field, &event);
}

/// Types the letters of a frequent word one after the other, and takes them back again.
void typeAndPaint(benchmark::State &state, QWidget &view, QLineEdit &field)
{
    constexpr std::array keys{Qt::Key_T,         Qt::Key_H,         Qt::Key_O,
                              Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Backspace};
    size_t next = 0;
    for (auto _ : state) {
        press(field, keys[next]);
        benchmark::DoNotOptimize(view.grab());
        next = (next + 1) % keys.size();
    }
}

void openLibrary(benchmark::State &state)
{
    Program program(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(program.open());
        state.PauseTiming();
        deleteWhatWasLeft();
        state.ResumeTiming();
    }
}

void searchKey(benchmark::State &state)
{
    Program program(state.range(0));
    NoteLibraryView *const library = program.open();
    typeAndPaint(state, *library, *library->findChild<QLineEdit *>(u"searchNotes"_s));
}

/// One page down after the other, and up again from the end.
void pageKey(benchmark::State &state)
{
    Program program(state.range(0));
    NoteLibraryView *const library = program.open();
    auto *const list = library->findChild<QAbstractItemView *>(u"noteList"_s);
    list->setCurrentIndex(list->model()->index(0, 0));
    Qt::Key key = Qt::Key_PageDown;
    for (auto _ : state) {
        const int before = list->currentIndex().row();
        press(*list, key);
        benchmark::DoNotOptimize(library->grab());
        if (list->currentIndex().row() == before)
            key = key == Qt::Key_PageDown ? Qt::Key_PageUp : Qt::Key_PageDown;
    }
}

/// As far as one click of a wheel goes, anywhere in the list.
void scroll(benchmark::State &state)
{
    Program program(state.range(0));
    NoteLibraryView *const library = program.open();
    QScrollBar *const bar =
        library->findChild<QAbstractItemView *>(u"noteList"_s)->verticalScrollBar();
    bar->setValue(bar->maximum() / 2);
    for (auto _ : state) {
        bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        benchmark::DoNotOptimize(library->grab());
    }
}

/// A list view and a filter as they come with the toolkit: one line a note, one height for all.
void plainSearchKey(benchmark::State &state)
{
    QWidget window;
    QStringListModel notes(bodies(state.range(0)));
    QSortFilterProxyModel matches;
    matches.setSourceModel(&notes);
    matches.setFilterCaseSensitivity(Qt::CaseInsensitive);
    QLineEdit field(&window);
    QListView list(&window);
    list.setModel(&matches);
    list.setUniformItemSizes(true);
    list.setGeometry(0, 40, 424, 400);
    QObject::connect(&field, &QLineEdit::textChanged, &matches,
                     &QSortFilterProxyModel::setFilterFixedString);
    window.show();
    typeAndPaint(state, window, field);
}

void sizes(benchmark::internal::Benchmark *bench)
{
    bench->Unit(benchmark::kMillisecond)
        ->Arg(100)
        ->Arg(10'000)
        ->Arg(100'000)
        ->MinTime(0.2)
        ->Repetitions(5);
}

BENCHMARK(openLibrary)->Apply(sizes);
BENCHMARK(searchKey)->Apply(sizes);
BENCHMARK(plainSearchKey)->Apply(sizes);
BENCHMARK(pageKey)->Apply(sizes);
BENCHMARK(scroll)->Apply(sizes);

/// Keeps the least time of each measurement.
class LimitReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            const double time = run.GetAdjustedCPUTime();
            const std::string name = run.run_name.function_name + '/' +
                                     run.run_name.args.substr(0, run.run_name.args.find('/'));
            if (run.run_type == Run::RT_Iteration)
                m_least[name] = std::min(m_least.try_emplace(name, time).first->second, time);
        }
    }

    void Finalize() override
    {
        GetOutputStream() << "\nThe least of each, and what it is more than at 100 notes:\n";
        for (const auto &[name, time] : m_least) {
            const double more = time - m_least[name.substr(0, name.find('/')) + "/100"];
            GetOutputStream() << name << ": " << time << " ms, " << more << " ms more\n";
            check(limits, name, time, " took longer than ");
            check(limitsOfWhatIsMore, name, more, " took more than at 100 notes by over ");
        }
    }

    [[nodiscard]] bool isLate() const noexcept { return m_isLate; }

private:
    void check(const std::map<std::string, double> &all, const std::string &name, double time,
               const char *what)
    {
        const auto limit = all.find(name);
        if (limit == all.end() || time <= limit->second)
            return;
        GetErrorStream() << name << what << limit->second << " ms\n";
        m_isLate = true;
    }

    std::map<std::string, double> m_least;
    bool m_isLate = false;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    LimitReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.isLate() ? 1 : 0;
}
