#include "darktheme.h"
#include "launchrequest.h"
#include "player.h"
#include "screenscale.h"
#include "singleapplication.h"
#include "terminationsignals.h"
#include "translations.h"

#include <QTimer>

#include <cstdio>
#include <cstring>

namespace {

constexpr int endMs = 1000; // for closing in order; then the program ends anyway

constexpr char version[] = "vantor " VANTOR_VERSION "\n";
constexpr char help[] = QT_TRANSLATE_NOOP("main", R"(Usage: vantor [FILE [START [END]]]

Plays video frame by frame.

  FILE   a video file, or a bookmarks file that ends in .bmk
  START  the first frame to stay within, counted from 1
  END    the last one

If a player is running already, it opens the file in its window. Programs on this
machine can drive it through port 17171 (tcpPort in ~/.quillon/vantor.ini).

  --help     print this and exit
  --version  print the version and exit
)");

// Prints it in the user's language where there is one; the exit code.
int print(int argc, char** argv, const char* text)
{
    const QCoreApplication application(argc, argv);
    loadTranslations();
    const QByteArray translated = QCoreApplication::translate("main", text).toLocal8Bit();
    return std::fputs(translated.constData(), stdout) == EOF || std::fflush(stdout) == EOF ? 1 : 0;
}

// What `argument`, standing alone, asks to be printed; null for all else.
const char* textFor(const char* argument)
{
    if (std::strcmp(argument, "--help") == 0) {
        return help;
    }
    return std::strcmp(argument, "--version") == 0 ? version : nullptr;
}

int run(SingleApplication& application, const LaunchRequest& request)
{
    Player player(request.file, request.rangeStart, request.rangeEnd);
    QObject::connect(&application, &SingleApplication::messageAvailable, &player,
        &Player::receiveMessageFromOtherInstance);
    QObject::connect(&player, &Player::closed, &application, &SingleApplication::stopListening);

    // A request to end closes the window, which saves the settings, if that does not take too long.
    const TerminationSignals end;
    QTimer limit;
    limit.setSingleShot(true);
    limit.setInterval(endMs);
    QObject::connect(&end, &TerminationSignals::requested, &player, &Player::close);
    QObject::connect(&end, &TerminationSignals::requested, &limit, qOverload<>(&QTimer::start));
    QObject::connect(&limit, &QTimer::timeout, &application, &SingleApplication::quit);

    player.show();
    return SingleApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    if (const char* text = argc == 2 ? textFor(argv[1]) : nullptr) {
        return print(argc, argv, text);
    }
    // The sound library would start a sound server of its own where none runs.
    qputenv("JACK_NO_START_SERVER", "1");
    // The window is drawn without OpenGL, whose drivers take long to load and much memory to keep.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION")) {
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    }
    // At the end of a session the window would be asked to close and, while it lets go of its file,
    // be taken for refusing. The signal that follows closes it in order.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    // The desktop finds the window's entry, and by that its name and icon, where both have this
    // name.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.quillon.vantor"));
    screenscale::followDesktop();
    SingleApplication application(argc, argv, QStringLiteral("vantorUniqueKey"));
    SingleApplication::setApplicationVersion(QStringLiteral(VANTOR_VERSION));
    const QStringList arguments = SingleApplication::arguments();
    // Before a window is made or a file is read: handing over shows and touches nothing.
    if (application.sendMessage(LaunchRequest::commandLineToSend(arguments), false)) {
        return 0;
    }
    loadTranslations();
    applyDarkTheme(application);
    return run(application, LaunchRequest::fromCommandLine(arguments));
}
