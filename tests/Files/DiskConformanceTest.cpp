// SPDX-License-Identifier: MIT
#include "Dice.h"
#include "MemoryDisk.h"
#include "SystemDisk.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

/// The disk in memory answers as the real one does: the same calls are made on both, and every
/// answer and all that is then in the folders are compared.
class DiskConformanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersRandomCallsAsTheRealDiskDoes();
    void changesTheSameTimesAsTheRealDisk();
};

namespace {

using Rename = Disk::Rename;

/// What one call brought, in a form that does not depend on the disk.
struct Answer {
    int error = 0;
    std::string text;

    friend bool operator==(const Answer &, const Answer &) = default;
};

std::string toText(const Answer &answer)
{
    return answer.error != 0 ? strerrorname_np(answer.error) : "success " + answer.text;
}

Answer answerOf(const Result<void> &result)
{
    return {result ? 0 : result.failure().systemError, {}};
}

std::string textOf(const FileStatus &status)
{
    // The size of a folder is the file system's own affair.
    const std::int64_t size = status.kind == FileKind::folder ? 0 : status.size;
    return std::to_string(static_cast<int>(status.kind)) + ' ' + std::to_string(status.mode) + ' ' +
           std::to_string(size);
}

struct Listed final : ListingVisitor {
    void visit(ino_t inode, FileKind kind, const char *name) override
    {
        entries[name] = {inode, kind};
    }

    std::map<std::string, std::pair<ino_t, FileKind>> entries;
};

/// One disk under test, with the handles that are open on it by numbers that both disks share.
struct Side {
    Disk &disk;
    Disk::Handle top;
    std::map<int, Disk::Handle> handles;

    Answer keep(int number, const Result<Disk::Handle> &opened)
    {
        if (!opened)
            return {opened.failure().systemError, {}};
        handles[number] = *opened;
        return {};
    }

    Answer status(const Result<FileStatus> &found)
    {
        if (!found)
            return {found.failure().systemError, {}};
        return {0, textOf(*found)};
    }

    Answer read(int number)
    {
        std::array<char, 5> bytes{};
        const Result<std::size_t> count = disk.read(handles.at(number), bytes.data(), bytes.size());
        if (!count)
            return {count.failure().systemError, {}};
        return {0, std::string(bytes.data(), *count)};
    }

    Answer write(int number, const std::string &bytes)
    {
        const Result<std::size_t> count =
            disk.write(handles.at(number), bytes.data(), bytes.size());
        if (!count)
            return {count.failure().systemError, {}};
        return {0, std::to_string(*count)};
    }

    Answer list(int number)
    {
        Listed listed;
        const Result<void> result = disk.list(handles.at(number), listed);
        if (!result)
            return {result.failure().systemError, {}};
        std::string text;
        for (const auto &[name, entry] : listed.entries)
            text += name + ' ' + std::to_string(static_cast<int>(entry.second)) + '\n';
        return {0, text};
    }

    Answer attributes(int number, const char *name)
    {
        const Result<Disk::Attributes> found = disk.attributes(handles.at(number), name);
        if (!found)
            return {found.failure().systemError, {}};
        return {0, found->isMountPoint || found->isImmutable ? "special" : "ordinary"};
    }

    /// Everything below the folder, with a number for each inode in the order of first sight.
    std::string tree()
    {
        std::map<ino_t, std::size_t> seen;
        std::string text;
        addTree(top, "", seen, text);
        return text;
    }

    void addTree(Disk::Handle folder, const std::string &path, std::map<ino_t, std::size_t> &seen,
                 std::string &text)
    {
        Listed listed;
        if (!disk.list(folder, listed))
            qFatal("A folder cannot be listed.");
        for (const auto &[name, entry] : listed.entries) {
            const Result<FileStatus> status = disk.status(folder, name.c_str());
            if (!status || status->identity.inode != entry.first)
                qFatal("A listing and a status do not agree.");
            const std::size_t number = seen.try_emplace(entry.first, seen.size()).first->second;
            text += path + name + " #" + std::to_string(number) + ' ' + textOf(*status);
            if (status->kind == FileKind::file)
                text += ' ' + content(folder, name.c_str());
            text += '\n';
            if (status->kind != FileKind::folder)
                continue;
            const Result<Disk::Handle> below = disk.openFolder(folder, name.c_str());
            if (!below)
                qFatal("A folder cannot be opened.");
            addTree(*below, path + name + '/', seen, text);
            static_cast<void>(disk.close(*below));
        }
    }

