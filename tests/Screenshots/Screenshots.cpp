// SPDX-License-Identifier: MIT
#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "FailingRepository.h"
#include "FakeScreens.h"
#include "FileError.h"
#include "LauncherView.h"
#include "Metrics.h"
#include "NoteId.h"
#include "NoteStore.h"
#include "NoteWorkspaceView.h"
#include "RepositoryError.h"
#include "SystemAppearance.h"
#include "Views.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QLinearGradient>
#include <QMenu>
#include <QPainter>
#include <QTextStream>
#include <QTimer>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;

/// Draws every screen of the panel in every state, in the scale that QT_SCALE_FACTOR asks for, once
/// for each language and colour scheme, over a wallpaper:
///
///     Screenshots FOLDER [PART-OF-A-NAME]
///     Screenshots --sheets FOLDER
///
/// The pictures are named SCREEN-LANGUAGE-SCHEME@SCALEx.png, or all of a language and a scheme are
/// put together on one sheet, all-LANGUAGE-SCHEME.png.
namespace {

constexpr int wallpaperMargin = 32;

Note noteOf(const QString &body, const QString &time)
{
    const Timestamp at = Timestamp::fromIso8601(time).value();
    return {QUuid::createUuid(), body, at, at};
}

NoteSnapshot sevenNotes(AppLanguage language)
{
    NoteSnapshot snapshot;
    if (language == AppLanguage::chinese) {
        snapshot.notes = {
            noteOf(u"周末给妈妈打电话\n问问她的膝盖好些了没有，顺便说一下国庆回家的事。"_s,
                   u"2025-11-19T09:12:00.000Z"_s),
            noteOf(u"读书笔记：清晰胜过聪明"_s, u"2025-11-18T21:40:00.000Z"_s),
            noteOf(u"一个想法：把搜索做成一个键\n不用鼠标，输入两个字就能找到。"
                   "如果能记住上次的位置就更好了，这样可以接着往下看。"_s,
                   u"2025-11-17T18:05:00.000Z"_s),
            noteOf(u"牛奶、面包、鸡蛋"_s, u"2025-11-16T07:30:00.000Z"_s),
            noteOf(u"\n\n"_s, u"2025-11-15T07:30:00.000Z"_s),
            noteOf(u"给 Lin 回信\n附上上周的草图。"_s, u"2025-11-12T12:00:00.000Z"_s),
            noteOf(u"十点开会"_s, u"2025-11-11T01:00:00.000Z"_s),
        };
    } else {
        snapshot.notes = {
            noteOf(
                u"Call mum about the weekend\nAsk how her knee is, and tell her about the train."_s,
                u"2025-11-19T09:12:00.000Z"_s),
            noteOf(u"“Clear is better than clever.”"_s, u"2025-11-18T21:40:00.000Z"_s),
            noteOf(
                u"Idea: one key for the search, and the list stays where it was when I come back\n"
                "No mouse. Two letters and it is there. It would be even better if it remembered "
                "the place, so that one can read on."_s,
                u"2025-11-17T18:05:00.000Z"_s),
            noteOf(u"Milk, bread, eggs"_s, u"2025-11-16T07:30:00.000Z"_s),
            noteOf(u"\n\n"_s, u"2025-11-15T07:30:00.000Z"_s),
            noteOf(u"Write back to Lin\nwith last week’s sketches"_s,
                   u"2025-11-12T12:00:00.000Z"_s),
            noteOf(u"Stand-up at ten"_s, u"2025-11-11T01:00:00.000Z"_s),
        };
    }
    snapshot.editingDrafts[canonicalText(snapshot.notes[1].id)] = u"draft"_s;
    return snapshot;
}

NoteSnapshot manyNotes(AppLanguage language)
{
    const NoteSnapshot few = sevenNotes(language);
    NoteSnapshot many = few;
    while (many.notes.size() < 120) {
        Note note = few.notes[many.notes.size() % few.notes.size()];
        note.id = QUuid::createUuid();
        note.updatedAt.secondsSince2001 -= 86'400.0 * double(many.notes.size());
        many.notes.append(note);
    }
    return many;
}

/// The same in every language: scripts of both directions, and emoji of several characters.
NoteSnapshot manyScripts(AppLanguage)
{
    NoteSnapshot snapshot;
    snapshot.notes = {
        noteOf(
            u"לקנות חלב, לחם ו-12 ביצים.\nשלום English בתוך משפט\nشراء الحليب والخبز\n"
            "Then on in English, 骨直 and 👩🏻‍💻 👨‍👩‍👧‍👦 🇩🇪 1️⃣ ❤️‍🔥."_s,
            u"2025-11-19T09:12:00.000Z"_s),
        noteOf(u"اشترِ الحليب (2)!\nلا تنسَ الخبز."_s, u"2025-11-18T21:40:00.000Z"_s),
        noteOf(u"直骨角 Chinese in the middle 今令\n想到就记下来，然后回到刚才的事情上。"_s,
               u"2025-11-17T18:05:00.000Z"_s),
        noteOf(
            u"👩🏻‍💻 👨‍👩‍👧‍👦 🇩🇪 ❤️ 1️⃣ #️⃣ ❤️‍🔥 👍🏽 😀\n☕ at ten, ✔ done"_s,
            u"2025-11-18T22:30:00.000Z"_s),
    };
    return snapshot;
}

QString thought(AppLanguage language)
{
    return language == AppLanguage::chinese
               ? u"泡泡在那里，念头就不会丢。\n三秒钟写下来，然后回到刚才的事情上。"_s
               : u"The bubble was there when the thought came.\nThree seconds, and back to work."_s;
}

FileError noSpace()
{
    return {"/home/ada/.local/share/Penwick/Markdown", ENOSPC};
}

FileError noAccessToALongPath()
{
    return {"/media/ada/A removable disk with a long name/Backups/2025/AFolderWhoseNameHasNoPlaceTo"
            "BreakItAtAllAndGoesOn/Penwick/Markdown",
            EACCES};
}

/// One picture's panel: the whole program above the files, without a window manager.
struct Stage {
    Stage(AppLanguage language, AppAppearance appearance, NoteSnapshot snapshot,
          const std::function<void(FailingRepository &)> &prepare)
        : repository(new FailingRepository(std::move(snapshot)))
        , preferences(nullptr, language, appearance)
        , store([&] {
            if (prepare)
                prepare(*repository);
            return std::unique_ptr<NoteRepository>(repository);
        }())
        , environment(preferences, system)
        , workspace(new NoteWorkspaceView(store, preferences))
    {
        environment.setAttribute(Qt::WA_TranslucentBackground);
        environment.setContent(workspace);
        environment.resize(workspace->size());
        environment.show();
        QApplication::setActiveWindow(&environment);
    }

