#pragma once

#include <QDialog>

/// Names the program, its version and those of the toolkits it runs on. GUI thread.
class AboutDialog : public QDialog {
    Q_OBJECT

public:
    /// The program's own version is that of the application.
    AboutDialog(
        const QString& ffmpegVersion, const QString& portAudioVersion, QWidget* parent = nullptr);

private:
    [[nodiscard]] QString titleText() const;
};