    std::string content(Disk::Handle folder, const char *name)
    {
        const Result<Disk::Handle> file = disk.openFile(folder, name);
        std::array<char, 4096> bytes{};
        const Result<std::size_t> count =
            file ? disk.read(*file, bytes.data(), bytes.size()) : file.failure();
        if (!count)
            qFatal("A file cannot be read.");
        static_cast<void>(disk.close(*file));
        return {bytes.data(), *count};
    }
};

/// Both disks, each with an empty folder.
class Pair {
public:
    Pair()
    {
        const Result<Disk::Handle> real =
            m_system.openPath(QFile::encodeName(m_folder.path()).constData());
        const Result<Disk::Handle> made = m_memory.openPath("/");
        if (!real || !made)
            qFatal("There is no folder to work in.");
        m_real.top = m_real.handles[0] = *real;
        m_made.top = m_made.handles[0] = *made;
        m_memory.setAbilities(abilitiesOfTheRealDisk());
    }
    Pair(const Pair &) = delete;
    Pair &operator=(const Pair &) = delete;

    ~Pair()
    {
        for (Side *side : {&m_real, &m_made}) {
            for (const auto &[number, handle] : side->handles)
                static_cast<void>(side->disk.close(handle));
        }
    }

    Side &real() { return m_real; }
    Side &made() { return m_made; }
    MemoryDisk &memory() { return m_memory; }

    /// Empty when both answer alike.
    std::string compare(const std::string &what, const std::function<Answer(Side &)> &call)
    {
        const Answer wanted = call(m_real);
        const Answer found = call(m_made);
        if (found == wanted)
            return {};
        return what + ": " + toText(found) + " instead of " + toText(wanted);
    }

    /// What no Disk makes, on both of them.
    void makeSymbolicLink(int folder, const char *name, const char *target)
    {
        static_cast<void>(::symlinkat(target, m_real.handles.at(folder), name));
        static_cast<void>(m_memory.makeSymbolicLink(m_made.handles.at(folder), name, target));
    }
    void makePipe(int folder, const char *name)
    {
        static_cast<void>(::mkfifoat(m_real.handles.at(folder), name, 0600));
        static_cast<void>(m_memory.makePipe(m_made.handles.at(folder), name));
    }

private:
    /// Not every file system exchanges.
    MemoryDisk::Abilities abilitiesOfTheRealDisk()
    {
        MemoryDisk::Abilities abilities;
        abilities.isPrivileged = ::geteuid() == 0;
        const bool isMade =
            m_system.makeFolder(m_real.top, "a") && m_system.makeFolder(m_real.top, "b");
        abilities.canExchange =
            isMade && m_system.rename(m_real.top, "a", m_real.top, "b", Rename::exchange);
        abilities.canKeepFromReplacing =
            isMade && m_system.rename(m_real.top, "a", m_real.top, "c", Rename::noReplace);
        for (const char *name : {"a", "b", "c"})
            static_cast<void>(m_system.unlink(m_real.top, name, FileKind::folder));
        return abilities;
    }

    QTemporaryDir m_folder;
    SystemDisk m_system;
    MemoryDisk m_memory;
    Side m_real{m_system, -1, {}};
    Side m_made{m_memory, -1, {}};
};

/// One random call after the other, with few names, so that they often meet.
class RandomCalls {
public:
    explicit RandomCalls(std::uint64_t seed)
        : m_dice(seed)
    {
    }

    /// Empty when both disks answered alike to the end.
    std::string run(int count)
    {
        for (int i = 0; i < count; ++i) {
            const std::string difference = step();
            if (!difference.empty())
                return difference;
            const std::string wanted = m_pair.real().tree();
            const std::string found = m_pair.made().tree();
            if (found != wanted)
                return "after " + m_what + "\n" + found + "instead of\n" + wanted;
        }
        return {};
    }