    void click(const char *name) { Views::click(environment, name); }

    QAbstractItemView *list() { return Views::find<QAbstractItemView>(environment, "noteList"); }

    void openNote(int row)
    {
        click("libraryTab");
        QApplication::processEvents();
        const QPoint place = list()->visualRect(list()->model()->index(row, 0)).center();
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
    }

    void search(const QString &text)
    {
        click("libraryTab");
        Views::find<QLineEdit>(environment, "searchNotes")->setText(text);
    }

    FailingRepository *repository;
    AppPreferences preferences;
    NoteStore store;
    SystemAppearance system;
    AppEnvironment environment;
    NoteWorkspaceView *workspace;
};

struct Scene {
    QString name;
    std::function<NoteSnapshot(AppLanguage)> notes;
    std::function<void(Stage &)> act;
    /// Before the store reads its notes.
    std::function<void(FailingRepository &)> prepare;
};

NoteSnapshot nothing(AppLanguage)
{
    return {};
}

NoteSnapshot withDraft(AppLanguage language)
{
    NoteSnapshot snapshot = sevenNotes(language);
    snapshot.captureDraft = thought(language);
    return snapshot;
}

/// What a synchronising program left beside the notes.
void leaveCopies(FailingRepository &repository)
{
    using Step = TakeInPlan::Step;
    const std::filesystem::path notes("/home/ada/.local/share/Penwick/Markdown/Notes");
    const std::string id("8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F");
    const Message byEngine{u"A conflict copy of a note, by %@."_s, {u"Syncthing"_s}};
    TakeInPlan plan;
    plan.originals = "/home/ada/.local/state/Penwick";
    plan.steps = {Step{Step::Outcome::note,
                       notes / (id + ".sync-conflict-20250301-081530-ABCDEFG.md"),
                       u"Call mum about the weekend"_s,
                       byEngine,
                       {u"It becomes a note of its own."_s, {}}},
                  Step{Step::Outcome::note,
                       notes / ".." / "Drafts" / (id + ".md"),
                       u"想到就记下来"_s,
                       {u"It is a draft of a note that is not there."_s, {}},
                       {u"It becomes a note of its own."_s, {}}},
                  Step{Step::Outcome::putAway,
                       notes / "picture.md",
                       {},
                       {u"Its header is not that of a note."_s, {}},
                       {u"It is no text. It is put away."_s, {}}},
                  Step{Step::Outcome::note,
                       notes / ".quillmark-recovery-1",
                       u"Milk, bread, eggs"_s,
                       {u"A recovery copy that another computer made."_s, {}},
                       {u"Texts that only it has become notes: %d."_s, {qint64{3}}}}};
    repository.putBeside(plan, {});
    repository.failToRead(RepositoryError::invalidMarkdown().about(plan.steps[0].file));
}

QList<Scene> scenes()
{
    const auto openLibrary = [](Stage &stage) { stage.click("libraryTab"); };
    const auto failWith = [](auto error) {
        return [error](Stage &stage) {
            stage.repository->failWith(error);
            stage.store.flush();
        };
    };
    return {
        {u"capture-empty"_s, nothing, {}, {}},
        {u"capture-full"_s, withDraft, {}, {}},
        {u"capture-long"_s,
         nothing,
         [](Stage &stage) {
             stage.store.setDraft((thought(stage.preferences.language()) + u"\n\n"_s).repeated(9));
         },
         {}},
        {u"capture-tab-focus"_s,
         withDraft,
         [](Stage &stage) { QTest::keyClick(stage.environment.focusWidget(), Qt::Key_Tab); },
         {}},
        {u"library-empty"_s, nothing, openLibrary, {}},
        {u"library-scripts"_s, manyScripts, openLibrary, {}},
        {u"edit-scripts"_s, manyScripts, [](Stage &stage) { stage.openNote(0); }, {}},
        {u"library-unread"_s, nothing, openLibrary,
         [](FailingRepository &repository) {
             repository.failWith(RepositoryError::unsupportedVersion(3));
         }},
        {u"library-7"_s, sevenNotes, openLibrary, {}},
        {u"library-120"_s, manyNotes, openLibrary, {}},
        {u"library-keyboard"_s,
         sevenNotes,
         [](Stage &stage) {
             stage.click("libraryTab");
             QTest::keyClick(stage.environment.focusWidget(), Qt::Key_Down);
             QTest::keyClick(stage.environment.focusWidget(), Qt::Key_Down);
         },
         {}},
        {u"library-hover"_s,
         sevenNotes,
         [](Stage &stage) {
             stage.click("libraryTab");
             QApplication::processEvents();
             QWidget *const rows = stage.list()->viewport();
             const QPointF place =
                 stage.list()->visualRect(stage.list()->model()->index(2, 0)).center();
             QHoverEvent hover(QEvent::HoverMove, place, rows->mapToGlobal(place), place);
             QApplication::sendEvent(rows, &hover);
         },
         {}},
        {u"library-search"_s,
         manyNotes,
         [](Stage &stage) {
             stage.search(stage.preferences.language() == AppLanguage::chinese ? u"膝盖"_s
                                                                               : u"knee"_s);
         },
         {}},
        {u"library-search-scripts"_s,
         manyScripts,
         [](Stage &stage) { stage.search(u"חלב"_s); },
         {}},
        {u"library-no-match"_s, sevenNotes, [](Stage &stage) { stage.search(u"xyz"_s); }, {}},
        {u"edit"_s, sevenNotes, [](Stage &stage) { stage.openNote(2); }, {}},
        {u"edit-copied"_s,
         sevenNotes,
         [](Stage &stage) {
             stage.openNote(0);
             stage.click("copyText");
         },
         {}},
        {u"delete-alert"_s,
         sevenNotes,
         [](Stage &stage) {
             stage.openNote(2);
             stage.click("deleteNote");
         },
         {}},
        {u"banner"_s, withDraft, failWith(noSpace()), {}},
        {u"banner-other-program"_s, withDraft, failWith(RepositoryError::externalChange()), {}},
        {u"banner-long-path"_s, withDraft, failWith(noAccessToALongPath()), {}},
        {u"banner-edit"_s,
         sevenNotes,
         [failWith](Stage &stage) {
             stage.openNote(2);
             failWith(noAccessToALongPath())(stage);
         },
         {}},
        {u"banner-library"_s,
         sevenNotes,
         [failWith](Stage &stage) {
             stage.click("libraryTab");
             failWith(RepositoryError::externalChange())(stage);
         },
         {}},
        {u"take-in-banner"_s, withDraft, {}, leaveCopies},
        {u"take-in-plan"_s, withDraft, [](Stage &stage) { stage.click("takeIn"); }, leaveCopies},
        {u"read-only"_s,
         withDraft,
         {},
         [](FailingRepository &repository) {
             repository.failWith(RepositoryError::unsupportedVersion(3));
         }},
        {u"menu"_s,
         withDraft,
         [](Stage &stage) {
             auto *const menu = stage.environment.findChild<QMenu *>(u"preferencesMenuItems"_s);
             auto *const button = Views::find(stage.environment, "preferencesMenu");
             menu->popup(button->mapToGlobal(QPoint(0, button->height())));
             auto *const languages = menu->findChild<QMenu *>(u"languageMenu"_s);
             menu->setActiveAction(languages->menuAction());
             languages->popup(menu->mapToGlobal(menu->rect().topRight()));
         },
         {}},
    };
}

QImage wallpaper(const QSize &size, double scale, AppAppearance appearance)
{
    QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    QLinearGradient sky(0, 0, size.width(), size.height());
    const bool isDark = appearance == AppAppearance::dark;
    sky.setColorAt(0, isDark ? QColor(0x1c, 0x24, 0x33) : QColor(0x8f, 0xb5, 0xcf));
    sky.setColorAt(1, isDark ? QColor(0x4a, 0x37, 0x30) : QColor(0xe8, 0xc9, 0xa6));
    QPainter(&image).fillRect(QRect(QPoint(), size), sky);
    return image;
}

/// What is on screen: the panel, and the menus that are open over it.
QImage picture(QWidget &panel, AppAppearance appearance)
{
    const QMargins around(wallpaperMargin, wallpaperMargin, wallpaperMargin, wallpaperMargin);
    QRect whole(panel.mapToGlobal(QPoint()), panel.size());
    QWidgetList windows{&panel};
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window != &panel && window->isVisible()) {
            windows.append(window);
            whole |= window->geometry();
        }
    }
    whole = whole.marginsAdded(around);
    QImage image = wallpaper(whole.size(), panel.devicePixelRatioF(), appearance);
    QPainter painter(&image);
    for (QWidget *const window : windows)
        painter.drawPixmap(window->mapToGlobal(QPoint()) - whole.topLeft(), window->grab());
    return image;
}

