// SPDX-License-Identifier: MIT
// The library at work: from the tab to the first painted list, and from one key in the search field
// to the repainted one, each beside a plain list view over a filter of the same texts. Ends with an
// error when 10,000 notes take longer than the limits.
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
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <benchmark/benchmark.h>
#include <map>

using namespace Qt::Literals::StringLiterals;

namespace {

/// What the user notices: a key is one frame of 60 a second, opening is three.
const std::map<std::string, double> limitsInMilliseconds{
    {"openLibrary/10000", 50},
    {"searchKey/10000", 16},
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
    bench->Unit(benchmark::kMillisecond)->Arg(1'000)->Arg(10'000)->Arg(100'000);
}

BENCHMARK(openLibrary)->Apply(sizes);
BENCHMARK(searchKey)->Apply(sizes);
BENCHMARK(plainSearchKey)->Unit(benchmark::kMillisecond)->Arg(10'000);

class LimitReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            const auto limit = limitsInMilliseconds.find(run.benchmark_name());
            if (limit == limitsInMilliseconds.end() || run.GetAdjustedRealTime() <= limit->second)
                continue;
            GetErrorStream() << limit->first << " took longer than " << limit->second << " ms\n";
            m_isLate = true;
        }
    }

    [[nodiscard]] bool isLate() const noexcept { return m_isLate; }

private:
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