    [[nodiscard]] const std::map<std::string, int> &answers() const { return m_answers; }

private:
    const char *name()
    {
        static constexpr std::array<const char *, 5> names{"a", "b", "c", "d", "e"};
        return names.at(m_dice.below(names.size()));
    }

    /// A number of one of the handles, by chance; nothing when there is none of the kind.
    std::optional<int> pick(const std::vector<int> &from)
    {
        if (from.empty())
            return std::nullopt;
        return from[m_dice.below(from.size())];
    }

    std::string step()
    {
        constexpr std::size_t mostHandles = 8;
        const int in = *pick(m_folders);
        const int into = *pick(m_folders);
        const char *const one = name();
        const char *const two = name();
        const std::optional<int> read = pick(m_readers);
        const std::optional<int> write = pick(m_writers);
        switch (m_dice.below(22)) {
        case 0:
        case 1:
            return m_folders.size() < mostHandles
                       ? open("openFolder", m_folders, in, one, &Disk::openFolder)
                       : closeOne(m_folders);
        case 2:
            return m_readers.size() < mostHandles
                       ? open("openFile", m_readers, in, one, &Disk::openFile)
                       : closeOne(m_readers);
        case 3:
        case 4:
            return m_writers.size() < mostHandles
                       ? open("makeFile", m_writers, in, one, &Disk::makeFile)
                       : closeOne(m_writers);
        case 5:
        case 6:
            return on("makeFolder", in, one, [=](Side &side) {
                return answerOf(side.disk.makeFolder(side.handles.at(in), one));
            });
        case 7:
            return read ? on("read", *read, "", [=](Side &side) { return side.read(*read); })
                        : std::string();
        case 8:
            return write ? on("write", *write, "",
                              [=, bytes = std::string(m_dice.below(12), 'x')](Side &side) {
                                  return side.write(*write, bytes);
                              })
                         : std::string();
        case 9:
            return on("list", in, "", [=](Side &side) { return side.list(in); });
        case 10:
            return on("status", in, "", [=](Side &side) {
                return side.status(side.disk.status(side.handles.at(in)));
            });
        case 11:
            return on("status", in, one, [=](Side &side) {
                return side.status(side.disk.status(side.handles.at(in), one));
            });
        case 12:
            return on("attributes", in, one, [=](Side &side) { return side.attributes(in, one); });
        case 13:
        case 14:
            return on("link", in, one, [=](Side &side) {
                return answerOf(side.disk.link(side.handles.at(in), side.handles.at(into), one));
            });
        case 15: {
            // Mostly of one name, since a copy needs one that is a link.
            const char *const link = m_dice.hasChance(70) ? "e" : one;
            if (m_dice.hasChance(50)) {
                m_pair.makeSymbolicLink(in, link, "a/b");
                return {};
            }
            if (m_dice.hasChance(20)) {
                m_pair.makePipe(in, one);
                return {};
            }
            return on("copySymbolicLink", in, link, [=](Side &side) {
                return answerOf(
                    side.disk.copySymbolicLink(side.handles.at(in), side.handles.at(into), link));
            });
        }
        case 16:
        case 17: {
            const auto how = static_cast<Rename>(m_dice.below(3));
            return on("rename " + std::to_string(static_cast<int>(how)) + " to " + two, in, one,
                      [=](Side &side) {
                          return answerOf(side.disk.rename(side.handles.at(in), one,
                                                           side.handles.at(into), two, how));
                      });
        }
        case 18: {
            const FileKind kind = m_dice.hasChance(50) ? FileKind::folder : FileKind::file;
            return on("unlink", in, one, [=](Side &side) {
                return answerOf(side.disk.unlink(side.handles.at(in), one, kind));
            });
        }
        case 19: {
            const auto mode = static_cast<mode_t>(0700U | (m_dice.below(64)));
            return on("setMode", in, "", [=](Side &side) {
                return answerOf(side.disk.setMode(side.handles.at(in), mode));
            });
        }
        case 20: {
            std::vector<int> &kind = m_dice.hasChance(50)   ? m_folders
                                     : m_dice.hasChance(50) ? m_readers
                                                            : m_writers;
            return kind.size() > 1 ? closeOne(kind) : std::string();
        }
        default:
            return on("copyMetadata", in, "", [=](Side &side) {
                return answerOf(side.disk.copyMetadata(side.handles.at(in), side.handles.at(into)));
            });
        }
    }

