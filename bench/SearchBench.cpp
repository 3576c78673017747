// SPDX-License-Identifier: MIT
// One key in the search field, as far as the notes are concerned: the scan of every body, beside
// the plain way of doing it (normalise, strip the marks, fold, contain) in the same run.
#include "TextSearch.h"

#include <QList>
#include <QRandomGenerator>
#include <QString>
#include <benchmark/benchmark.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Notes of 500 characters, a fifth of them Chinese, a tenth with accents.
QList<QString> bodies(qsizetype count)
{
    static const QStringList plain = {u"the"_s,     u"note"_s,  u"about"_s,   u"window"_s,
                                      u"idea"_s,    u"quick"_s, u"thought"_s, u"river"_s,
                                      u"meeting"_s, u"and"_s,   u"lunch"_s,   u"question"_s,
                                      u"never"_s,   u"draft"_s, u"tea"_s};
    static const QStringList accented = {u"café"_s,  u"Änderung"_s, u"déjà"_s,
                                         u"señor"_s, u"Straße"_s,   u"the"_s,
                                         u"note"_s,  u"naïve"_s,    u"garçon"_s};
    QRandomGenerator random(7);
    QList<QString> notes;
    notes.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        QString body;
        body.reserve(520);
        while (body.size() < 500) {
            if (i % 5 == 0) {
                body += QChar(0x4E00 + random.bounded(3000));
                body += random.bounded(12) == 0 ? u"，"_s : QString();
            } else {
                const QStringList &words = i % 10 == 1 ? accented : plain;
                body += words[random.bounded(words.size())] + u' ';
            }
        }
        body.truncate(500);
        notes.append(body);
    }
    return notes;
}

icu::UnicodeString plainlyFolded(const QString &text, const icu::Normalizer2 &compatibility)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString decomposed =
        compatibility.normalize(icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()),
                                                   static_cast<int32_t>(text.size())),
                                status);
    icu::UnicodeString bases;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 codePoint = decomposed.char32At(i);
        if (u_charType(codePoint) != U_NON_SPACING_MARK) {
            bases.append(codePoint);
        }
    }
    return bases.foldCase();
}

const QStringList &queries()
{
    // A rare word, a frequent beginning, an accent, Chinese, one letter, and a miss.
    static const QStringList list = {u"question"_s, u"th"_s, u"dejà"_s,
                                     u"想到"_s,     u"z"_s,  u"quince"_s};
    return list;
}

void scan(benchmark::State &state)
{
    const QList<QString> notes = bodies(state.range(0));
    const QString query = queries()[state.range(1)];
    for (auto _ : state) {
        const TextSearch search(query);
        qsizetype found = 0;
        for (const QString &body : notes) {
            found += search.isFoundIn(body) ? 1 : 0;
        }
        benchmark::DoNotOptimize(found);
    }
}

void plainReference(benchmark::State &state)
{
    const QList<QString> notes = bodies(state.range(0));
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 &compatibility = *icu::Normalizer2::getNFKDInstance(status);
    const QString query = queries()[state.range(1)];
    for (auto _ : state) {
        const icu::UnicodeString wanted = plainlyFolded(query, compatibility);
        qsizetype found = 0;
        for (const QString &body : notes) {
            found += plainlyFolded(body, compatibility).indexOf(wanted) >= 0 ? 1 : 0;
        }
        benchmark::DoNotOptimize(found);
    }
}

void sizesAndQueries(benchmark::internal::Benchmark *bench)
{
    bench->Unit(benchmark::kMillisecond)->ArgNames({"notes", "query"});
    for (const int64_t notes : {1'000, 10'000, 100'000}) {
        for (int64_t query = 0; query < queries().size(); ++query) {
            bench->Args({notes, query});
        }
    }
}

BENCHMARK(scan)->Apply(sizesAndQueries);
BENCHMARK(plainReference)->Apply([](benchmark::internal::Benchmark *bench) {
    bench->Unit(benchmark::kMillisecond)->ArgNames({"notes", "query"})->Args({10'000, 0});
});

} // namespace

BENCHMARK_MAIN();
