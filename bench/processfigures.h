#pragma once

#include <QtGlobal>

/// What the system tells of a running process.
namespace processfigures {

/// Seconds of all its threads, those that have ended included.
double processorSeconds(qint64 pid);
double residentBytes(qint64 pid);

} // namespace processfigures