    std::string on(const std::string &what, int handle, const char *entry,
                   const std::function<Answer(Side &)> &call)
    {
        m_what = what + " of " + std::to_string(handle) + ' ' + entry;
        return m_pair.compare(m_what, [&](Side &side) {
            const Answer answer = call(side);
            ++m_answers[what.substr(0, what.find(' ')) + ' ' +
                        (answer.error != 0 ? strerrorname_np(answer.error) : "succeeds")];
            return answer;
        });
    }

    std::string open(const char *what, std::vector<int> &kind, int in, const char *entry,
                     Result<Disk::Handle> (Disk::*call)(Disk::Handle, const char *) noexcept)
    {
        const int number = ++m_lastNumber;
        const std::string difference = on(what, in, entry, [=](Side &side) {
            return side.keep(number, (side.disk.*call)(side.handles.at(in), entry));
        });
        if (m_pair.real().handles.contains(number))
            kind.push_back(number);
        return difference;
    }

    std::string closeOne(std::vector<int> &kind)
    {
        // The first folder is the one that everything is in.
        const std::size_t place = 1 + m_dice.below(kind.size() - 1);
        const int number = kind[place];
        kind.erase(kind.begin() + static_cast<std::ptrdiff_t>(place));
        return on("close", number, "", [=](Side &side) {
            const Answer answer = answerOf(side.disk.close(side.handles.at(number)));
            side.handles.erase(number);
            return answer;
        });
    }

    Dice m_dice;
    Pair m_pair;
    std::vector<int> m_folders{0};
    std::vector<int> m_readers;
    std::vector<int> m_writers;
    int m_lastNumber = 0;
    std::string m_what;
    std::map<std::string, int> m_answers;
};

/// The times of every entry that a call changed.
class Times {
public:
    explicit Times(Side &side)
        : m_side(side)
    {
        look(side.top, "", m_before);
    }

    /// Names and which of their two times are other ones than before.
    std::string changes()
    {
        std::map<std::string, FileStatus> now;
        look(m_side.top, "", now);
        std::string text;
        for (const auto &[path, status] : now) {
            const auto before = m_before.find(path);
            if (before == m_before.end()) {
                text += path + " is new\n";
                continue;
            }
            if (status.modified != before->second.modified)
                text += path + " is modified\n";
            if (status.changed != before->second.changed)
                text += path + " is changed\n";
        }
        return text;
    }

private:
    void look(Disk::Handle folder, const std::string &path, std::map<std::string, FileStatus> &into)
    {
        into[path + '.'] = *m_side.disk.status(folder);
        Listed listed;
        static_cast<void>(m_side.disk.list(folder, listed));
        for (const auto &[name, entry] : listed.entries) {
            if (entry.second == FileKind::folder) {
                const Disk::Handle below = *m_side.disk.openFolder(folder, name.c_str());
                look(below, path + name + '/', into);
                static_cast<void>(m_side.disk.close(below));
            } else {
                into[path + name] = *m_side.disk.status(folder, name.c_str());
            }
        }
    }

    Side &m_side;
    std::map<std::string, FileStatus> m_before;
};

} // namespace

void DiskConformanceTest::answersRandomCallsAsTheRealDiskDoes()
{
    constexpr int runs = 80;
    constexpr int calls = 150;
    std::map<std::string, int> answers;

    for (int seed = 0; seed < runs; ++seed) {
        RandomCalls random(static_cast<std::uint64_t>(seed));
        const std::string difference = random.run(calls);
        QVERIFY2(difference.empty(), ("run " + std::to_string(seed) + ": " + difference).c_str());
        for (const auto &[answer, count] : random.answers())
            answers[answer] += count;
    }

    // It compares nothing when nothing happens.
    for (const char *call : {"openFolder", "openFile", "makeFile", "makeFolder", "close", "read",
                             "write", "list", "status", "attributes", "link", "copySymbolicLink",
                             "rename", "unlink", "setMode", "copyMetadata"})
        QVERIFY2(answers[std::string(call) + " succeeds"] > 0, call);
    for (const char *refusal :
         {"openFolder ENOTDIR", "openFile ELOOP", "makeFile EEXIST", "makeFolder ENOENT",
          "read EISDIR", "link EPERM", "link EEXIST", "link ENOENT", "copySymbolicLink EINVAL",
          "rename EEXIST", "rename EINVAL", "rename ENOTEMPTY", "rename ENOTDIR", "rename EISDIR",
          "rename ENOENT", "unlink EISDIR", "unlink ENOTDIR", "unlink ENOTEMPTY"})
        QVERIFY2(answers[refusal] > 0, refusal);
}

