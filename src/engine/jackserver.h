#pragma once

/// Whether a JACK sound server of this system runs, for whichever user. Looks for its socket, the
/// same way as its library does (JACK 2: <shared memory>/jack_<server>_<user>_<number>), but asks
/// that library nothing.
///
/// Where none runs, the sound library is kept from asking either. JACK's library first opens a
/// database in shared memory, and there a program that is killed at that moment leaves a lock that
/// every later one waits for, for good. It takes a third of the time in which devices are found,
/// too, and prints a page of complaints.
bool hasJackServer();
