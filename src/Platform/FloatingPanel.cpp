// SPDX-License-Identifier: MIT
#include "FloatingPanel.h"

#include "AccessibleRole.h"
#include "FocusWatch.h"
#include "GlassSurface.h"
#include "KeepOnTop.h"
#include "Layouts.h"
#include "PanelHints.h"
#include "PanelShadow.h"
#include "PresenceWatch.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QImage>
#include <QInputMethod>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::milliseconds placingTime{300};

/// One that insists on another place has it in the end.
constexpr int mostCorrections = 3;

} // namespace

FloatingPanel::FloatingPanel(Kind kind, QSize contentSize)
    : QWidget(nullptr,
              kind == Kind::launcher ? PanelHints::launcherFlags() : PanelHints::editorFlags())
    , m_kind(kind)
    , m_composition(*this)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    // The program is seldom the active one, and its tooltips are for everyone.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setAccessibleRole(this, QAccessible::Window);
    setWindowTitle(u"Quillmark"_s);
    setFixedSize(contentSize);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});

    if (kind == Kind::launcher) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        new KeepOnTop(*this);
    } else {
        new FocusWatch(*this);
        m_shadow = new PanelShadow(*this);
    }
    auto *const presence =
        new PresenceWatch(*this, kind == Kind::launcher ? PresenceWatch::Care::unmanaged
                                                        : PresenceWatch::Care::managed);
    connect(presence, &PresenceWatch::lost, this, &FloatingPanel::giveUpWindow);
    connect(presence, &PresenceWatch::windowDestroyed, this, &FloatingPanel::giveUpWindow);
}

void FloatingPanel::setContent(QWidget *content)
{
    replace(layout(), m_content, content);
    m_content = content;
}

void FloatingPanel::place(const QRect &frame)
{
    m_place = frame.topLeft();
    setFixedSize(frame.size());
    setGeometry(frame);
}

void FloatingPanel::makeKey()
{
    show();
    PanelHints::activate(*this);
}

void FloatingPanel::comeBack()
{
    if (m_kind == Kind::launcher)
        show();
    else
        makeKey();
}

void FloatingPanel::setCutOut(bool isCutOut)
{
    m_isCutOut = isCutOut;
    if (isVisible())
        updateShape();
    if (m_shadow)
        m_shadow->setComposited(!isCutOut);
}

void FloatingPanel::setBlurred(bool isBlurred)
{
    if (std::exchange(m_isBlurred, isBlurred) == isBlurred || !internalWinId())
        return;
    if (!isBlurred)
        PanelHints::blurBehind(*this, {});
    else if (isVisible())
        updateShape();
}

void FloatingPanel::setVisible(bool visible)
{
    if (!visible || isVisible()) {
        QWidget::setVisible(visible);
        return;
    }
    // One that was minimised would be so again at once.
    setWindowState(windowState() & ~Qt::WindowMinimized);
    m_wasActive = false;
    if (m_kind == Kind::launcher) {
        PanelHints::prepareLauncher(*this);
        updateShape();
        QWidget::setVisible(true);
        raise();
    } else {
        m_isBeingShown = true;
        PanelHints::prepareEditor(*this);
        updateShape();
        QWidget::setVisible(true);
        PanelHints::afterShowingEditor(*this);
    }
}

bool FloatingPanel::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    m_wasActive = m_wasActive || event->type() == QEvent::WindowActivate;
    // Most window managers have placed the editor by the time they give it the keyboard, awesome a
    // moment later. Where the user moves it afterwards it stays.
    if (event->type() == QEvent::WindowActivate && std::exchange(m_isBeingShown, false)) {
        m_placing.setRemainingTime(placingTime);
        m_correctionsLeft = mostCorrections;
        correctPlace();
    } else if (event->type() == QEvent::Move && !m_placing.hasExpired()) {
        correctPlace();
    }
    // The launcher grows under the pointer.
    if (event->type() == QEvent::UpdateRequest && m_kind == Kind::launcher && m_isCutOut)
        updateShape();
    return isHandled;
}

void FloatingPanel::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Quit) && !event->isAutoRepeat()) {
        Q_EMIT quitRequested();
        return;
    }
    if (!event->matches(QKeySequence::Cancel)) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->isAutoRepeat())
        return;
    if (m_composition.isComposing())
        QGuiApplication::inputMethod()->reset();
    else if (onEscape)
        onEscape();
}

void FloatingPanel::closeEvent(QCloseEvent *event)
{
    if (isVisible() && onEscape)
        onEscape();
    // What is not safe yet stays on the screen, and so does the launcher.
    event->setAccepted(!isVisible());
}

void FloatingPanel::giveUpWindow()
{
    // Window managers remember of a window that it was minimised. The next one is a new one to
    // them.
    const bool wasVisible = isVisible();
    hide();
    destroy();
    if (wasVisible)
        Q_EMIT lost();
}

void FloatingPanel::correctPlace()
{
    if (m_correctionsLeft == 0 || !PanelHints::correctPosition(*this, m_place))
        return;
    --m_correctionsLeft;
    // i3 cuts its frame anew only when it hears of the shape.
    updateShape();
}

void FloatingPanel::updateShape()
{
    if (!m_isCutOut && !m_isBlurred) {
        PanelHints::cutOut(*this, {});
        return;
    }
    // The editor's outline is that of its surface, and always the same.
    const QSize pixels = size() * devicePixelRatioF();
    if (m_kind == Kind::launcher || m_shape.boundingRect().size() != pixels) {
        QImage rendering(pixels, QImage::Format_ARGB32_Premultiplied);
        rendering.setDevicePixelRatio(devicePixelRatioF());
        rendering.fill(Qt::transparent);
        auto *const surface = m_kind == Kind::editor ? findChild<GlassSurface *>() : nullptr;
        if (surface)
            surface->render(&rendering, surface->mapTo(this, QPoint()), {}, {});
        else
            render(&rendering, {}, {}, DrawChildren);
        m_shape = PanelHints::opaquePart(rendering);
    }
    PanelHints::cutOut(*this, m_isCutOut ? m_shape : QRegion());
    if (m_isBlurred)
        PanelHints::blurBehind(*this, m_shape);
}
