#pragma once

#include <QByteArray>
#include <QWidget>

class QComboBox;
class QPlainTextEdit;

/// The window in which the player tells what went wrong and what it did, a line each. It comes
/// forward by itself as far as the person at the screen wants; closing it only hides it.
class ConsoleWindow : public QWidget {
    Q_OBJECT

public:
    explicit ConsoleWindow(QWidget* parent = nullptr);

    /// From which messages on the window comes forward: 0 never, 1 errors, 2 warnings too, 3
    /// information too, 4 any output. Plain output brings it forward at every level.
    [[nodiscard]] int showOnLevel() const;
    /// A level that does not exist changes nothing.
    void setShowOnLevel(int level);

    /// Place and size at which the window was last closed; where it opens next. Empty: not known.
    [[nodiscard]] QByteArray savedGeometry() const { return m_savedGeometry; }
    void setSavedGeometry(const QByteArray& geometry) { m_savedGeometry = geometry; }

public Q_SLOTS:
    void error(const QString& text);
    void warning(const QString& text);
    void info(const QString& text);
    void output(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    enum Kind { Error = 1, Warning = 2, Info = 3, Output = 4 };

    void createLayout();
    void append(Kind kind, const QString& line);
    void comeForward();

    QPlainTextEdit* m_display; // child
    QComboBox* m_showOnCombo; // child
    QByteArray m_savedGeometry;
};
