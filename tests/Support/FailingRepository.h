// SPDX-License-Identifier: MIT
#pragma once

#include "NoteRepository.h"
#include "RepositoryError.h"
#include "SnapshotMerge.h"

#include <functional>
#include <stdexcept>

/// A repository in memory that fails on demand and counts what is asked of it.
class FailingRepository final : public NoteRepository {
public:
    explicit FailingRepository(NoteSnapshot snapshot = {})
        : m_stored(std::move(snapshot))
        , m_known(m_stored)
    {
    }

    /// From now on load() and save() throw this.
    template <class Error>
    void failWith(const Error &error)
    {
        m_fail = [error] { throw error; };
    }

    void recover() { m_fail = nullptr; }

    /// From now on load() and reload() throw this.
    template <class Error>
    void failToRead(const Error &error)
    {
        m_failToRead = [error] { throw error; };
    }

    /// Another program stores this; until a reload() every save() is refused for it.
    void changeOutside(NoteSnapshot snapshot) { m_stored = std::move(snapshot); }

    /// It goes on: it stores another draft after each of the next so many calls of reload().
    void changeOutsideAgain(int times) { m_changesToCome = times; }

    /// What lies beside the notes and keeps them from nothing by itself; taking it in brings these
    /// notes and ends every failure to read.
    void putBeside(TakeInPlan plan, NoteSnapshot then)
    {
        m_beside = std::move(plan);
        m_takenIn = std::move(then);
    }

    [[nodiscard]] bool hasCopies() const override { return !m_beside.steps.empty(); }

    [[nodiscard]] TakeInPlan planTakeIn() override
    {
        if (m_fail)
            m_fail();
        return m_beside;
    }

    [[nodiscard]] std::filesystem::path takeIn(const TakeInPlan &shown) override
    {
        if (m_fail)
            m_fail();
        if (shown != m_beside)
            throw RepositoryError::externalChange();
        m_stored = m_takenIn;
        m_failToRead = nullptr;
        m_beside = {};
        return "/kept";
    }

    using Tidy = std::function<std::optional<std::chrono::milliseconds>(std::chrono::milliseconds)>;

    /// What tidy() does; nothing when not set.
    void setTidy(Tidy tidy) { m_tidy = std::move(tidy); }

    void setNotesFolderURL(const QUrl &folder) { m_notesFolderURL = folder; }

    /// What a restart would find.
    [[nodiscard]] const NoteSnapshot &stored() const noexcept { return m_stored; }

    /// How often save() was called, whatever came of it.
    [[nodiscard]] int saves() const noexcept { return m_saves; }

    [[nodiscard]] std::optional<QUrl> notesFolderURL() const override { return m_notesFolderURL; }

    [[nodiscard]] NoteSnapshot load() override
    {
        if (m_fail)
            m_fail();
        if (m_failToRead)
            m_failToRead();
        m_known = m_stored;
        m_hadCopies = hasCopies();
        return m_stored;
    }

    [[nodiscard]] bool isChangedOutside() override
    {
        if (m_fail)
            m_fail();
        return m_known != m_stored || m_hadCopies != hasCopies();
    }

    [[nodiscard]] NoteSnapshot reload(const NoteSnapshot &typed) override
    {
        const NoteSnapshot last = m_known;
        const NoteSnapshot now = load();
        if (m_changesToCome > 0) {
            --m_changesToCome;
            m_stored.captureDraft += u'.';
        }
        return merged(last, typed, now);
    }

    void save(const NoteSnapshot &snapshot) override
    {
        ++m_saves;
        if (m_fail)
            m_fail();
        if (m_known != m_stored)
            throw RepositoryError::externalChange();
        m_known = m_stored = snapshot;
    }

    [[nodiscard]] std::optional<std::chrono::milliseconds>
    tidy(std::chrono::milliseconds most) override
    {
        return m_tidy ? m_tidy(most) : std::nullopt;
    }

    void keepTyped(const NoteSnapshot &snapshot, const QUuid &captureId) override
    {
        if (m_cannotKeep)
            throw std::runtime_error("no room to keep it");
        m_kept.append(snapshot);
        m_captureId = captureId;
    }

    void syncTyped() override
    {
        if (m_cannotKeep)
            throw std::runtime_error("no room to keep it");
        ++m_syncs;
    }

    /// From now on keepTyped() and syncTyped() throw.
    void failToKeep() { m_cannotKeep = true; }

    /// How often syncTyped() was called.
    [[nodiscard]] int syncs() const noexcept { return m_syncs; }

    void leaveAlone(const Message &message) { m_leftAlone = message; }

    [[nodiscard]] std::optional<Message> leftAlone() const override { return m_leftAlone; }
    [[nodiscard]] bool hasRestored() const override { return !m_kept.isEmpty(); }
    [[nodiscard]] std::optional<std::filesystem::path> typedPath() const override
    {
        return "/kept";
    }

    /// Every snapshot that was kept, in order.
    [[nodiscard]] const QList<NoteSnapshot> &kept() const noexcept { return m_kept; }

    /// With which identifier the last of them was kept; load() gives what was kept.
    [[nodiscard]] std::optional<QUuid> captureId() const override { return m_captureId; }

private:
    QList<NoteSnapshot> m_kept;
    std::optional<Message> m_leftAlone;
    int m_syncs = 0;
    bool m_cannotKeep = false;
    std::optional<QUuid> m_captureId;
    NoteSnapshot m_stored;
    NoteSnapshot m_known;
    std::function<void()> m_fail;
    std::function<void()> m_failToRead;
    TakeInPlan m_beside;
    bool m_hadCopies = false;
    NoteSnapshot m_takenIn;
    Tidy m_tidy;
    std::optional<QUrl> m_notesFolderURL;
    int m_changesToCome = 0;
    int m_saves = 0;
};
