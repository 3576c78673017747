// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QStringList>

class NotesService;

/// org.quillmark.Quillmark.Notes1, as NotesInterface describes it. Internal to Desktop.
class NotesAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillmark.Quillmark.Notes1")

public:
    explicit NotesAdaptor(NotesService &service);

public Q_SLOTS:
    QString AddNotes(const QByteArray &folder, const QStringList &identifiers,
                     const QStringList &times, const QList<qulonglong> &sizes,
                     const QDBusUnixFileDescriptor &texts, const QDBusMessage &message,
                     QString &key, QVariantList &arguments);

private:
    NotesService &m_service;
};
