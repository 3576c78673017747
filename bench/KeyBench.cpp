// SPDX-License-Identifier: MIT
// What one key in a new thought costs and sets going, in the whole editor, painted, beside a plain
// text field with a label that counts the characters: processor time, the median of two hundred
// keys; how often memory is taken, and how much; how many texts of the program are looked up, dates
// written, and widgets painted. Ends with an error when that is more than its budget.
#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "CountedCalls.h"
#include "MemoryNoteRepository.h"
#include "NoteStore.h"
#include "NoteTextEditor.h"
#include "NoteWorkspaceView.h"
#include "SystemAppearance.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {

long taken = 0;
long takenBytes = 0;

constexpr int keys = 200;

/// Of one key.
constexpr double mostTexts = 1.05;
constexpr double mostDates = 0;
constexpr double mostPaints = 8; ///< What lies below a letter, too: the surfaces are translucent.
constexpr double mostMoreMemory = 3; ///< Times what the plain field takes.

/// That a key takes more in a text of 5 MB than in an empty one, a copy of whose text would be ten
/// millions.
constexpr double mostMoreBytes = 100'000;

} // namespace

// Of the C library, which the program takes memory from.
extern "C" void *__libc_malloc(std::size_t size);
extern "C" void *malloc(std::size_t size)
{
    ++taken;
    takenBytes += static_cast<long>(size);
    return __libc_malloc(size);
}

namespace {

double processorMilliseconds()
{
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

struct Cost {
    double milliseconds = 0;
    double memory = 0;
    double bytes = 0;
    double texts = 0;
    double dates = 0;
    double paints = 0;
};

/// Of widgets, how often they were painted.
class Paints final : public QObject {
public:
    bool eventFilter(QObject * /*object*/, QEvent *event) override
    {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    [[nodiscard]] long take() noexcept { return std::exchange(m_count, 0); }

private:
    long m_count = 0;
};

/// Types letters, with a space after every fifth, and lets each be painted.
Cost type(QWidget &field)
{
    std::vector<double> times;
    times.reserve(keys);
    long takenBefore = 0;
    long bytesBefore = 0;
    Paints paints;
    qApp->installEventFilter(&paints);
    for (int key = -20; key < keys; ++key) {
        if (key == 0) {
            static_cast<void>(CountedCalls::take());
            static_cast<void>(paints.take());
            takenBefore = taken;
            bytesBefore = takenBytes;
        }
        const double before = processorMilliseconds();
        const QString letter = key % 6 == 5 ? u" "_s : QString(QChar(u'a' + (key + 20) % 26));
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, letter);
        QApplication::sendEvent(&field, &press);
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        if (key >= 0)
            times.push_back(processorMilliseconds() - before);
    }
    const long takenAfter = taken;
    const long bytesAfter = takenBytes;
    const CountedCalls::Counts counts = CountedCalls::take();
    const auto perKey = [](auto count) { return static_cast<double>(count) / keys; };
    std::ranges::nth_element(times, times.begin() + keys / 2);
    return {times[keys / 2],
            perKey(takenAfter - takenBefore),
            perKey(bytesAfter - bytesBefore),
            perKey(counts.texts.size()),
            perKey(counts.dates),
            perKey(paints.take())};
}

void print(const char *what, const Cost &cost)
{
    std::printf("%-28s %6.2f ms  memory taken %6.1f times, %8.0f bytes  texts %5.2f  dates %4.2f  "
                "widgets painted %5.2f\n",
                what, cost.milliseconds, cost.memory, cost.bytes, cost.texts, cost.dates,
                cost.paints);
}

Cost typeInQuillmark(int notes, const QString &draft = {})
{
    NoteSnapshot snapshot;
    snapshot.captureDraft = draft;
    for (int i = 0; i < notes; ++i)
        snapshot.notes.append(
            {QUuid::createUuid(), u"note %1\nmore"_s.arg(i), {}, Timestamp{double(i)}});
    AppPreferences preferences(nullptr, AppLanguage::system, AppAppearance::light);
    NoteStore store(std::make_unique<MemoryNoteRepository>(std::move(snapshot)));
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *view = new NoteWorkspaceView(store, preferences);
    environment.setContent(view);
    environment.show();
    QApplication::processEvents();
    auto *const editor = view->findChild<NoteTextEditor *>(u"noteEditor"_s);
    while (editor->document()->characterCount() <= draft.size())
        QApplication::processEvents();
    return type(*editor);
}

Cost typeInPlainField()
{
    QWidget window;
    auto *const field = new QPlainTextEdit(&window);
    auto *const count = new QLabel(&window);
    auto *const column = new QVBoxLayout(&window);
    column->addWidget(field);
    column->addWidget(count);
    QObject::connect(field, &QPlainTextEdit::textChanged, count, [field, count] {
        count->setText(u"%1 characters"_s.arg(field->toPlainText().size()));
    });
    window.resize(424, 560);
    window.show();
    QApplication::processEvents();
    return type(*field);
}

bool isWithin(const char *what, double cost, double limit)
{
    if (cost > limit)
        std::fprintf(stderr, "%s: %.2f for each key, the limit is %.2f\n", what, cost, limit);
    return cost <= limit;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    bool isCheap = true;
    const Cost plain = typeInPlainField();
    print("plain field", plain);
    for (const int notes : {100, 10'000, 100'000}) {
        const Cost cost = typeInQuillmark(notes);
        print(qPrintable(u"new thought, %1 notes"_s.arg(notes)), cost);
        isCheap &= isWithin("texts", cost.texts, mostTexts);
        isCheap &= isWithin("dates", cost.dates, mostDates);
        isCheap &= isWithin("widgets painted", cost.paints, mostPaints);
        isCheap &= isWithin("memory", cost.memory, mostMoreMemory * plain.memory);
    }
    const Cost inNothing = typeInQuillmark(100);
    const Cost inLines = typeInQuillmark(
        100, u"All work and no play makes a long note, and another one.\n"_s.repeated(87'720));
    print("in a text of 5 MB", inLines);
    isCheap &= isWithin("bytes", inLines.bytes, inNothing.bytes + mostMoreBytes);
    return isCheap ? EXIT_SUCCESS : EXIT_FAILURE;
}
