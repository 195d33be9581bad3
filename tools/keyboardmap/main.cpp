// keyboardmap: prints a picture of the keyboard, as SVG, that tells what each key does in the
// program. Fails where a key has no place on it.
#include "keynames.h"

#include <QGuiApplication>
#include <QKeySequence>
#include <QRect>
#include <QTextStream>

#include <algorithm>
#include <cstdio>

namespace {

// Lengths in pixels.
constexpr int unit = 102; // from key to key
constexpr int gap = 4;
constexpr int margin = 12;
constexpr int capHeight = 22; // of the line that names the key
constexpr int lineHeight = 13;
constexpr int lineLength = 14; // letters

struct Key {
    int code;
    QString cap;
    double width = 1; // units
};

struct Row {
    double indent; // units
    std::vector<Key> keys;
};

Row letters(double indent, const QString& caps)
{
    Row row{ indent, {} };
    for (const QChar cap : caps) {
        row.keys.push_back({ cap.unicode(), cap });
    }
    return row;
}

std::vector<Row> keyboard()
{
    Row functions{ 0.5, {} };
    for (int number = 1; number <= 12; ++number) {
        functions.keys.push_back({ Qt::Key_F1 + number - 1, QString("F%1").arg(number) });
    }
    return { functions, letters(0, "`1234567890-="), letters(0.5, "QWERTYUIOP[]"),
        letters(0.75, "ASDFGHJKL;'"), letters(1.25, "ZXCVBNM,./"),
        { 1,
            { { Qt::Key_Space, "Space", 5 }, { Qt::Key_Left, "Left" }, { Qt::Key_Up, "Up" },
                { Qt::Key_Down, "Down" }, { Qt::Key_Right, "Right" }, { Qt::Key_Home, "Home" },
                { Qt::Key_End, "End" } } } };
}

struct Modifiers {
    int value;
    const char* name;
    const char* colour;
};

constexpr std::array modifierTable{
    Modifiers{ 0, "", "#e4e4e4" },
    Modifiers{ int(Qt::ShiftModifier), "Shift:", "#f0b060" },
    Modifiers{ int(Qt::ControlModifier), "Ctrl:", "#6ab7ff" },
    Modifiers{ int(Qt::ControlModifier) | int(Qt::ShiftModifier), "Ctrl+Shift:", "#8fd48a" },
    Modifiers{ int(Qt::ControlModifier) | int(Qt::AltModifier), "Ctrl+Alt:", "#d9a0e8" },
};

struct Line {
    QString text;
    const char* colour;
};

// Takes what it shows out of `names`.
std::vector<Line> linesOf(const Key& key, KeyNames& names)
{
    QMap<int, QString> texts = names.take(key.code);
    std::vector<Line> lines;
    for (const Modifiers& modifiers : modifierTable) {
        QString line;
        const QString text = texts.take(modifiers.value);
        const QString all = text.isEmpty() ? text : modifiers.name + (' ' + text);
        for (const QString& word : all.split(' ', Qt::SkipEmptyParts)) {
            if (!line.isEmpty() && line.size() + 1 + word.size() > lineLength * key.width) {
                lines.push_back({ line, modifiers.colour });
                line.clear();
            }
            line += (line.isEmpty() ? "" : " ") + word;
        }
        if (!line.isEmpty()) {
            lines.push_back({ line, modifiers.colour });
        }
    }
    if (!texts.isEmpty()) {
        names.insert(key.code, texts); // left over
    }
    return lines;
}

void drawText(QTextStream& out, int x, int y, const Line& line, const char* style = "")
{
    out << "<text x=\"" << x << "\" y=\"" << y << "\" fill=\"" << line.colour << '"' << style << '>'
        << line.text.toHtmlEscaped() << "</text>\n";
}

void drawKey(QTextStream& out, const Key& key, const std::vector<Line>& lines, QRect place)
{
    out << "<rect x=\"" << place.x() << "\" y=\"" << place.y() << "\" width=\"" << place.width()
        << "\" height=\"" << place.height() << "\" rx=\"5\" fill=\""
        << (lines.empty() ? "#232326" : "#3a3a40") << "\"/>\n";
    const char* colour = lines.empty() ? "#66666c" : "#ffffff";
    int y = place.y() + 16;
    drawText(out, place.x() + 6, y, { key.cap, colour }, " font-size=\"13\" font-weight=\"bold\"");
    for (const Line& line : lines) {
        y += lineHeight;
        drawText(out, place.x() + 6, y, line);
    }
}

// Its height.
int drawRow(QTextStream& out, const Row& row, KeyNames& names, int top)
{
    std::vector<std::vector<Line>> lines;
    size_t most = 0;
    for (const Key& key : row.keys) {
        lines.push_back(linesOf(key, names));
        most = std::max(most, lines.back().size());
    }
    const int height = capHeight + int(most) * lineHeight + 4;
    double left = row.indent;
    for (size_t i = 0; i < row.keys.size(); ++i) {
        const Key& key = row.keys[i];
        const int width = int(key.width * unit) - gap;
        drawKey(out, key, lines[i], { margin + int(left * unit), top, width, height });
        left += key.width;
    }
    return height + gap;
}

QString draw(KeyNames& names)
{
    QString keys;
    QTextStream out(&keys);
    int y = margin;
    for (const Row& row : keyboard()) {
        y += drawRow(out, row, names, y);
    }
    const int width = 13 * unit + 2 * margin - gap;
    return QString("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %1 %2\" width=\"%1\" "
                   "height=\"%2\" font-family=\"DejaVu Sans, Verdana, sans-serif\" "
                   "font-size=\"10.5\">\n<rect width=\"%1\" height=\"%2\" fill=\"#19191b\"/>\n")
               .arg(width)
               .arg(y - gap + margin)
        + keys + "</svg>\n";
}

} // namespace

int main(int argc, char** argv)
{
    qunsetenv("XDG_CURRENT_DESKTOP"); // the keys that the toolkit chooses are the same for all
    const QGuiApplication application(argc, argv);
    KeyNames names = keyNames();
    if (names.isEmpty()) {
        return 1;
    }
    const QString picture = draw(names);
    for (auto key = names.begin(); key != names.end(); ++key) {
        for (auto rest = key->begin(); rest != key->end(); ++rest) {
            std::fprintf(stderr, "%s has no place on the keyboard\n",
                qPrintable(QKeySequence(key.key() | rest.key()).toString()));
        }
    }
    std::fputs(qPrintable(picture), stdout);
    return names.isEmpty() ? 0 : 1;
}