void settle()
{
    // The screens that were left, and layouts that wait for the next turn of the loop.
    for (int i = 0; i < 3; ++i) {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// A picture and what it is of.
struct NamedPicture {
    QString name;
    QImage image;
};

NamedPicture takePictureOfBubble(bool isHovered, AppLanguage language, AppAppearance appearance)
{
    AppPreferences preferences(nullptr, language, appearance);
    SystemAppearance system;
    const FakeScreens screens;
    auto *const view = new LauncherView(preferences, screens);
    AppEnvironment environment(preferences, system);
    environment.setAttribute(Qt::WA_TranslucentBackground);
    environment.setContent(view);
    environment.resize(Metrics::launcherSize);
    environment.show();
    settle();
    const double width = view->disc().width();
    if (isHovered) {
        const QPointF centre = QRectF(view->rect()).center();
        QEnterEvent enter(centre, centre, view->mapToGlobal(centre));
        QApplication::sendEvent(view, &enter);
        if (!QTest::qWaitFor([&] { return view->disc().width() > 1.039 * width; }))
            return {};
    }
    return {isHovered ? u"bubble-hovered"_s : u"bubble"_s, picture(environment, appearance)};
}

NamedPicture takePicture(const Scene &scene, AppLanguage language, AppAppearance appearance)
{
    Stage stage(language, appearance, scene.notes(language), scene.prepare);
    settle();
    if (scene.act)
        scene.act(stage);
    settle();
    NamedPicture taken{scene.name, picture(stage.environment, appearance)};
    for (QMenu *const menu : stage.environment.findChildren<QMenu *>())
        menu->close();
    return taken;
}

QList<NamedPicture> takePictures(AppLanguage language, AppAppearance appearance,
                                 const QString &wanted)
{
    QList<NamedPicture> pictures;
    for (const Scene &scene : scenes()) {
        if (scene.name.contains(wanted))
            pictures.append(takePicture(scene, language, appearance));
    }
    for (const bool isHovered : {false, true}) {
        if (u"bubble-hovered"_s.contains(wanted))
            pictures.append(takePictureOfBubble(isHovered, language, appearance));
    }
    return pictures;
}

bool savePictures(const QList<NamedPicture> &pictures, const QString &kind, const QDir &folder)
{
    return std::ranges::all_of(pictures, [&](const NamedPicture &taken) {
        const QString scale = QString::number(taken.image.devicePixelRatioF());
        return taken.image.save(folder.filePath(u"%1-%2@%3x.png"_s.arg(taken.name, kind, scale)));
    });
}

/// All pictures side by side, each over its name.
bool saveSheet(const QList<NamedPicture> &pictures, const QString &kind, const QDir &folder)
{
    constexpr int columns = 6;
    constexpr int captionHeight = 28;
    QSize cell;
    for (const NamedPicture &taken : pictures)
        cell = cell.expandedTo(taken.image.deviceIndependentSize().toSize());
    cell.rheight() += captionHeight;
    const int rows = static_cast<int>((pictures.size() + columns - 1) / columns);
    QImage sheet(cell.width() * columns, cell.height() * rows, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (qsizetype i = 0; i < pictures.size(); ++i) {
        const QPoint place(cell.width() * static_cast<int>(i % columns),
                           cell.height() * static_cast<int>(i / columns));
        painter.drawImage(place, pictures[i].image);
        const QRect caption(place + QPoint(0, cell.height() - captionHeight),
                            QSize(cell.width(), captionHeight));
        painter.drawText(caption, Qt::AlignCenter, pictures[i].name);
    }
    painter.end();
    return sheet.save(folder.filePath(u"all-%1.png"_s.arg(kind)));
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("TZ", "UTC");
    QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments();
    const bool asSheets = arguments.removeOne(u"--sheets"_s);
    const QDir folder(arguments.value(1, u"."_s));
    const QString wanted = arguments.value(2);
    bool isComplete = QDir().mkpath(folder.path());
    for (const AppLanguage language : {AppLanguage::english, AppLanguage::chinese}) {
        for (const AppAppearance appearance : {AppAppearance::light, AppAppearance::dark}) {
            const QString kind = rawValue(language) + u'-' + rawValue(appearance);
            const QList<NamedPicture> pictures = takePictures(language, appearance, wanted);
            isComplete &=
                asSheets ? saveSheet(pictures, kind, folder) : savePictures(pictures, kind, folder);
        }
    }
    if (!isComplete)
        QTextStream(stderr) << "Some pictures could not be written to " << folder.path() << '\n';
    return isComplete ? 0 : 1;
}
