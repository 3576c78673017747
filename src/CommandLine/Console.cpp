// SPDX-License-Identifier: MIT
#include "Console.h"

#include "AppLanguage.h"

#include <QFile>
#include <QLocale>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int usualWidth = 80;

/// Beside the folder of the program, as for the window.
QString resourcesFolder()
{
    const QString program = QFile::symLinkTarget(u"/proc/self/exe"_s);
    return program.left(program.lastIndexOf(u'/')) + u"/../share/quillmark"_s;
}

} // namespace

Console::Console()
    : m_isTerminal(::isatty(STDOUT_FILENO) == 1)
{
}

const QString &Console::language() const
{
    // Not asked for by an addition that succeeds.
    if (m_language.isEmpty())
        m_language = resolvedLanguage(AppLanguage::system, QLocale::system().uiLanguages());
    return m_language;
}

QString Console::text(const QString &key) const
{
    if (!std::exchange(m_isLoaded, true)) {
        // A missing table stays empty, and every text is then shown as written.
        [[maybe_unused]] const bool isRead =
            m_translations.load(resourcesFolder() + u'/' + language() + u".lproj/Localizable.qm"_s);
    }
    const QString translation = m_translations.translate("Localizable", key.toUtf8().constData());
    return translation.isNull() ? key : translation;
}

QString Console::text(const Message &message) const
{
    return formatted(text(message.key), message.arguments);
}

int Console::width() const noexcept
{
    winsize size{};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usualWidth;
}

void Console::write(QStringView text)
{
    const QByteArray bytes = text.toUtf8();
    write(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

void Console::write(std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() && m_error == 0)
        m_error = errno;
}

void Console::writePath(const std::filesystem::path &path)
{
    write(std::string_view(path.native()));
    write(std::string_view("\n"));
}

void Console::write(QStringView text, Look look)
{
    const bool isColoured =
        m_isTerminal && look != Look::plain && qEnvironmentVariableIsEmpty("NO_COLOR");
    if (isColoured)
        write(look == Look::strong ? std::string_view("\033[1m") : std::string_view("\033[2m"));
    write(text);
    if (isColoured)
        write(std::string_view("\033[0m"));
}

void Console::complain(const Complaint &complaint) const
{
    QString sentence = text(complaint.message);
    if (complaint.place && !complaint.isPlaceNamed)
        sentence += u" ("_s + QFile::decodeName(complaint.place->c_str()) + u')';
    tell(sentence);
}

void Console::tell(const QString &sentence) const
{
    std::fprintf(stderr, "quillmark-notes: %s\n", harmless(sentence, true).toUtf8().constData());
}

void Console::flush()
{
    if (std::fflush(stdout) != 0 && m_error == 0)
        m_error = errno;
}

std::optional<Complaint> Console::finish()
{
    flush();
    if (m_error == 0)
        return std::nullopt;
    return Complaint{ExitStatus::file,
                     {u"The output could not be written: %@"_s,
                      {QString::fromLocal8Bit(std::strerror(m_error))}},
                     std::nullopt};
}

QString shown(const std::filesystem::path &path)
{
    return harmless(QFile::decodeName(path.c_str()), false);
}

QString harmless(const QString &text, bool keepsLines)
{
    QString shown = text;
    for (QChar &unit : shown) {
        const bool isLine = keepsLines && (unit == u'\n' || unit == u'\t');
        if (unit.category() == QChar::Other_Control && !isLine)
            unit = u' ';
    }
    return shown;
}

QString cutToWidth(const QString &text, int cells)
{
    // Every glibc has it, whatever languages are installed.
    [[maybe_unused]] static const char *const isSet = std::setlocale(LC_CTYPE, "C.UTF-8");
    int used = 0;
    qsizetype end = 0;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype size = text[at].isHighSurrogate() && at + 1 < text.size() ? 2 : 1;
        const QList<uint> character = text.mid(at, size).toUcs4();
        used += std::max(0, ::wcwidth(static_cast<wchar_t>(character.value(0))));
        at += size;
        if (used > cells)
            return text.left(end) + u'…';
        // With this much of it there is still room for the sign that more follows.
        if (used < cells)
            end = at;
    }
    return text;
}
