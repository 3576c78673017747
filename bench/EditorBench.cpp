// SPDX-License-Identifier: MIT
// What a long text costs in the text area of the editor, painted, beside a QPlainTextEdit with the
// same text and font, in the same run: to open it, one key in its middle and at its end, and to
// paste it; and for how long the window answers nothing meanwhile. Ends with an error when that is
// more than its limit.
//   EditorBench            every text
//   EditorBench NAME…      those texts alone, without limits
#include "AppPreferences.h"
#include "NoteTextEditor.h"
#include "TextStyle.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double none = std::numeric_limits<double>::infinity();

/// In milliseconds; of a key the processor's time, else until it is painted.
struct Limits {
    double key = none;
    double open = none;
    double silence = none;
};

struct Text {
    const char *name;
    std::function<QString()> make;
    Limits limits;

    /// The plain field takes minutes for it.
    bool isForQuillmarkAlone = false;
};

QString lines(qsizetype size)
{
    const QString line = u"All work and no play makes a long note, and another one.\n"_s;
    return line.repeated(size / line.size() + 1).first(size);
}

QString paragraph(qsizetype size)
{
    const QString words = u"All work and no play makes a long note, and another one. "_s;
    return words.repeated(size / words.size() + 1).first(size);
}

std::vector<Text> texts()
{
    const Limits ofLines{.key = 16, .open = 2000, .silence = 250};
    return {
        {"lines-1k", [] { return lines(1000); }, ofLines},
        {"lines-10k", [] { return lines(10'000); }, ofLines},
        {"lines-100k", [] { return lines(100'000); }, ofLines},
        {"lines-1M", [] { return lines(1'000'000); }, ofLines},
        {"lines-5M", [] { return lines(5'000'000); }, ofLines},
        {"lines-16M", [] { return lines(16'000'000); }, ofLines},
        {"empty-1M", [] { return u"\n"_s.repeated(999'999); }, ofLines},
        {"short-1M", [] { return u"fifteen letters\n"_s.repeated(999'999); }, ofLines},
        {"paragraph-1k", [] { return paragraph(1000); }, {}},
        {"paragraph-10k", [] { return paragraph(10'000); }, {}},
        {"paragraph-100k", [] { return paragraph(100'000); }, {.key = 100}},
        {"paragraph-1M", [] { return paragraph(1'000'000); }, {.key = 100}},
        {"arabic-1M",
         [] { return u"السلام عليكم ورحمة الله وبركاته. "_s.repeated(30'304); },
         {.key = 100}},
        {"chinese-1M",
         [] { return u"骨架与门，想法来了就记下。"_s.repeated(76'923); },
         {.key = 100}},
        {"word-1M", [] { return QString(1'000'000, u'x'); }, {.key = 100}, true},
        {"marks-50k", [] { return u"a"_s + QString(50'000, QChar(0x301)); }, {.key = 100}},
    };
}

double processorMilliseconds()
{
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void letEverythingHappen()
{
    for (int i = 0; i < 3; ++i)
        QApplication::processEvents();
}

template <class Field>
double costOfKey(Field &field, int position)
{
    QTextCursor cursor = field.textCursor();
    cursor.setPosition(position);
    field.setTextCursor(cursor);
    letEverythingHappen();
    std::vector<double> times;
    const double begin = processorMilliseconds();
    for (int key = 0; key < 21; ++key) {
        const double before = processorMilliseconds();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier,
                        key % 6 == 5 ? u" "_s : u"a"_s);
        QApplication::sendEvent(&field, &press);
        letEverythingHappen();
        times.push_back(processorMilliseconds() - before);
        if (key >= 2 && processorMilliseconds() - begin > 5000)
            break;
    }
    return median(times);
}

struct Cost {
    double open = 0;
    double openSilence = 0;
    double middle = 0;
    double end = 0;
    double paste = 0;
    double pasteSilence = 0;
};

/// Until it is done; the second is the longest time that no timer was heard.
template <class Begin, class IsDone>
std::pair<double, double> timeOf(Begin begin, IsDone isDone)
{
    QElapsedTimer time;
    time.start();
    double last = 0;
    double longest = 0;
    const auto now = [&time] { return static_cast<double>(time.nsecsElapsed()) / 1e6; };
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        longest = std::max(longest, now() - last);
        last = now();
    });
    tick.start(0);
    begin();
    while (!isDone())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    letEverythingHappen();
    const double all = now();
    return {all, std::max(longest, all - last)};
}

Cost costInEditor(const QString &text)
{
    const AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::light);
    QWidget window;
    Cost cost;
    {
        NoteTextEditor editor(preferences, u"Nothing"_s, &window);
        editor.resize(372, 300);
        window.resize(400, 320);
        window.show();
        letEverythingHappen();
        std::tie(cost.open, cost.openSilence) =
            timeOf([&] { editor.setNoteText(text); },
                   [&] { return editor.document()->characterCount() > text.size(); });
        cost.end = costOfKey(editor, static_cast<int>(text.size()));
        cost.middle = costOfKey(editor, static_cast<int>(text.size() / 2));
    }
    NoteTextEditor editor(preferences, u"Nothing"_s, &window);
    editor.resize(372, 300);
    editor.show();
    letEverythingHappen();
    QGuiApplication::clipboard()->setText(text);
    std::tie(cost.paste, cost.pasteSilence) = timeOf(
        [&] { editor.paste(); }, [&] { return editor.document()->characterCount() > text.size(); });
    return cost;
}

Cost costInPlainField(const QString &text)
{
    QWidget window;
    QPlainTextEdit field(&window);
    field.setFont(TextStyles::editor.font());
    field.resize(372, 300);
    window.resize(400, 320);
    window.show();
    letEverythingHappen();
    Cost cost;
    std::tie(cost.open, cost.openSilence) =
        timeOf([&] { field.setPlainText(text); }, [] { return true; });
    cost.end = costOfKey(field, static_cast<int>(text.size()));
    cost.middle = costOfKey(field, static_cast<int>(text.size() / 2));
    field.clear();
    QGuiApplication::clipboard()->setText(text);
    std::tie(cost.paste, cost.pasteSilence) = timeOf([&] { field.paste(); }, [] { return true; });
    return cost;
}

void print(const char *name, const char *where, const Cost &cost)
{
    std::printf("%-15s %-9s open %8.1f ms (silent %7.1f)  key in the middle %8.2f  at the end %8.2f"
                "  paste %8.1f (silent %7.1f)\n",
                name, where, cost.open, cost.openSilence, cost.middle, cost.end, cost.paste,
                cost.pasteSilence);
    std::fflush(stdout);
}

bool isWithin(const char *name, const char *what, double cost, double limit)
{
    if (cost > limit)
        std::fprintf(stderr, "%s: %s takes %.1f ms, the limit is %.0f\n", name, what, cost, limit);
    return cost <= limit;
}

bool isWithin(const Text &text, const Cost &cost)
{
    bool isCheap = isWithin(text.name, "a key", std::max(cost.middle, cost.end), text.limits.key);
    isCheap &= isWithin(text.name, "opening", cost.open, text.limits.open);
    isCheap &= isWithin(text.name, "pasting", cost.paste, text.limits.open);
    isCheap &= isWithin(text.name, "silence", std::max(cost.openSilence, cost.pasteSilence),
                        text.limits.silence);
    return isCheap;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList wanted = QApplication::arguments().mid(1);
    bool isCheap = true;
    for (const Text &one : texts()) {
        if (!wanted.isEmpty() && !wanted.contains(QString::fromLatin1(one.name)))
            continue;
        const QString text = one.make();
        const Cost cost = costInEditor(text);
        print(one.name, "Quillmark", cost);
        if (!one.isForQuillmarkAlone)
            print(one.name, "plain", costInPlainField(text));
        isCheap &= !wanted.isEmpty() || isWithin(one, cost);
    }
    return isCheap ? EXIT_SUCCESS : EXIT_FAILURE;
}
