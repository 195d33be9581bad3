#include "consolewindow.h"

#include "consolehighlighter.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int leastWidth = 300; // pixels
constexpr int gap = 4;
constexpr QSize buttonSize{ 60, 24 };
constexpr int levelCount = 5;

} // namespace

ConsoleWindow::ConsoleWindow(QWidget* parent)
    : QWidget(parent)
    , m_display(new QPlainTextEdit(this))
    , m_showOnCombo(new QComboBox(this))
{
    setWindowTitle(tr("Console"));
    setWindowIcon(QIcon(QStringLiteral(":icons/application.png")));
    setMinimumWidth(leastWidth);
    setAttribute(Qt::WA_QuitOnClose, false); // the player may be out of sight, too
    // Popping up by itself, it leaves the keyboard with the player; whoever wants the keyboard in
    // it activates it, too. The attribute counts only from the start: a window once shown keeps it.
    setAttribute(Qt::WA_ShowWithoutActivating);
    m_display->setReadOnly(true);
    m_display->setAccessibleName(tr("Messages"));
    new ConsoleHighlighter(m_display->document()); // child of the document
    m_showOnCombo->addItem(tr("Errors Only"), 1);
    m_showOnCombo->addItem(tr("Errors and Warnings"), 2);
    m_showOnCombo->addItem(tr("Errors, Warnings and Info"), 3);
    m_showOnCombo->addItem(tr("Any Output"), 4);
    m_showOnCombo->addItem(tr("Disabled"), 0);
    createLayout();
}

void ConsoleWindow::createLayout()
{
    auto* showOnLabel = new QLabel(tr("Show on"), this);
    showOnLabel->setBuddy(m_showOnCombo);
    auto* clearButton = new QPushButton(tr("Clear Display"), this);
    auto* closeButton = new QPushButton(tr("Close"), this);
    clearButton->setMinimumSize(buttonSize);
    closeButton->setMinimumSize(buttonSize);
    connect(clearButton, &QPushButton::clicked, m_display, &QPlainTextEdit::clear);
    connect(closeButton, &QPushButton::clicked, this, &ConsoleWindow::close);

    auto* top = new QHBoxLayout;
    top->addStretch();
    top->addWidget(showOnLabel);
    top->addWidget(m_showOnCombo);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(clearButton);
    bottom->addStretch();
    bottom->addWidget(closeButton);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(gap, gap, gap, gap);
    column->setSpacing(gap);
    column->addLayout(top);
    column->addWidget(m_display);
    column->addLayout(bottom);
}

int ConsoleWindow::showOnLevel() const
{
    return m_showOnCombo->currentData(Qt::UserRole).toInt();
}

void ConsoleWindow::setShowOnLevel(int level)
{
    const int index = level < levelCount ? m_showOnCombo->findData(level) : -1;
    if (index >= 0) {
        m_showOnCombo->setCurrentIndex(index);
    }
}

void ConsoleWindow::error(const QString& text)
{
    append(Error, tr("ERROR: ") + text);
}

void ConsoleWindow::warning(const QString& text)
{
    append(Warning, tr("WARNING: ") + text);
}

void ConsoleWindow::info(const QString& text)
{
    append(Info, tr("INFO: ") + text);
}

void ConsoleWindow::output(const QString& text)
{
    append(Output, text);
}

void ConsoleWindow::append(Kind kind, const QString& line)
{
    m_display->appendPlainText(line);
    if (kind == Output || showOnLevel() >= kind) {
        comeForward();
    }
}

void ConsoleWindow::comeForward()
{
    if (isVisible()) {
        activateWindow();
        raise();
    } else {
        show();
    }
}

void ConsoleWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        event->ignore();
    }
}

void ConsoleWindow::closeEvent(QCloseEvent* event)
{
    m_savedGeometry = saveGeometry();
    QWidget::closeEvent(event);
}

void ConsoleWindow::showEvent(QShowEvent* event)
{
    // Shown by the window system, as after minimising, it stays where it is.
    if (!event->spontaneous() && !m_savedGeometry.isEmpty()) {
        restoreGeometry(m_savedGeometry);
    }
    QWidget::showEvent(event);
}