void DiskConformanceTest::changesTheSameTimesAsTheRealDisk()
{
    Pair pair;
    int file = 0;
    const std::vector<std::pair<const char *, std::function<Answer(Side &)>>> calls{
        {"makeFolder", [](Side &s) { return answerOf(s.disk.makeFolder(s.top, "one")); }},
        {"makeFolder", [](Side &s) { return answerOf(s.disk.makeFolder(s.top, "two")); }},
        {"openFolder", [](Side &s) { return s.keep(1, s.disk.openFolder(s.top, "one")); }},
        {"openFolder", [](Side &s) { return s.keep(2, s.disk.openFolder(s.top, "two")); }},
        {"makeFile", [](Side &s) { return s.keep(3, s.disk.makeFile(s.handles[1], "a")); }},
        {"write", [](Side &s) { return s.write(3, "text"); }},
        {"sync", [](Side &s) { return answerOf(s.disk.sync(s.handles[3])); }},
        {"link", [](Side &s) { return answerOf(s.disk.link(s.handles[1], s.handles[2], "a")); }},
        {"openFile", [](Side &s) { return s.keep(4, s.disk.openFile(s.handles[2], "a")); }},
        {"setMode", [](Side &s) { return answerOf(s.disk.setMode(s.handles[4], 0640)); }},
        {"rename to itself",
         [](Side &s) {
             return answerOf(s.disk.rename(s.handles[1], "a", s.handles[2], "a", Rename::replace));
         }},
        {"makeFile", [](Side &s) { return s.keep(5, s.disk.makeFile(s.handles[2], "b")); }},
        {"copyMetadata",
         [](Side &s) { return answerOf(s.disk.copyMetadata(s.handles[4], s.handles[5])); }},
        {"rename over it",
         [](Side &s) {
             return answerOf(s.disk.rename(s.handles[2], "b", s.handles[2], "a", Rename::replace));
         }},
        {"rename of a folder",
         [](Side &s) {
             return answerOf(s.disk.rename(s.top, "one", s.top, "three", Rename::replace));
         }},
        {"exchange",
         [](Side &s) {
             return answerOf(s.disk.rename(s.top, "three", s.top, "two", Rename::exchange));
         }},
        {"move of a folder",
         [](Side &s) {
             return answerOf(s.disk.rename(s.top, "three", s.handles[1], "below", Rename::replace));
         }},
        {"unlink",
         [](Side &s) { return answerOf(s.disk.unlink(s.handles[1], "a", FileKind::file)); }},
        {"unlink",
         [](Side &s) { return answerOf(s.disk.unlink(s.handles[2], "a", FileKind::file)); }},
        {"unlink of a folder",
         [](Side &s) { return answerOf(s.disk.unlink(s.handles[1], "below", FileKind::folder)); }}};

    for (const auto &[what, call] : calls) {
        // What comes now gets another time than all before.
        const std::int64_t before = pair.real().disk.now();
        while (pair.real().disk.now() == before)
            continue;
        pair.memory().letTimePass(MemoryDisk::tick);
        Times wanted(pair.real());
        Times found(pair.made());

        const std::string difference = pair.compare(what, call);

        QVERIFY2(difference.empty() || !pair.memory().abilities().canExchange, difference.c_str());
        QCOMPARE(QString::number(file) + QString::fromStdString(found.changes()),
                 QString::number(file) + QString::fromStdString(wanted.changes()));
        ++file;
    }
}

QTEST_APPLESS_MAIN(DiskConformanceTest)
#include "DiskConformanceTest.moc"
