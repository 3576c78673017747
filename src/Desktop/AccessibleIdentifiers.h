// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QObject>

/// Tells test drivers the identifiers of what assistive technology sees: the object names, which Qt
/// before 6.9 keeps to itself. They are asked for on the accessibility bus, beside the tree and not
/// in it, so that no screen reader comes across them; docs/ARCHITECTURE.md says how. There only
/// while assistive technology is on.
class AccessibleIdentifiers final : public QObject, public QAccessible::ActivationObserver {
    Q_OBJECT

public:
    explicit AccessibleIdentifiers(QObject *parent = nullptr);
    ~AccessibleIdentifiers() override;

    /// Of the object that the bus knows by this path; empty when there is none, or when it has no
    /// identifier.
    [[nodiscard]] QString identifierOf(const QString &accessiblePath) const;

    void accessibilityActiveChanged(bool isActive) override;
};
