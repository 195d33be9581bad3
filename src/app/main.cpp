#include "darktheme.h"
#include "player.h"

#include <QApplication>
#include <QFileInfo>

namespace {

struct Arguments {
    QString filename;
    int rangeStart = -1;
    int rangeEnd = -1;
};

int frameArgument(const QStringList& arguments, int index)
{
    bool isNumber = false;
    const int frame = arguments.value(index).toInt(&isNumber);
    return isNumber ? frame : -1;
}

Arguments parse(const QStringList& arguments)
{
    Arguments parsed{ arguments.value(1), frameArgument(arguments, 2),
        frameArgument(arguments, 3) };
    // A path with spaces may have arrived in pieces.
    if (!parsed.filename.isEmpty() && !QFileInfo::exists(parsed.filename)) {
        parsed.filename = arguments.mid(1).join(QLatin1Char(' '));
    }
    return parsed;
}

} // namespace

int main(int argc, char* argv[])
{
    // The sound library would start a sound server of its own where none runs.
    qputenv("JACK_NO_START_SERVER", "1");
    QApplication application(argc, argv);
    QApplication::setApplicationVersion(QStringLiteral(VANTOR_VERSION));
    applyDarkTheme(application);
    const Arguments arguments = parse(QApplication::arguments());
    Player player(arguments.filename, arguments.rangeStart, arguments.rangeEnd);
    player.show();
    return QApplication::exec();
}
