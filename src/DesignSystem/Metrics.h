// SPDX-License-Identifier: MIT
#pragma once

#include <QMargins>
#include <QSize>

/// The measures of the program, in points of the layout. Opacities are from 0 to 1.
namespace Metrics {

// The launcher.
inline constexpr QSize launcherSize{64, 64};
inline constexpr int launcherDisc = 54;
inline constexpr double launcherHoverScale = 1.04;
inline constexpr int launcherHoverMilliseconds = 160;
inline constexpr int launcherKeptMilliseconds = 1600;
inline constexpr int launcherRefusalMilliseconds = 8000;

// The panel: header, banner, footer.
inline constexpr QSize panelSize{424, 560};
inline constexpr int panelMargin = 26;
// An icon button stands that far outside the margin, so that its icon ends where texts end.
inline constexpr int iconOverhang = 8;
inline constexpr QMargins headerPadding{panelMargin, 22, panelMargin - iconOverhang, 24};
inline constexpr int headerSpacing = 7;
inline constexpr int tabSpacing = 3;
inline constexpr QMargins tabPadding{11, 6, 11, 6};
inline constexpr double tabFill = 0.07;
inline constexpr QMargins bannerMargins{panelMargin, 0, panelMargin, 18};
inline constexpr QMargins bannerPadding{12, 12, 12, 12};
inline constexpr int bannerSpacing = 8;
inline constexpr int paragraphLineSpacing = 2;
inline constexpr int bannerMostLines = 5;
inline constexpr int bannerRadius = 12;
inline constexpr double bannerFill = 0.07;
inline constexpr QMargins footerPadding{panelMargin, 11, panelMargin, 14};
inline constexpr int footerSpacing = 6;
inline constexpr QMargins dividerMargins{panelMargin, 0, panelMargin, 0};
inline constexpr int dividerThickness = 1;
inline constexpr double dividerOpacity = 0.06;
inline constexpr int footerDot = 3;

// The capture screen.
inline constexpr QMargins screenPadding{panelMargin, 0, panelMargin, 23};
inline constexpr int captureDot = 5;
inline constexpr int captureDateSpacing = 7;
inline constexpr int belowCaptureDate = 13;
inline constexpr int aboveSubtitle = 9;
inline constexpr int belowSubtitle = 22;
inline constexpr int aboveStatus = 12;
inline constexpr int statusSpacing = 6;
inline constexpr int aboveActions = 20;
inline constexpr int actionSpacing = 9;

// The edit screen.
inline constexpr int editSpacing = 16;
inline constexpr QMargins editPadding{panelMargin, 0, panelMargin - iconOverhang, 23};
inline constexpr QMargins editContentPadding{0, 0, iconOverhang, 0};

// The question before a note is deleted.
inline constexpr int alertWidth = 344;
inline constexpr QMargins alertPadding{24, 22, 24, 20};
inline constexpr int alertRadius = 20;
inline constexpr int alertMostLines = 5;
inline constexpr int alertMostListLines = 10; ///< On the lowest of screens, too, with the buttons.
inline constexpr int belowAlertTitle = 8;
inline constexpr int aboveAlertButtons = 20;
inline constexpr int alertButtonSpacing = 9;
inline constexpr QMargins alertButtonPadding{14, 10, 14, 10};
inline constexpr double alertButtonFill = 0.08;
inline constexpr double alertButtonPressedFill = 0.16;
inline constexpr double alertBorder = 0.1;
inline constexpr double alertDim = 0.35;

// The library.
inline constexpr QMargins libraryPadding{panelMargin, 0, panelMargin, 0};
inline constexpr int belowLibraryTitle = 16;
inline constexpr int belowSearch = 14;
inline constexpr int searchSpacing = 8;
inline constexpr QMargins searchPadding{12, 12, 12, 12};
inline constexpr int searchRadius = 12;
inline constexpr double searchFill = 0.05;
inline constexpr int betweenRows = 8;
inline constexpr int rowSpacing = 8;
inline constexpr QMargins rowPadding{15, 15, 15, 15};
inline constexpr int rowRadius = 15;
inline constexpr double rowFill = 0.035;
inline constexpr double rowHoverFill = 0.075;
inline constexpr double rowArrowOpacity = 0.35;
inline constexpr double matchRadius = 3;
inline constexpr int scrollStep = 24;
inline constexpr int emptyStateSpacing = 14;

// The editor.
inline constexpr int editorLineSpacing = 7;
inline constexpr int placeholderTop = 9;
inline constexpr int placeholderLeading = 5;

inline constexpr int editorTabSpaces = 4;
inline constexpr int caretWidth = 2;
inline constexpr int scrollBarWidth = 8;
inline constexpr int scrollThumbMinimum = 28;
inline constexpr double scrollThumbInset = 2;
inline constexpr double scrollThumbOpacity = 0.22;
inline constexpr double scrollThumbHeldOpacity = 0.45;

// Menus.
inline constexpr int menuRadius = 10;
inline constexpr int menuPadding = 5;
inline constexpr int menuItemRadius = 6;
inline constexpr double menuBorder = 0.12;
inline constexpr int tooltipRadius = 8;
inline constexpr int tooltipPadding = 5;

// Controls.
inline constexpr QSize quietIconButton{30, 30};
inline constexpr QSize preferencesButton{25, 28};
inline constexpr int plainButtonSpacing = 4;
inline constexpr int chevronInset = 3; // What its drawing leaves free in front.
inline constexpr QMargins primaryButtonPadding{17, 11, 17, 11};
inline constexpr int primaryButtonSpacing = 7;
inline constexpr double primaryButtonPressed = 0.72;
inline constexpr double disabledOpacity = 0.45;
inline constexpr double focusRingWidth = 2;
inline constexpr double focusRingRadius = 8;
inline constexpr int focusRingInset = 2;

} // namespace Metrics
