#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class PreferencesDialog;
}

/// Edits the preferences. It reads them from the settings and leaves it to its caller to take the
/// edited values over, each from its getter, once it is accepted. GUI thread.
class PreferencesDialog : public QDialog {
    Q_OBJECT

public:
    explicit PreferencesDialog(QWidget* parent = nullptr);
    ~PreferencesDialog() override;

    [[nodiscard]] int cacheSize() const; // megabytes of 1,000,000 bytes
    [[nodiscard]] float cacheTrailingPct() const; // share behind the play head, a fraction
    [[nodiscard]] int numRecentFiles() const;
    [[nodiscard]] int numRecentBookmarkFiles() const;
    [[nodiscard]] bool openMediaInNewPlayers() const;
    [[nodiscard]] bool resizeToFit() const;
    [[nodiscard]] bool continuePlayingAfterSeek() const;
    [[nodiscard]] bool endlessMouseScrub() const;
    [[nodiscard]] int tcpPort() const;

public Q_SLOTS:
    /// Fills the form. What lies outside of a control's limits is shown as the nearest value.
    void loadSettings();
    /// Modal; nothing while the box is not checked.
    void openInNewPlayersWarning();

private:
    const std::unique_ptr<Ui::PreferencesDialog> m_form;
};
