// SPDX-License-Identifier: MIT
#include "TakeInAlert.h"

#include "AppPreferences.h"
#include "FileUrl.h"
#include "Metrics.h"
#include "TextStyle.h"

#include <QFileInfo>
#include <QTextBoundaryFinder>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

/// More files are told by their number.
constexpr std::size_t mostSteps = 100;

/// Of a title the beginning tells enough.
constexpr qsizetype mostTitle = 60;

QString beginningOf(const QString &title)
{
    if (title.size() <= mostTitle)
        return title;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, title);
    finder.setPosition(mostTitle);
    if (!finder.isAtBoundary())
        finder.toPreviousBoundary();
    return title.left(finder.position()) + u'…';
}

} // namespace

TakeInAlert::TakeInAlert(const AppPreferences &preferences, TakeInPlan plan, QWidget *window)
    : AlertCard(preferences, TextStyles::alertCancel, Metrics::alertMostListLines, window)
    , m_plan(std::move(plan))
{
    nameParts(u"takeInAlert"_s, u"cancelTakeIn"_s, u"confirmTakeIn"_s);
    setConfirmVisible(!m_plan.isEmpty());
    alignMessageAtStart();
    connect(&preferences, &AppPreferences::languageChanged, this, &TakeInAlert::render);
    render();
}

QString TakeInAlert::textOf(const TakeInPlan::Step &step) const
{
    const QString name = QFileInfo(shownPath(step.file)).fileName();
    return (step.title.isEmpty() ? name : u'“' + beginningOf(step.title) + u'”') + u'\n' +
           preferences().text(step.what) + u'\n' + preferences().text(step.becomes);
}

QString TakeInAlert::text() const
{
    if (m_plan.isEmpty())
        return preferences().text(u"There is nothing that could be taken in."_s);
    QStringList parts;
    const std::size_t count = std::min(m_plan.steps.size(), mostSteps);
    for (std::size_t i = 0; i < count; ++i)
        parts << textOf(m_plan.steps[i]);
    if (const auto rest = static_cast<qint64>(m_plan.steps.size() - count); rest > 0)
        parts << preferences().format(u"And %d more."_s, {rest});
    parts << preferences().format(u"The files themselves are kept in “%@”."_s,
                                  {shownPath(m_plan.originals)});
    return parts.join(u"\n\n"_s);
}

void TakeInAlert::render()
{
    present({preferences().text(u"Take in copies?"_s), text(), preferences().text(u"Cancel"_s),
             preferences().text(u"Take in"_s)});
}
