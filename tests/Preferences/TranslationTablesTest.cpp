// SPDX-License-Identifier: MIT
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

/// Holds the program's sources against its translation tables.
///
/// In the sources a wide literal (u"…") that holds a space or a letter beyond ASCII, or is one
/// capitalised word, is a text for the user. Names for other programs are narrow ("…"_L1).
class TranslationTablesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void hasAnEntryForEveryTextOfTheProgram();
    void usesEveryEntry();
    void keepsTheSameEntriesInTheSameOrderInBothLanguages();
    void keepsEnglishTextsAsTheirKeys();
    void hasAFinishedTranslationForEveryEntry();
    void keepsPlacesAndLineBreaks();
    void writesChineseWithItsOwnPunctuation();
    void isCompiledAsItIsWritten();

private:
    struct Text {
        QString text;
        QString place;
    };
    struct Entry {
        QString key;
        QString translation;
        bool isFinished = true;
    };

    static QList<Text> textsIn(const QString &path);
    static QList<Entry> table(const QString &language);

    QList<Text> m_texts;
    QList<Entry> m_english;
    QList<Entry> m_chinese;
};

namespace {

const QString root = QStringLiteral(PROJECT_SOURCE_FOLDER);
const QString compiled = QStringLiteral(PROJECT_RESOURCES_FOLDER);

/// What looks like a text and is none: shown the same in every language, or not shown at all.
const QSet<QString> notTranslated{
    u"Quillmark"_s, // the product's name
    u"%02d"_s,      // a number alone
    u"Esc"_s,       // what is printed on a key
};

/// Files whose texts are part of a format or name fonts.
const QSet<QString> technicalFiles{
    u"/src/DesignSystem/NoteTheme.cpp"_s,
    u"/src/Format/NoteMarkdownCodec.cpp"_s,
};

/// A literal's value from what stands between its quotation marks.
QString unescaped(const QString &source)
{
    QString text;
    for (qsizetype i = 0; i < source.size(); ++i) {
        if (source[i] != u'\\' || i + 1 == source.size()) {
            text += source[i];
            continue;
        }
        const QChar escape = source[++i];
        if (escape == u'n') {
            text += u'\n';
        } else if (escape == u't') {
            text += u'\t';
        } else if (escape == u'r') {
            text += u'\r';
        } else if (escape == u'u') {
            text += QChar(source.mid(i + 1, 4).toUShort(nullptr, 16));
            i += 4;
        } else {
            text += escape;
        }
    }
    return text;
}

bool isTextForTheUser(const QString &text)
{
    static const QRegularExpression letter(u"\\p{L}"_s);
    static const QRegularExpression beyondAscii(u"[^\\x00-\\x7F]"_s);
    static const QRegularExpression capitalisedWord(u"^[A-Z][a-z]+[^A-Za-z_]*$"_s);
    return text.contains(letter) &&
           (text.contains(u' ') || text.contains(beyondAscii) || text.contains(capitalisedWord));
}

QStringList placesOf(const QString &text)
{
    static const QRegularExpression place(u"%(?:0?\\d*d|@|%)"_s);
    QStringList places;
    for (auto match = place.globalMatch(text); match.hasNext();)
        places << match.next().captured();
    return places;
}

} // namespace

/// The texts for the user in one source file: comments are passed over, and neighbouring literals
/// are joined as the compiler joins them.
QList<TranslationTablesTest::Text> TranslationTablesTest::textsIn(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString source = QString::fromUtf8(file.readAll());
    static const QRegularExpression token(
        u"//[^\\n]*|/\\*.*?\\*/|'(?:\\\\.|[^'\\\\\\n])+'"
        "|((?:u8|u|U|L)?\"(?:\\\\.|[^\"\\\\\\n])*\"\\w*(?:\\s*(?:u8|u|U|L)?\"(?:\\\\.|[^\"\\\\\\n])*\"\\w*)*)"_s,
        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression piece(u"(?:u8|u|U|L)?\"((?:\\\\.|[^\"\\\\\\n])*)\""_s);
    static const QRegularExpression lookup(u"(?:\\b(?:text|format)\\(|\\bMessage\\{)\\s*$"_s);

    QList<Text> texts;
    for (auto match = token.globalMatch(source); match.hasNext();) {
        const auto found = match.next();
        const QString literal = found.captured(1);
        if (literal.isEmpty())
            continue;
        QString text;
        for (auto pieces = piece.globalMatch(literal); pieces.hasNext();)
            text += unescaped(pieces.next().captured(1));
        const bool isWide = literal.startsWith(u"u\""_s);
        const QString before = source.mid(qMax(qsizetype(0), found.capturedStart() - 40),
                                          qMin(qsizetype(40), found.capturedStart()));
        if ((isWide && isTextForTheUser(text)) || before.contains(lookup)) {
            const auto line = QStringView(source).left(found.capturedStart()).count(u'\n') + 1;
            texts << Text{text, u"%1:%2"_s.arg(path.mid(root.size() + 1)).arg(line)};
        }
    }
    return texts;
}

QList<TranslationTablesTest::Entry> TranslationTablesTest::table(const QString &language)
{
    QFile file(root + u"/resources/%1.lproj/Localizable.ts"_s.arg(language));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QList<Entry> entries;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"source"_s) {
            entries << Entry{xml.readElementText(), {}, true};
        } else if (xml.name() == u"translation"_s) {
            entries.last().isFinished = !xml.attributes().hasAttribute(u"type"_s);
            entries.last().translation = xml.readElementText();
        }
    }
    return xml.hasError() ? QList<Entry>() : entries;
}

