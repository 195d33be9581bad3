#include "keynames.h"

#include "commandtable.h"
#include "player.h"

#include <algorithm>
#include <cstdio>

namespace {

using Kind = Command::Kind;

// As the menu has it, with what it leaves to be seen from its place.
QString nameOf(const Command& command)
{
    QString text = QString::fromLatin1(command.text).remove("...");
    if (command.menu == Menu::Clear) {
        text.prepend("Clear ");
    } else if (command.menu == Menu::Speed) {
        text += " Speed";
    } else if (command.menu == Menu::Bookmarks && !text.contains("Bookmark")) {
        text += " Bookmark";
    }
    return text;
}

// Of a key of the window: the command's that has the same key or does the same.
QString nameOf(const WindowKey& row)
{
    const auto& table = commandTable();
    const auto named = [&](const auto& condition) {
        const auto found = std::find_if(table.begin(), table.end(), condition);
        return found == table.end() ? QString() : nameOf(*found);
    };
    QString sameKey = named(
        [&](const Command& command) { return !command.key.isEmpty() && command.key == row.key; });
    if (!sameKey.isEmpty()) {
        return sameKey;
    }
    if (row.slot == &Player::play || row.slot == &Player::pause) {
        return row.slot == &Player::play ? "Play" : "Pause"; // which no menu has apart
    }
    return named([&](const Command& command) { return command.slot && command.slot == row.slot; });
}

void add(KeyNames& names, const QKeySequence& key, const QString& name)
{
    int code = key[0] & ~int(Qt::KeyboardModifierMask);
    int modifiers = key[0] & int(Qt::KeyboardModifierMask);
    if (code == Qt::Key_Plus) { // where it is on the keyboard
        code = Qt::Key_Equal;
        modifiers |= int(Qt::ShiftModifier);
    }
    names[code][modifiers] = name;
}

} // namespace

KeyNames keyNames()
{
    KeyNames names;
    for (const Command& command : commandTable()) {
        if (command.menu != Menu::Nowhere && !command.key.isEmpty()) {
            add(names, command.key, nameOf(command));
        }
    }
    for (const WindowKey& row : windowKeys()) {
        const QString name = nameOf(row);
        if (name.isEmpty()) {
            std::fprintf(stderr, "No text tells what %s does\n", qPrintable(row.key.toString()));
            return {};
        }
        add(names, row.key, name);
    }
    return names;
}
