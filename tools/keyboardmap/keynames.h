#pragma once

#include <QMap>
#include <QStringList>

/// What each key of the program does: by the key's code the lines that its cap is to show, by the
/// modifiers held with it. Read from the program's own tables of commands and window keys.
using KeyNames = QMap<int, QMap<int, QString>>;

/// Empty where a key does something that no command's text tells. Needs a QGuiApplication, as
/// some keys are the toolkit's choice.
KeyNames keyNames();
