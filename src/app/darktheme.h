#pragma once

class QApplication;

/// Gives the application its dark look: style, palette and style sheet. Call it before the first
/// window is made.
void applyDarkTheme(QApplication& application);
