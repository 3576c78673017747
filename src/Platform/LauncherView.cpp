// SPDX-License-Identifier: MIT
#include "LauncherView.h"

#include "AppPreferences.h"
#include "GlassSurface.h"
#include "LauncherHitView.h"
#include "Metrics.h"
#include "Symbol.h"
#include "TextStyle.h"
#include "ViewEnvironment.h"

#include <QEasingCurve>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A soft shadow within the padding: rings around the disc, each wider and lighter than the last.
constexpr int shadowRings = 4;
constexpr float shadowOpacity = 0.035F;
constexpr double shadowDrop = 1;

QEasingCurve easeOut()
{
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment({0, 0}, {0.58, 1}, {1, 1});
    return curve;
}

QColor mixed(const QColor &from, const QColor &to, double progress)
{
    const auto channel = [progress](float a, float b) {
        return a + (b - a) * static_cast<float>(progress);
    };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()), channel(from.alphaF(), to.alphaF()));
}

/// The disc about the origin.
QRectF discAtRest()
{
    QRectF disc(0, 0, Metrics::launcherDisc, Metrics::launcherDisc);
    disc.moveCenter({});
    return disc;
}

/// The rings about the disc at rest: computed once, since they are drawn at every step of the
/// hover.
std::array<QPainterPath, shadowRings> makeShadow()
{
    std::array<QPainterPath, shadowRings> rings;
    int width = 0;
    for (QPainterPath &ring : rings) {
        ++width;
        const QRectF reach = discAtRest().adjusted(-width, -width, width, width);
        ring = GlassSurface::outline(reach.translated(0, shadowDrop),
                                     GlassSurface::cornerRadius + width);
    }
    return rings;
}

void paintShadow(QPainter &painter)
{
    static const std::array<QPainterPath, shadowRings> rings = makeShadow();
    for (const QPainterPath &ring : rings)
        painter.fillPath(ring, QColor::fromRgbF(0, 0, 0, shadowOpacity));
}

} // namespace

LauncherView::LauncherView(const AppPreferences &preferences, const Screens &screens,
                           QWidget *parent)
    : QWidget(parent)
    , m_preferences(preferences)
    , m_hitView(new LauncherHitView(screens, &preferences, this))
{
    m_hover.setDuration(Metrics::launcherHoverMilliseconds);
    m_hover.setEasingCurve(easeOut());
    m_keptSign.setSingleShot(true);
    m_keptSign.setInterval(Metrics::launcherKeptMilliseconds);
    setFixedSize(Metrics::launcherSize);

    connect(m_hitView, &LauncherHitView::openRequested, this, &LauncherView::openRequested);
    connect(m_hitView, &LauncherHitView::moved, this, &LauncherView::moved);
    connect(m_hitView, &LauncherHitView::quitRequested, this, &LauncherView::quitRequested);
    connect(m_hitView, &LauncherHitView::dropped, this, &LauncherView::dropped);
    connect(&m_keptSign, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    connect(&m_hover, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &emphasis) { setEmphasis(emphasis.toDouble()); });
    connect(&m_preferences, &AppPreferences::languageChanged, this, &LauncherView::render);

    render();
}

QRectF LauncherView::disc() const
{
    const double growth = reducesMotion() ? 0 : Metrics::launcherHoverScale - 1;
    const double side = Metrics::launcherDisc * (1 + growth * m_emphasis);
    QRectF disc(0, 0, side, side);
    disc.moveCenter(QRectF(rect()).center());
    return disc;
}

void LauncherView::showKept()
{
    m_keptSign.start();
    update();
}

void LauncherView::showRefusal(const QString &sentence)
{
    QToolTip::showText(mapToGlobal(rect().center()), sentence, this, {},
                       Metrics::launcherRefusalMilliseconds);
}

QString LauncherView::symbol() const
{
    return m_keptSign.isActive() ? u"checkmark"_s : u"plus"_s;
}

void LauncherView::endDrag()
{
    m_hitView->endPress();
}

bool LauncherView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Enter:
        setHovered(true);
        Q_EMIT approached();
        break;
    case QEvent::Leave:
    case QEvent::Hide:
        setHovered(false);
        break;
    case QEvent::Polish:
        if (const ViewEnvironment *environment = ViewEnvironment::of(this))
            connect(environment, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void LauncherView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_hitView->setGeometry(rect());
}

void LauncherView::paintEvent(QPaintEvent * /*event*/)
{
    const QRectF disc = this->disc();
    const double scale = disc.width() / Metrics::launcherDisc;
    const QRectF atRest = discAtRest();

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(disc.center());
    painter.scale(scale, scale);
    if (const ViewEnvironment *environment = ViewEnvironment::of(this);
        !environment || !environment->reduceTransparency())
        paintShadow(painter);
    GlassSurface::paint(painter, atRest, this);
    Symbol::paint(painter, atRest, symbol(), TextStyles::launcherPlus.pixelSize,
                  mixed(NoteTheme::color(palette(), TextStyles::launcherPlus.tone),
                        NoteTheme::color(palette(), Tone::accent), m_emphasis),
                  TextStyles::launcherPlus.weight);
}

void LauncherView::setHovered(bool isHovered)
{
    const double target = isHovered ? 1 : 0;
    m_hover.stop();
    if (reducesMotion() || !isVisible()) {
        setEmphasis(target);
        return;
    }
    m_hover.setStartValue(m_emphasis);
    m_hover.setEndValue(target);
    m_hover.start();
}

void LauncherView::setEmphasis(double emphasis)
{
    m_emphasis = emphasis;
    update();
}

bool LauncherView::reducesMotion() const
{
    const ViewEnvironment *const environment = ViewEnvironment::of(this);
    return environment && environment->reduceMotion();
}

void LauncherView::render()
{
    setToolTip(m_preferences.text(u"Click to capture · Drag to move · Right-click to quit"_s));
}
