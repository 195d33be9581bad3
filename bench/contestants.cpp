#include "contestant.h"

#include <QLocalSocket>
#include <QSettings>
#include <QTcpSocket>
#include <QThread>

namespace {

constexpr quint16 port = 17271;
constexpr int connectMs = 2000;

class Vantor : public Contestant {
public:
    Vantor()
    {
        QSettings file(path(".quillon/vantor.ini"), QSettings::IniFormat);
        file.setValue("main/showMenuBar", false);
        file.setValue("preferences/resizeToFit", false);
        file.setValue("preferences/tcpPort", port);
    }
    ~Vantor() override { end(); }
    [[nodiscard]] const char* name() const override { return "Vantor"; }
    [[nodiscard]] QString program() const override { return VANTOR_PROGRAM; }
    [[nodiscard]] QStringList arguments() const override { return {}; }
    void open(const std::string& path) override { send("file \"" + path + "\""); }
    void jump(int frame, double /*rate*/) override { send("frame " + std::to_string(frame)); }
    void stepForward() override { press("Right"); }
    void stepBackward() override { press("Left"); }
    void togglePlaying() override { press("space"); }

private:
    void send(const std::string& line)
    {
        if (m_socket.state() != QAbstractSocket::ConnectedState) {
            m_socket.connectToHost("127.0.0.1", port);
            m_socket.waitForConnected(connectMs);
        }
        m_socket.write((line + '\n').c_str());
        m_socket.flush();
    }

    QTcpSocket m_socket;
};

class Mpv : public Contestant {
public:
    ~Mpv() override { end(); }
    [[nodiscard]] const char* name() const override { return "mpv"; }
    [[nodiscard]] QString program() const override { return "mpv"; }
    [[nodiscard]] QStringList arguments() const override
    {
        return { "--no-config", "--no-terminal", "--vo=x11", "--ao=pulse", "--hr-seek=always",
            "--pause", "--keep-open=yes", "--no-osc", "--osd-level=0", "--no-border",
            "--audio-display=no",
            QStringLiteral("--geometry=%1x%2+%3+%4")
                .arg(onDisplay.width())
                .arg(onDisplay.height())
                .arg(onDisplay.x())
                .arg(onDisplay.y()),
            "--input-ipc-server=" + path("socket") };
    }
    void open(const std::string& path) override { send("\"loadfile\", \"" + path + "\""); }
    void jump(int frame, double rate) override
    {
        // It shows the first picture that does not start before the time; rounding must not matter.
        send("\"seek\", " + std::to_string((frame - 1.1) / rate) + ", \"absolute+exact\"");
    }
    void stepForward() override { press("period"); }
    void stepBackward() override { press("comma"); }
    void togglePlaying() override { press("space"); }

private:
    void send(const std::string& command)
    {
        if (m_socket.state() != QLocalSocket::ConnectedState) {
            m_socket.connectToServer(path("socket"));
            m_socket.waitForConnected(connectMs);
        }
        m_socket.write(("{ \"command\": [" + command + "] }\n").c_str());
        m_socket.flush();
    }

    QLocalSocket m_socket;
};

} // namespace

std::unique_ptr<Contestant> makeVantor()
{
    return std::make_unique<Vantor>();
}

std::unique_ptr<Contestant> makeMpv()
{
    return std::make_unique<Mpv>();
}
