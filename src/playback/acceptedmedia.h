#pragma once

class QString;

/// True for the extensions of the files that are opened, in either case: "mov", not ".mov".
bool isAcceptedMedia(const QString& suffix);
