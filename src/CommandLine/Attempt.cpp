// SPDX-License-Identifier: MIT
#include "Attempt.h"

#include "RepositoryError.h"

using namespace Qt::Literals::StringLiterals;

namespace {

Complaint complaintAbout(const StorageError &error)
{
    Complaint complaint = complaintOf(Refusal::of(error));
    if (error.place())
        complaint.place = *error.place();
    return complaint;
}

} // namespace

Complaint complaintOf(const Refusal &refusal)
{
    const auto status = [&] {
        switch (refusal.kind) {
        case Refusal::Kind::limits:
            return ExitStatus::limits;
        case Refusal::Kind::diskFull:
            return ExitStatus::diskFull;
        case Refusal::Kind::recoveryCopy:
            return ExitStatus::recoveryCopy;
        case Refusal::Kind::folder:
            return ExitStatus::folder;
        case Refusal::Kind::inUse:
            return ExitStatus::inUse;
        case Refusal::Kind::disk:
            return ExitStatus::disk;
        }
        Q_UNREACHABLE();
    };
    return {status(), refusal.message, std::nullopt};
}

std::optional<Complaint> attempt(const std::function<void()> &action)
{
    try {
        action();
        return std::nullopt;
    } catch (const RepositoryError &error) {
        Complaint complaint = complaintAbout(error);
        complaint.isPlaceNamed = false;
        return complaint;
    } catch (const StorageError &error) {
        return complaintAbout(error);
    } catch (const std::exception &error) {
        return Complaint{
            ExitStatus::disk, {u"%@"_s, {QString::fromLocal8Bit(error.what())}}, std::nullopt};
    }
}
