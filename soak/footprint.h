#pragma once

#include <QString>
#include <QVector>

/// What a process takes of the machine.
struct Footprint {
    int memory = 0; // resident, in megabytes; 0 of a process that has ended
    int files = 0; // open ones, without those that the toolkit keeps
    int threads = 0; // without those that the toolkit keeps for a while
    int segments = 0; // of shared memory, everybody's in this space of shared memory

    static Footprint of(qint64 processId);
    [[nodiscard]] QString text() const;
};

/// What has grown from the first half of these to the second, in words; empty for nothing. They are
/// taken in the same situation each time. Memory may grow a little: its pieces are laid out anew
/// all the time.
QString growth(const QVector<Footprint>& footprints);