void TranslationTablesTest::initTestCase()
{
    for (QDirIterator files(root + u"/src"_s, {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                            QDirIterator::Subdirectories);
         files.hasNext();) {
        const QString path = files.next();
        if (!technicalFiles.contains(path.sliced(root.size())))
            m_texts << textsIn(path);
    }
    for (const QString &path : technicalFiles)
        QVERIFY2(QFile::exists(root + path), qUtf8Printable(path));
    m_english = table(u"en"_s);
    m_chinese = table(u"zh-Hans"_s);

    // The search works: these three are found in very different places.
    for (const QString &text : {u"Saved on this Mac"_s, u"Quit anyway"_s, u"简体中文"_s}) {
        QVERIFY2(std::any_of(m_texts.begin(), m_texts.end(),
                             [&text](const Text &found) { return found.text == text; }),
                 qUtf8Printable(text));
    }
    QVERIFY(m_english.size() > 50);
    QVERIFY(m_chinese.size() > 50);
}

void TranslationTablesTest::hasAnEntryForEveryTextOfTheProgram()
{
    QSet<QString> keys = notTranslated;
    for (const Entry &entry : m_chinese)
        keys << entry.key;

    QStringList missing;
    for (const Text &text : m_texts) {
        if (!keys.contains(text.text))
            missing << text.place + u": "_s + text.text;
    }

    QVERIFY2(missing.isEmpty(), qUtf8Printable(u"Not in the tables:\n"_s + missing.join(u'\n')));
}

void TranslationTablesTest::usesEveryEntry()
{
    QSet<QString> used;
    for (const Text &text : m_texts)
        used << text.text;

    QStringList unused;
    for (const Entry &entry : m_chinese) {
        if (!used.contains(entry.key))
            unused << entry.key;
    }

    QVERIFY2(unused.isEmpty(), qUtf8Printable(u"Shown nowhere:\n"_s + unused.join(u'\n')));
}

void TranslationTablesTest::keepsTheSameEntriesInTheSameOrderInBothLanguages()
{
    QStringList english;
    for (const Entry &entry : m_english)
        english << entry.key;
    QStringList chinese;
    for (const Entry &entry : m_chinese)
        chinese << entry.key;

    QCOMPARE(chinese, english);
    QCOMPARE(QSet<QString>(english.begin(), english.end()).size(), english.size());
}

void TranslationTablesTest::keepsEnglishTextsAsTheirKeys()
{
    for (const Entry &entry : m_english)
        QCOMPARE(entry.translation, entry.key);
}

void TranslationTablesTest::hasAFinishedTranslationForEveryEntry()
{
    for (const Entry &entry : m_chinese) {
        QVERIFY2(entry.isFinished, qUtf8Printable(entry.key));
        QVERIFY2(!entry.translation.trimmed().isEmpty(), qUtf8Printable(entry.key));
    }
}

void TranslationTablesTest::keepsPlacesAndLineBreaks()
{
    for (const Entry &entry : m_chinese) {
        QCOMPARE(placesOf(entry.translation), placesOf(entry.key));
        QCOMPARE(entry.translation.count(u'\n'), entry.key.count(u'\n'));
    }
}

void TranslationTablesTest::writesChineseWithItsOwnPunctuation()
{
    static const QRegularExpression narrowMark(u"\\p{Han}[,.;:!?()]|[,.;:!?()]\\p{Han}"_s);
    for (const Entry &entry : m_chinese) {
        QVERIFY2(!entry.translation.contains(narrowMark), qUtf8Printable(entry.translation));
        QCOMPARE(entry.translation.endsWith(u'。'), entry.key.endsWith(u'.'));
    }
}

void TranslationTablesTest::isCompiledAsItIsWritten()
{
    for (const auto &[language, entries] :
         {std::pair(u"en"_s, m_english), std::pair(u"zh-Hans"_s, m_chinese)}) {
        QTranslator translator;
        QVERIFY(translator.load(compiled + u"/%1.lproj/Localizable.qm"_s.arg(language)));
        for (const Entry &entry : entries) {
            QCOMPARE(translator.translate("Localizable", entry.key.toUtf8().constData()),
                     entry.translation);
        }
    }
}

QTEST_GUILESS_MAIN(TranslationTablesTest)
#include "TranslationTablesTest.moc"
