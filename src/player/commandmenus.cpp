#include "commandmenus.h"

#include "player.h"
#include "rangemenu.h"
#include "settings.h"

#include <QAction>
#include <QMenuBar>
#include <QShortcut>

#include <algorithm>

namespace {

constexpr int barMaximumHeight = 1000; // pixels, more than it ever needs

bool isWindowKey(const QKeySequence& key)
{
    const auto& keys = windowKeys();
    return std::any_of(
        keys.begin(), keys.end(), [&](const WindowKey& row) { return row.key == key; });
}

void connectAction(QAction& action, const Command& command, Player* window)
{
    using Kind = Command::Kind;
    if (command.slot) {
        QObject::connect(&action, &QAction::triggered, window, command.slot);
    } else if (command.kind == Kind::CheckableByHand) {
        QObject::connect(&action, &QAction::triggered, window, command.toggle);
    } else {
        QObject::connect(&action, &QAction::toggled, window, command.toggle);
    }
}

} // namespace

CommandMenus::CommandMenus(Player* window)
    : m_window(window)
    , m_bar(new QMenuBar(window))
    , m_rangeMenu(new RangeMenu(window))
{
    QSizePolicy policy = m_bar->sizePolicy();
    policy.setControlType(QSizePolicy::DefaultType);
    m_bar->setSizePolicy(policy);
    for (size_t i = 0; i < m_menus.size(); ++i) {
        m_menus[i] = Menu(i) == Menu::SetRange ? m_rangeMenu : new QMenu(window);
        m_menus[i]->setTitle(Player::tr(menuTitles[i]));
        if (int(i) < barMenuCount) {
            m_bar->addMenu(m_menus[i]);
        }
    }
    for (const Command& command : commandTable()) {
        addCommand(command);
    }
    addWindowKeys();
}

void CommandMenus::addCommand(const Command& command)
{
    if (command.kind == Command::Kind::Separator) {
        menu(command.menu).addSeparator();
        return;
    }
    if (command.kind == Command::Kind::Submenu) {
        menu(command.menu).addMenu(&menu(command.submenu));
        return;
    }
    auto* action = new QAction(Player::tr(command.text), m_window);
    action->setObjectName(QString::fromLatin1(command.id));
    action->setStatusTip(Player::tr(command.statusTip));
    action->setShortcut(command.key);
    if (isWindowKey(command.key)) {
        // The key stays in the menu, and the press is left to the window's own: else the two would
        // be ambiguous.
        action->setShortcutContext(Qt::WidgetShortcut);
    }
    action->setCheckable(command.kind != Command::Kind::Plain);
    action->setAutoRepeat(!action->isCheckable());
    const bool checked = command.setting && settings().*command.setting;
    if (!command.applied) {
        action->setChecked(checked);
    }
    connectAction(*action, command, m_window);
    action->setChecked(checked);
    if (command.menu != Menu::Nowhere) {
        menu(command.menu).addAction(action);
    }
}

void CommandMenus::addWindowKeys()
{
    for (const WindowKey& row : windowKeys()) {
        auto* shortcut = new QShortcut(row.key, m_window);
        shortcut->setContext(Qt::WindowShortcut);
        shortcut->setAutoRepeat(row.repeats);
        QObject::connect(shortcut, &QShortcut::activated, m_window, row.slot);
    }
}

QMenu& CommandMenus::menu(Menu which) const
{
    return *m_menus[size_t(which)];
}

QAction& CommandMenus::action(const char* id) const
{
    return *m_window->findChild<QAction*>(QString::fromLatin1(id), Qt::FindDirectChildrenOnly);
}

void CommandMenus::setBarVisible(bool visible)
{
    if (visible) {
        m_bar->setMinimumHeight(0);
        m_bar->setMaximumHeight(barMaximumHeight);
    } else {
        m_bar->setFixedHeight(0);
    }
}
