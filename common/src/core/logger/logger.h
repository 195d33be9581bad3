#pragma once

class QString;

/// Writes single messages to Qt's debug output. Any thread.
class Logger {
public:
    static void displayInfo(const QString& text);
    static void displayWarning(const QString& text);
    static void displayError(const QString& text);
};
