// SPDX-License-Identifier: MIT
#pragma once

#include "NoteTheme.h"

#include <QLocale>

/// One way of setting text: size, weight, tone and design. A symbol beside the text takes the same
/// pixel size.
struct TextStyle {
    int pixelSize;
    QFont::Weight weight = QFont::Normal;
    Tone tone = Tone::primary;
    bool isSerif = false;

    /// For a view in that locale, see NoteTheme::font().
    [[nodiscard]] QFont font(const QLocale &locale = {}) const;

    friend bool operator==(const TextStyle &, const TextStyle &) = default;
};

/// The text styles of the program, named after what they set.
namespace TextStyles {

// The header, the error banner and the footer of the panel.
inline constexpr TextStyle productMark{17, QFont::Medium, Tone::accent};
inline constexpr TextStyle productTitle{17, QFont::DemiBold, Tone::primary, true};
inline constexpr TextStyle tab{12, QFont::Medium};
inline constexpr TextStyle banner{12, QFont::Normal, Tone::failure};
inline constexpr TextStyle bannerAction{12, QFont::DemiBold, Tone::failure};
inline constexpr TextStyle footer{10, QFont::Normal, Tone::secondary};

// The screens.
inline constexpr TextStyle screenTitle{27, QFont::DemiBold};
inline constexpr TextStyle subtitle{12, QFont::Normal, Tone::secondary};
inline constexpr TextStyle captureDate{11, QFont::Medium, Tone::secondary};
inline constexpr TextStyle noteDate{11, QFont::Normal, Tone::secondary};
inline constexpr TextStyle status{10, QFont::Normal, Tone::secondary};
inline constexpr TextStyle shortcutHint{11, QFont::Normal, Tone::secondary};
inline constexpr TextStyle backButton{12, QFont::Medium, Tone::secondary};
inline constexpr TextStyle noteCount{13, QFont::Medium, Tone::secondary};

// The question before a note is deleted.
inline constexpr TextStyle alertTitle{15, QFont::DemiBold};
inline constexpr TextStyle alertMessage{12, QFont::Normal, Tone::secondary};
inline constexpr TextStyle alertCancel{13, QFont::DemiBold};
inline constexpr TextStyle alertDelete{13, QFont::DemiBold, Tone::failure};

// The editor.
inline constexpr TextStyle editor{15};
inline constexpr TextStyle editorPlaceholder{15, QFont::Normal, Tone::tertiary};

// Search, rows and empty states of the library.
inline constexpr TextStyle search{12};
inline constexpr TextStyle searchSymbol{12, QFont::Normal, Tone::tertiary};
inline constexpr TextStyle clearSearch{12, QFont::Normal, Tone::secondary};
inline constexpr TextStyle rowTitle{14, QFont::Medium};
inline constexpr TextStyle rowExcerpt{12, QFont::Normal, Tone::secondary};
inline constexpr TextStyle rowMeta{10, QFont::Normal, Tone::secondary};
inline constexpr TextStyle emptySymbol{30, QFont::Light, Tone::secondary};
inline constexpr TextStyle emptyHeading{15};
inline constexpr TextStyle emptyHint{11, QFont::Normal, Tone::secondary};

// Controls.
inline constexpr TextStyle environment{13};
inline constexpr TextStyle tooltip{12};
inline constexpr TextStyle primaryButton{13, QFont::DemiBold, Tone::onAccent};
inline constexpr TextStyle quietIcon{13, QFont::Medium, Tone::secondary};
inline constexpr TextStyle preferencesIcon{13, QFont::Normal, Tone::secondary};
inline constexpr TextStyle copyIcon{12, QFont::Medium, Tone::secondary};
inline constexpr TextStyle launcherPlus{23, QFont::Light};

} // namespace TextStyles
