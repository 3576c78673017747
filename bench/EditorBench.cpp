// SPDX-License-Identifier: MIT
// What a long text costs in the text area of the editor, painted, beside a QPlainTextEdit with the
// same text and font, in the same run: one key in its middle and at its end; to open it and to
// paste it, until its end is seen and until all of it is in the document, how soon a letter is seen
// that is typed meanwhile, and for how long the window answers nothing. Ends with an error when
// that is more than its limit.
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
    double seen = none;
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
    const Limits ofLines{.key = 16, .seen = 2000, .silence = 250};
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

/// In milliseconds.
struct Arrival {
    double seen = 0;    ///< Until its end is painted.
    double whole = 0;   ///< Until all of it is in the document.
    double silence = 0; ///< The longest time in which no timer was heard.
    double key = 0;     ///< From a key to its painted letter meanwhile, the median.
};

struct Cost {
    Arrival open;
    double middle = 0;
    double end = 0;
    Arrival paste;
};

/// Hears of what is painted.
class Paint final : public QObject {
public:
    explicit Paint(QWidget *widget) { widget->installEventFilter(this); }

    /// Lets things happen until it was painted.
    void wait()
    {
        m_wasPainted = false;
        while (!m_wasPainted)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    bool eventFilter(QObject * /*object*/, QEvent *event) override
    {
        m_wasPainted = m_wasPainted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_wasPainted = false;
};

/// Of a text that begin() brings. Somebody types behind it until all of it is there.
template <class Field, class Begin>
Arrival arrivalOf(Field &field, qsizetype size, Begin begin)
{
    Paint paint(field.viewport());
    QElapsedTimer time;
    time.start();
    const auto now = [&time] { return static_cast<double>(time.nsecsElapsed()) / 1e6; };
    double last = 0;
    Arrival arrival;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        arrival.silence = std::max(arrival.silence, now() - last);
        last = now();
    });
    tick.start(0);
    begin();
    paint.wait();
    arrival.seen = now();
    std::vector<double> keys;
    while (field.document()->characterCount() <= size + static_cast<qsizetype>(keys.size())) {
        const double pressed = now();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, u"a"_s);
        QApplication::sendEvent(&field, &press);
        paint.wait();
        keys.push_back(now() - pressed);
    }
    arrival.whole = now();
    arrival.key = keys.empty() ? 0 : median(keys);
    arrival.silence = std::max(arrival.silence, arrival.whole - last);
    return arrival;
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
        cost.open = arrivalOf(editor, text.size(), [&] { editor.setNoteText(text); });
        cost.end = costOfKey(editor, static_cast<int>(text.size()));
        cost.middle = costOfKey(editor, static_cast<int>(text.size() / 2));
    }
    NoteTextEditor editor(preferences, u"Nothing"_s, &window);
    editor.resize(372, 300);
    editor.show();
    letEverythingHappen();
    QGuiApplication::clipboard()->setText(text);
    cost.paste = arrivalOf(editor, text.size(), [&] { editor.paste(); });
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
    cost.open = arrivalOf(field, text.size(), [&] { field.setPlainText(text); });
    cost.end = costOfKey(field, static_cast<int>(text.size()));
    cost.middle = costOfKey(field, static_cast<int>(text.size() / 2));
    field.clear();
    QGuiApplication::clipboard()->setText(text);
    cost.paste = arrivalOf(field, text.size(), [&] { field.paste(); });
    return cost;
}

void print(const char *what, const Arrival &arrival)
{
    std::printf("  %s seen %8.1f ms, whole %8.1f (silent %7.1f, a key %6.2f)", what, arrival.seen,
                arrival.whole, arrival.silence, arrival.key);
}

void print(const char *name, const char *where, const Cost &cost)
{
    std::printf("%-15s %-9s", name, where);
    print("open", cost.open);
    std::printf("  key in the middle %8.2f  at the end %8.2f", cost.middle, cost.end);
    print("paste", cost.paste);
    std::printf("\n");
    std::fflush(stdout);
}

bool isWithin(const char *name, const char *what, double cost, double limit)
{
    if (cost > limit)
        std::fprintf(stderr, "%s: %s takes %.1f ms, the limit is %.0f\n", name, what, cost, limit);
    return cost <= limit;
}

bool isWithin(const Text &text, const char *what, const Arrival &arrival)
{
    bool isCheap = isWithin(text.name, what, arrival.seen, text.limits.seen);
    isCheap &= isWithin(text.name, "a key meanwhile", arrival.key, text.limits.silence);
    isCheap &= isWithin(text.name, "silence", arrival.silence, text.limits.silence);
    return isCheap;
}

bool isWithin(const Text &text, const Cost &cost)
{
    bool isCheap = isWithin(text.name, "a key", std::max(cost.middle, cost.end), text.limits.key);
    isCheap &= isWithin(text, "opening", cost.open);
    isCheap &= isWithin(text, "pasting", cost.paste);
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
