#include "keptspan.h"

#include "scopedlock.h"

#include <algorithm>
#include <limits>

namespace {
constexpr double nothingPassed = -std::numeric_limits<double>::infinity();
}

KeptSpan::KeptSpan()
    : m_passedTo(nothingPassed)
    , m_passedBefore(nothingPassed)
{
}

void KeptSpan::begin(double from, double to)
{
    const ScopedLock lock(m_mutex);
    m_from = from;
    m_to = to;
}

void KeptSpan::flush()
{
    const ScopedLock lock(m_mutex);
    m_passedTo = nothingPassed;
    m_passedBefore = nothingPassed;
}

bool KeptSpan::keeps(double seconds, double recent)
{
    const ScopedLock lock(m_mutex);
    const bool isInSpan = seconds >= m_from && seconds <= m_to;
    // A packet may have been left out already that belongs behind this picture: there would be a
    // hole.
    if (isInSpan || (seconds >= recent && seconds > m_passedTo)) {
        return true;
    }
    m_passedTo = std::max(m_passedTo, seconds);
    if (seconds < m_from) {
        m_passedBefore = std::max(m_passedBefore, seconds);
    }
    return false;
}

double KeptSpan::extend(double from, double margin)
{
    const ScopedLock lock(m_mutex);
    m_from = std::min(m_from, std::max(from, m_passedBefore + margin));
    return m_from;
}

double KeptSpan::passedTo() const
{
    const ScopedLock lock(m_mutex);
    return m_passedTo;
}
